#pragma once

#include "simulator/pins.h"

namespace kestrel::sim {

// The packages that go into the one 32-pin socket. A 24- or 28-pin chip sits at the bottom: its pin
// p is socket pin p + (32 - n) / 2. The 8-pin serial memories sit with pins 1-4 in socket pins 9-12
// and pins 5-8 in 21-24, so that SDA (5) meets D7 and SCL (6) the /CE line.
enum class Package { serial8, dip24, dip28, dip32 };

/// What stands on the chip's own pins when these levels stand on the socket.
constexpr PinLevels chipPins(Package package, PinLevels socket) {
  switch (package) {
    case Package::serial8:
      return (socket >> 8 & 0x0FU) | (socket >> 16 & 0xF0U);
    case Package::dip24:
      return socket >> 4 & 0x00FFFFFFU;
    case Package::dip28:
      return socket >> 2 & 0x0FFFFFFFU;
    case Package::dip32:
      break;
  }
  return socket;
}

/// The socket pins behind these chip pins.
constexpr PinLevels socketPins(Package package, PinLevels chip) {
  switch (package) {
    case Package::serial8:
      return (chip & 0x0FU) << 8 | (chip & 0xF0U) << 16;
    case Package::dip24:
      return chip << 4;
    case Package::dip28:
      return chip << 2;
    case Package::dip32:
      break;
  }
  return chip;
}

}  // namespace kestrel::sim
