#include "devices/part_marking.h"

#include <algorithm>

#include "app/state/text_format.h"

namespace kestrel::devices {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return c >= 'A' && c <= 'Z'; }
bool isAlphanumeric(char c) { return isDigit(c) || isLetter(c); }

/// From the first digit on.
std::string_view withoutMaker(std::string_view text) {
  return text.substr(std::min(text.size(), text.find_first_of("0123456789")));
}

/// The length of type, technology and size in "27C256B12": digits, letters, digits.
std::size_t lengthOfPart(std::string_view text) {
  const auto digitsEnd = std::ranges::find_if_not(text, isDigit);
  const auto lettersEnd = std::find_if_not(digitsEnd, text.end(), isLetter);
  const auto sizeEnd = std::find_if_not(lettersEnd, text.end(), isDigit);
  const bool hasSize = sizeEnd != lettersEnd;  // "2732A" has none of its own
  return static_cast<std::size_t>((hasSize ? sizeEnd : digitsEnd) - text.begin());
}

}  // namespace

std::vector<std::string> partNames(std::string_view marking) {
  const std::string upper = upperCase(std::string(trimmed(marking)));
  const auto end = std::ranges::find_if_not(upper, isAlphanumeric);
  const std::string_view name = withoutMaker(
      std::string_view(upper).substr(0, static_cast<std::size_t>(end - upper.begin())));
  const std::size_t shortest = std::max<std::size_t>(1, lengthOfPart(name));
  std::vector<std::string> names;
  for (std::size_t length = name.size(); length >= shortest; --length) {
    names.emplace_back(name.substr(0, length));
  }
  return names;
}

bool hasPart(std::string_view deviceName, std::string_view part) {
  while (!deviceName.empty()) {
    const std::size_t end = std::min(deviceName.find(' '), deviceName.size());
    if (withoutMaker(deviceName.substr(0, end)) == part && end > 0) return true;
    deviceName.remove_prefix(std::min(end + 1, deviceName.size()));
  }
  return false;
}

}  // namespace kestrel::devices
