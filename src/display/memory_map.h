#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace kestrel::display {

/// A piece of a memory, as one colour shows it.
enum class CellKind { Blank, Zero, Data };

/// Bytes from `begin` up to, not including, `end`.
struct AddressRange {
  std::int32_t begin = 0;
  std::int32_t end = 0;
};

/// The memory in so many pieces of equal length, or one a byte where it has fewer: all FFh, all
/// 00h, or anything else.
[[nodiscard]] std::vector<CellKind> memoryMap(std::span<const std::uint8_t> bytes,
                                              std::size_t pieces);

/// The bytes of one piece of such a map.
[[nodiscard]] AddressRange rangeOf(std::size_t piece, std::size_t pieces, std::size_t bytes);

/// What the map shows in words: "data 00000h-03FFFh, blank 04000h-07FFFh"; by pages of 256 bytes,
/// the first eight ranges.
[[nodiscard]] std::string memoryMapText(std::span<const std::uint8_t> bytes);

}  // namespace kestrel::display
