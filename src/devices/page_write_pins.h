#pragma once

#include <cstdint>

namespace kestrel::devices {

/// Where the 28-pin page-write chips have /WE and A14, in bits of latch 1.
struct PageWritePins {
  int writeEnable;  ///< active low
  bool movesA14;    ///< A14 goes to bit 7, where the plain map has it in bit 6
};

/// 28C256: /WE is chip pin 27 (socket pin 29), A14 chip pin 1 (socket pin 3).
inline constexpr PageWritePins kX28C256Pins{.writeEnable = 0x40, .movesA14 = true};

/// AT29C256: /WE is chip pin 1 (socket pin 3), A14 chip pin 27 (socket pin 29).
inline constexpr PageWritePins kAt29C256Pins{.writeEnable = 0x80, .movesA14 = false};

/// The middle address byte of a 28C256: adding 40h to one that is not 0 moves A14 (bit 6) into bit
/// 7 once bit 6, the inactive write-enable, is or-ed in.
constexpr std::int32_t withA14InBit7(std::int32_t mid) { return mid != 0 ? mid + 0x40 : 0; }

}  // namespace kestrel::devices
