#include "images/ranges.h"

#include <charconv>

namespace kestrel::images {
namespace {

constexpr int kHexadecimal = 16;
constexpr std::size_t kShownRanges = 8;

}  // namespace

std::uint32_t parseAddress(std::string_view text) {
  std::string_view digits = text;
  if (digits.starts_with("0x") || digits.starts_with("0X")) {
    digits.remove_prefix(2);
  } else if (digits.ends_with('h') || digits.ends_with('H')) {
    digits.remove_suffix(1);
  }
  std::uint32_t value = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, value, kHexadecimal);
  if (error != std::errc{} || stop != end) {
    throw ImageError("\"" + std::string(text) +
                     "\" is no address; use hexadecimal digits such as 7FF0, FFFFFFFF at most");
  }
  return value;
}

Range parseRange(std::string_view text) {
  const std::size_t hyphen = text.find('-');
  if (hyphen == std::string_view::npos) {
    throw ImageError("\"" + std::string(text) +
                     "\" is no range; use FROM-TO in hexadecimal such as 0-7FFF");
  }
  const Range range{.first = parseAddress(text.substr(0, hyphen)),
                    .last = parseAddress(text.substr(hyphen + 1))};
  if (range.last < range.first) {
    throw ImageError("\"" + std::string(text) + "\" ends before it begins; use FROM-TO");
  }
  return range;
}

std::string addressText(std::uint32_t address) {
  constexpr std::size_t kLeastDigits = 4;
  std::string digits(8, '0');
  const auto [end, error] =
      std::to_chars(digits.data(), digits.data() + digits.size(), address, kHexadecimal);
  digits.resize(static_cast<std::size_t>(end - digits.data()));
  for (char& digit : digits) {
    if (digit >= 'a') digit = static_cast<char>(digit - 'a' + 'A');
  }
  if (digits.size() < kLeastDigits) digits.insert(0, kLeastDigits - digits.size(), '0');
  return digits;
}

std::string rangeText(const Range& range) {
  return range.size() == 1 ? addressText(range.first)
                           : addressText(range.first) + "-" + addressText(range.last);
}

void addAddress(std::vector<Range>& ranges, std::uint32_t address) {
  if (!ranges.empty() && ranges.back().last + 1 == address) {
    ranges.back().last = address;
  } else {
    ranges.push_back({.first = address, .last = address});
  }
}

std::string rangesText(const std::vector<Range>& ranges) {
  std::string text;
  for (std::size_t i = 0; i < ranges.size() && i < kShownRanges; ++i) {
    text += (i == 0 ? "" : ", ") + rangeText(ranges[i]);
  }
  if (ranges.size() > kShownRanges) {
    text += " and " + std::to_string(ranges.size() - kShownRanges) + " more";
  }
  return text;
}

void checkInside(const Range& range, std::size_t imageBytes) {
  if (range.last < imageBytes) return;
  throw ImageError(rangeText(range) + " is not in the image, which " +
                   (imageBytes == 0
                        ? std::string("is empty")
                        : "ends at " + addressText(static_cast<std::uint32_t>(imageBytes - 1))));
}

}  // namespace kestrel::images
