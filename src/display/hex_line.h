#pragma once

#include <bitset>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace kestrel::display {

inline constexpr std::int32_t kPageBytes = 256;
inline constexpr std::int32_t kLineBytes = 16;
inline constexpr std::int32_t kPageLines = kPageBytes / kLineBytes;

/// Which bytes the character column shows as themselves; every other one is a full stop.
using ShownCharacters = std::bitset<256>;

/// The characters of a list, for the buffer display.
[[nodiscard]] ShownCharacters charactersIn(std::string_view list);

/// The codes 32 (blank) to 122 (z), for the device display.
[[nodiscard]] ShownCharacters deviceCharacters();

/// One line of a page with the line break before it: six address digits, four groups of four bytes,
/// sixteen characters. Fewer than 16 bytes leave their columns blank.
[[nodiscard]] std::string hexLine(std::int32_t address, std::span<const std::uint8_t> bytes,
                                  const ShownCharacters& shown);

}  // namespace kestrel::display
