#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::images {

using Bytes = std::vector<std::uint8_t>;

/// Something asked of an image that cannot be had. The text says what is wrong and what would be
/// right; nothing has changed.
class ImageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Addresses from the first to the last, both included: data sheets and hex listings count so.
struct Range {
  std::uint32_t first = 0;
  std::uint32_t last = 0;

  [[nodiscard]] std::size_t size() const { return std::size_t{last} - first + 1; }
  [[nodiscard]] bool has(std::uint32_t address) const {
    return address >= first && address <= last;
  }
  bool operator==(const Range&) const = default;
};

/// An address in hexadecimal, also with 0x in front or h behind. Throws ImageError for anything
/// else or above 32 bits.
[[nodiscard]] std::uint32_t parseAddress(std::string_view text);

/// FROM-TO, both hexadecimal. Throws ImageError.
[[nodiscard]] Range parseRange(std::string_view text);

/// At least four hexadecimal digits, in capitals.
[[nodiscard]] std::string addressText(std::uint32_t address);

/// "0100-01FF", or "0100" for one address.
[[nodiscard]] std::string rangeText(const Range& range);

/// The ranges with one more address, which is above all of them.
void addAddress(std::vector<Range>& ranges, std::uint32_t address);

/// The first few, then how many more there are.
[[nodiscard]] std::string rangesText(const std::vector<Range>& ranges);

/// The part of the image that the range covers is there. Throws ImageError.
void checkInside(const Range& range, std::size_t imageBytes);

}  // namespace kestrel::images
