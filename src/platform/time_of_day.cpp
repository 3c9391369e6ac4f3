#include "platform/time_of_day.h"

#include <array>
#include <ctime>

namespace kestrel {
namespace {

std::string localTimeAs(const char* format) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  std::array<char, 32> text{};
  // The formats are the three literals below.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  const std::size_t length = std::strftime(text.data(), text.size(), format, &local);
#pragma GCC diagnostic pop
  return {text.data(), length};
}

}  // namespace

std::string TimeOfDay::longTime() const { return localTimeAs("%H:%M:%S"); }

std::string TimeOfDay::shortTime() const { return localTimeAs("%H:%M"); }

std::string TimeOfDay::shortDate() const { return localTimeAs("%Y-%m-%d"); }

}  // namespace kestrel
