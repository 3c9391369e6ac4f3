#include "display/byte_search.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <string>

#include "app/state/text_format.h"

namespace kestrel::display {
namespace {

constexpr int kHex = 16;
constexpr std::size_t kLongestAddress = 6;  // digits: 16 MB

/// The number that the whole text is, in hexadecimal digits.
std::optional<std::int32_t> hexNumber(std::string_view text) {
  std::int32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, kHex);
  if (text.empty() || error != std::errc{} || stop != end) return std::nullopt;
  return number;
}

std::optional<std::vector<std::uint8_t>> hexPairs(std::string_view text) {
  std::string digits;
  std::ranges::copy_if(text, std::back_inserter(digits), [](char c) { return c != ' '; });
  if (digits.size() % 2 != 0) return std::nullopt;
  std::vector<std::uint8_t> bytes;
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    const auto byte = hexNumber(std::string_view(digits).substr(i, 2));
    if (!byte || *byte < 0) return std::nullopt;
    bytes.push_back(static_cast<std::uint8_t>(*byte));
  }
  return bytes;
}

}  // namespace

std::vector<std::uint8_t> bytesOf(std::string_view wanted) {
  const bool isQuoted = wanted.size() > 1 && wanted.front() == '"' && wanted.back() == '"';
  if (isQuoted) {
    wanted = wanted.substr(1, wanted.size() - 2);
  } else if (const auto bytes = hexPairs(wanted)) {
    return *bytes;
  }
  return {wanted.begin(), wanted.end()};
}

std::optional<std::int32_t> findBytes(std::span<const std::uint8_t> memory,
                                      std::span<const std::uint8_t> wanted, std::int32_t from) {
  if (wanted.empty() || wanted.size() > memory.size()) return std::nullopt;
  const auto start = std::clamp<std::ptrdiff_t>(from, 0, std::ssize(memory));
  auto found = std::search(memory.begin() + start, memory.end(), wanted.begin(), wanted.end());
  if (found == memory.end()) {
    found = std::search(memory.begin(), memory.end(), wanted.begin(), wanted.end());
  }
  if (found == memory.end()) return std::nullopt;
  return static_cast<std::int32_t>(found - memory.begin());
}

std::optional<std::int32_t> addressOf(std::string_view typed) {
  std::string text = upperCase(trimmed(typed));
  if (text.starts_with("0X")) text.erase(0, 2);
  if (text.starts_with("$")) text.erase(0, 1);
  if (text.ends_with("H")) text.pop_back();
  if (text.size() > kLongestAddress) return std::nullopt;
  const auto address = hexNumber(text);
  return address && *address >= 0 ? address : std::nullopt;
}

}  // namespace kestrel::display
