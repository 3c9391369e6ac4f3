#include "app/state/text_format.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "platform/runtime_error.h"

namespace kestrel {
namespace {

constexpr std::string_view kBlanks = " \t";

std::string_view withoutLeadingBlanks(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text;
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

double roundedWithin(double value, double lowest, double highest) {
  const double whole = std::nearbyint(value);
  if (!(whole >= lowest && whole <= highest)) throwOverflow();
  return whole;
}

}  // namespace

std::string hexText(std::int32_t value) {
  std::array<char, 8> digits{};
  const auto result = std::to_chars(digits.data(), digits.data() + digits.size(),
                                    static_cast<std::uint32_t>(value), 16);
  return upperCase({digits.data(), result.ptr});
}

std::string hexText(std::int32_t value, std::size_t digits) {
  const std::string padded = std::string(digits, '0') + hexText(value);
  return padded.substr(padded.size() - digits);
}

std::string printForm(double value) {
  std::array<char, 330> digits{};  // the longest double without an exponent
  const auto result =
      std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed);
  const std::string text(digits.data(), result.ptr);
  return value < 0 ? text : " " + text;
}

std::string_view trimmed(std::string_view text) {
  text = withoutLeadingBlanks(text);
  text.remove_suffix(text.size() - std::min(text.find_last_not_of(kBlanks) + 1, text.size()));
  return text;
}

std::string upperCase(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return upper;
}

std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
    lines.emplace_back(text.substr(0, end));
    const bool pair = text.substr(end, 2) == "\r\n";
    text.remove_prefix(std::min(end + (pair ? 2 : 1), text.size()));
  }
  return lines;
}

double leadingNumber(std::string_view text) {
  text = withoutLeadingBlanks(text);
  if (text.starts_with("+-")) return 0;
  if (text.starts_with('+')) text.remove_prefix(1);
  // from_chars also knows "inf" and "nan", which are no numbers here.
  const std::string_view unsignedPart = text.starts_with('-') ? text.substr(1) : text;
  if (unsignedPart.empty() || !(isDigit(unsignedPart[0]) || unsignedPart[0] == '.')) return 0;
  double value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec == std::errc::result_out_of_range) {
    const bool isTiny = std::string_view(text.data(), result.ptr).find('-', 1) != text.npos;
    if (!isTiny) value = std::copysign(HUGE_VAL, text[0] == '-' ? -1.0 : 1.0);
  }
  return value;
}

std::int16_t leadingHex16(std::string_view text) {
  text = withoutLeadingBlanks(text);
  std::uint16_t value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value, 16);
  if (result.ec == std::errc::result_out_of_range) throwOverflow();
  return static_cast<std::int16_t>(value);
}

std::int16_t roundedInt16(double value) {
  return static_cast<std::int16_t>(roundedWithin(value, INT16_MIN, INT16_MAX));
}

std::int32_t roundedInt32(double value) {
  return static_cast<std::int32_t>(roundedWithin(value, INT32_MIN, INT32_MAX));
}

std::int32_t clampedInt32(double value) {
  return static_cast<std::int32_t>(
      std::clamp(std::nearbyint(value), double{INT32_MIN}, double{INT32_MAX}));
}

}  // namespace kestrel
