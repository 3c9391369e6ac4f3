#pragma once

#include <cstdint>
#include <span>

namespace kestrel::link {

/// CRC-16 with the polynomial of CCITT (x^16 + x^12 + x^5 + 1), least significant bit first, start
/// value FFFFh. The digits 1 to 9 in ASCII give 6F91h.
[[nodiscard]] std::uint16_t crc16(std::span<const std::uint8_t> bytes);

}  // namespace kestrel::link
