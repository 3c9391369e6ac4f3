#include "simulator/wiring.h"

namespace kestrel::sim {
namespace {

constexpr int kAddressLatches = 4;  // latches 0 to 3 reach socket pins, latch 4 the data lines

struct Wire {
  int latch;
  int bit;
  int pin;
};

constexpr Wire kWires[]{
    {3, 3, 1},  {3, 0, 2},  {1, 7, 3},  {1, 4, 4},  {2, 7, 5},  {2, 6, 6},  {2, 5, 7},  {2, 4, 8},
    {2, 3, 9},  {2, 2, 10}, {2, 1, 11}, {2, 0, 12}, {3, 7, 22}, {1, 2, 23}, {0, 6, 24}, {1, 3, 25},
    {1, 1, 26}, {1, 0, 27}, {1, 5, 28}, {1, 6, 29}, {3, 1, 30}, {3, 2, 31},
};

using LatchPins = std::array<std::array<PinLevels, 256>, kAddressLatches>;

constexpr LatchPins latchPins() {
  LatchPins table{};
  for (const Wire& wire : kWires) {
    for (std::size_t contents = 0; contents < 256; ++contents) {
      const bool high = (contents >> wire.bit & 1U) != 0;
      if (high) table[static_cast<std::size_t>(wire.latch)][contents] |= pin(wire.pin);
    }
  }
  return table;
}

constexpr LatchPins kLatchPins = latchPins();

}  // namespace

PinLevels pinsOfLatch(std::size_t latch, std::uint8_t contents) {
  return latch < kAddressLatches ? kLatchPins[latch][contents] : 0;
}

PinLevels vppSwitches(std::uint8_t latch0) {
  PinLevels pins = 0;
  if ((latch0 & kVppToPin1) != 0) pins |= pin(1);
  if ((latch0 & kVppToPin3) != 0) pins |= pin(3);
  if ((latch0 & kVppToPin24) != 0) pins |= pin(24);
  return pins;
}

}  // namespace kestrel::sim
