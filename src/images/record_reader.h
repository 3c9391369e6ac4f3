#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "images/ranges.h"
#include "images/record_formats.h"

namespace kestrel::images {

/// Bytes that stand one behind the other.
struct Block {
  std::uint32_t address = 0;
  Bytes bytes;

  [[nodiscard]] Range range() const {
    return {.first = address, .last = static_cast<std::uint32_t>(address + (bytes.size() - 1))};
  }
};

/// What a file holds: blocks in the order of their addresses, with holes between them.
struct Records {
  FormatId format = FormatId::Binary;
  std::vector<Block> blocks;
  std::size_t dataRecords = 0;
  std::optional<std::uint32_t> startAddress;  ///< of a program, where the format has one

  [[nodiscard]] std::vector<Range> ranges() const;
  [[nodiscard]] std::vector<Range> holes() const;  ///< between the blocks
  [[nodiscard]] std::size_t dataBytes() const;
};

/// Reads the contents of a file. Throws ImageError, with the number of the line, for a record that
/// is damaged, has a wrong checksum or says something else than an earlier one at its address, for
/// a line that is no record, for a missing end record and for a file without data.
[[nodiscard]] Records readRecords(std::span<const std::uint8_t> file, const Format& format);

}  // namespace kestrel::images
