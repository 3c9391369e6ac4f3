#include "hardware/ports/switch_off.h"

#include <ctime>

namespace kestrel::ports {
namespace {

constexpr std::timespec kPause{.tv_sec = 0, .tv_nsec = 5'000'000};

}  // namespace

bool switchOffWithin(std::chrono::milliseconds limit, SwitchOff& port) noexcept {
  const auto end = std::chrono::steady_clock::now() + limit;
  while (!port.switchOff()) {
    if (std::chrono::steady_clock::now() >= end) return false;
    nanosleep(&kPause, nullptr);
  }
  return true;
}

}  // namespace kestrel::ports
