#pragma once

#include <cstdint>

#include "devices/families.h"

namespace kestrel::devices {

// How a chip meets the latches that feed the 32-pin socket. A0 to A7 are latch 2, A8 to A15 latch 1
// bits 0 to 7 (socket pins 27, 26, 23, 25, 4, 28, 29, 3), A16 to A19 latch 3 bits 0 to 3 (pins 2,
// 30, 31, 1); what a wiring has elsewhere it says.

/// Where the address lines stand that a wiring moves.
enum class AddressLines {
  Straight,
  A14OnPin3,  ///< 28C256: chip pin 1; pin 29 is its /WE
  A18OnPin1,  ///< 32-pin flash; pin 31 is its /WE
};

/// The line that writes: low for as long as a pulse lasts.
enum class Strobe {
  ChipEnable,
  Pin3,   ///< /WE of an AT29C256, latch 1 bit 7
  Pin29,  ///< /PGM or /WE of 28-pin chips, latch 1 bit 6
  Pin31,  ///< /PGM or /WE of 32-pin chips, latch 3 bit 2
};

struct Wiring {
  AddressLines lines = AddressLines::Straight;
  Strobe strobe = Strobe::ChipEnable;
  VppPin vpp = VppPin::None;
  std::uint8_t latch1High = 0;  ///< supply and levels at rest, beside the address
  std::uint8_t latch3High = 0;
  bool isSerial = false;  ///< 8 pins: SCL is /CE, SDA is D7, the supply is socket pin 24, /OE
};

}  // namespace kestrel::devices
