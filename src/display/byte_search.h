#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace kestrel::display {

/// The bytes that a person looks for: hex pairs ("4B 45 53", "4b4553"), or a text, which stands in
/// quotation marks where it could be taken for hex pairs. Empty for an empty text.
[[nodiscard]] std::vector<std::uint8_t> bytesOf(std::string_view wanted);

/// The address of the next place that holds the bytes, from `from` on and then from the beginning;
/// nothing where there is none.
[[nodiscard]] std::optional<std::int32_t> findBytes(std::span<const std::uint8_t> memory,
                                                    std::span<const std::uint8_t> wanted,
                                                    std::int32_t from);

/// The address that was typed, hexadecimal with or without "0x", "$" before or "h" behind it.
[[nodiscard]] std::optional<std::int32_t> addressOf(std::string_view typed);

}  // namespace kestrel::display
