#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "simulator/pins.h"

namespace kestrel::sim {

// What the copper of the board joins: latch outputs and data lines to the pins of the 32-pin
// socket.
//
//   socket pin      from                     socket pin      from
//   1               latch 3 bit 3            23              latch 1 bit 2
//   2               latch 3 bit 0            24              latch 0 bit 6
//   3               latch 1 bit 7            25              latch 1 bit 3
//   4               latch 1 bit 4            26, 27          latch 1 bits 1, 0
//   5-12            latch 2 bits 7-0         28, 29          latch 1 bits 5, 6
//   13-15, 17-21    data D0-D2, D3-D7        30, 31          latch 3 bits 1, 2
//   16              ground                   32              5 V
//   22              latch 3 bit 7
//
// Latch 0 bits 5, 4, 7 put VPP on pins 1, 3, 24. Latch 4 feeds the data lines.

inline constexpr std::size_t kLatchCount = 5;

// Latch 0: supply and lamp.
inline constexpr std::uint8_t kVppLevelLow = 0x01;   // models 5 and 6, see VppSupply
inline constexpr std::uint8_t kVppLevelHigh = 0x02;  // models 5 and 6
inline constexpr std::uint8_t kVppOnModel4 = 0x04;
inline constexpr std::uint8_t kLamp = 0x08;
inline constexpr std::uint8_t kVppToPin3 = 0x10;
inline constexpr std::uint8_t kVppToPin1 = 0x20;
inline constexpr std::uint8_t kVppToPin24 = 0x80;

// Latch 3: beside address lines, what decides about the data lines.
inline constexpr std::uint8_t kPullD4LowModel6 = 0x20;
inline constexpr std::uint8_t kLatch4OffBus = 0x40;
inline constexpr std::uint8_t kPin22 = 0x80;

/// The socket pins that a latch holds high with these contents.
[[nodiscard]] PinLevels pinsOfLatch(std::size_t latch, std::uint8_t contents);

/// The socket pins that the VPP switches of latch 0 join to the programming supply.
[[nodiscard]] PinLevels vppSwitches(std::uint8_t latch0);

/// The data lines as socket pins, D0 first.
inline constexpr PinBus kDataLines{std::array<std::uint8_t, 8>{13, 14, 15, 17, 18, 19, 20, 21}};

inline constexpr PinLevels kVccPin = pin(32);

}  // namespace kestrel::sim
