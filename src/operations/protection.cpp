#include "operations/protection.h"

#include <array>

#include "platform/runtime_error.h"

namespace kestrel::operations {
namespace {

constexpr std::int64_t kStrobeCounts = 300;
constexpr std::int32_t kSequenceEndMs = 5;

// Chip deselected, data latch on the bus, socket pin 30 (VCC of a 28-pin chip) high.
constexpr std::int16_t kLatch3Writing = 0x82;

/// A write cycle of a command sequence.
struct Cycle {
  std::int16_t address;
  std::uint8_t data;
};

constexpr std::array<Cycle, 6> kDisable{{{0x5555, 0xAA},
                                         {0x2AAA, 0x55},
                                         {0x5555, 0x80},
                                         {0x5555, 0xAA},
                                         {0x2AAA, 0x55},
                                         {0x5555, 0x20}}};
constexpr std::array<Cycle, 3> kEnable{{{0x5555, 0xAA}, {0x2AAA, 0x55}, {0x5555, 0xA0}}};

}  // namespace

void ProtectionSequences::WriteStrobeDelay() { board_.bus.spin(kStrobeCounts); }

void ProtectionSequences::speedDelay(std::int32_t milliseconds) {
  const RangeControl& slider = controls_.Slider1;
  board_.bus.sleepMs(slider.maximum() - slider.value() + milliseconds);
}

void ProtectionSequences::lowerWriteEnable(const devices::PageWritePins& pins) {
  hardware::clearBits(latches_.RegShadow1, pins.writeEnable);
  board_.registers.SetReg1();
}

void ProtectionSequences::raiseWriteEnable(const devices::PageWritePins& pins) {
  hardware::setBits(latches_.RegShadow1, pins.writeEnable);
  board_.registers.SetReg1();
}

void ProtectionSequences::strobe(const devices::PageWritePins& pins) {
  board_.registers.SetReg1();
  WriteStrobeDelay();
  board_.registers.SetReg2();
  WriteStrobeDelay();
  board_.registers.SetReg4();
  board_.bus.CEON();
  lowerWriteEnable(pins);
  WriteStrobeDelay();
  raiseWriteEnable(pins);
  WriteStrobeDelay();
  board_.bus.CEOFF();
}

void ProtectionSequences::AtmelWriteByte() {
  latches_.RegShadow1 = narrowed<std::int16_t>((operation_.WriteAddress / 256) | device_.Reg1Fixed);
  latches_.RegShadow2 = narrowed<std::int16_t>(operation_.WriteAddress & 0xFF);
  strobe(devices::kAt29C256Pins);
}

void ProtectionSequences::XicorWriteByte() {
  const int high = operation_.WriteAddress / 256;
  latches_.RegShadow2 = narrowed<std::int16_t>(operation_.WriteAddress - high * 256);
  latches_.RegShadow1 =
      narrowed<std::int16_t>(devices::withA14InBit7(high) | devices::kX28C256Pins.writeEnable);
  strobe(devices::kX28C256Pins);
}

template <typename Cycles, typename WriteByte>
void ProtectionSequences::send(const Cycles& cycles, const WriteByte& writeByte) {
  board_.bus.OEOFF();
  latches_.RegShadow3 = kLatch3Writing;
  board_.registers.SetReg3();
  for (const Cycle& cycle : cycles) {
    operation_.WriteAddress = cycle.address;
    latches_.RegShadow4 = cycle.data;
    writeByte();
  }
  speedDelay(kSequenceEndMs);
}

void ProtectionSequences::AtmelSDPDisable() {
  send(kDisable, [this] { AtmelWriteByte(); });
}

void ProtectionSequences::AtmelSDPEnable() {
  send(kEnable, [this] { AtmelWriteByte(); });
}

void ProtectionSequences::XicorSDPDisable() {
  send(kDisable, [this] { XicorWriteByte(); });
}

void ProtectionSequences::XicorSDPEnable() {
  send(kEnable, [this] { XicorWriteByte(); });
}

void ProtectionSequences::sendAtmelCommand(std::uint8_t command) {
  const std::array<Cycle, 3> cycles{{{0x5555, 0xAA}, {0x2AAA, 0x55}, {0x5555, command}}};
  send(cycles, [this] { AtmelWriteByte(); });
}

}  // namespace kestrel::operations
