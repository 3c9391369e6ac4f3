#include "operations/protection.h"

#include <array>

#include "platform/runtime_error.h"

namespace kestrel::operations {
namespace {

constexpr int kWeAtmel = 0x80;
constexpr int kWeXicor = 0x40;
constexpr std::int64_t kStrobeCounts = 300;
constexpr std::int32_t kSequenceEndMs = 5;

// Chip deselected, data latch on the bus, socket pin 30 (VCC of a 28-pin chip) high.
constexpr std::int16_t kLatch3Writing = 0x82;

}  // namespace

void ProtectionSequences::WriteStrobeDelay() { p_.bus.spin(kStrobeCounts); }

void ProtectionSequences::speedDelay(std::int32_t milliseconds) {
  const RangeControl& slider = p_.controls.Slider1;
  p_.bus.sleepMs(slider.maximum() - slider.value() + milliseconds);
}

void ProtectionSequences::WEON_ATMEL() {
  hardware::clearBits(p_.state.RegShadow1, kWeAtmel);
  p_.registers.SetReg1();
}

void ProtectionSequences::WEOFF_ATMEL() {
  hardware::setBits(p_.state.RegShadow1, kWeAtmel);
  p_.registers.SetReg1();
}

void ProtectionSequences::WEON_XICOR() {
  hardware::clearBits(p_.state.RegShadow1, kWeXicor);
  p_.registers.SetReg1();
}

void ProtectionSequences::WEOFF_XICOR() {
  hardware::setBits(p_.state.RegShadow1, kWeXicor);
  p_.registers.SetReg1();
}

void ProtectionSequences::strobe(const WriteEnable& writeEnable) {
  p_.registers.SetReg1();
  WriteStrobeDelay();
  p_.registers.SetReg2();
  WriteStrobeDelay();
  p_.registers.SetReg4();
  p_.bus.CEON();
  (this->*writeEnable.on)();
  WriteStrobeDelay();
  (this->*writeEnable.off)();
  WriteStrobeDelay();
  p_.bus.CEOFF();
}

void ProtectionSequences::AtmelWriteByte() {
  ProgrammerState& s = p_.state;
  s.RegShadow1 = narrowed<std::int16_t>((s.WriteAddress / 256) | s.Reg1Fixed);
  s.RegShadow2 = narrowed<std::int16_t>(s.WriteAddress & 0xFF);
  strobe({&ProtectionSequences::WEON_ATMEL, &ProtectionSequences::WEOFF_ATMEL});
}

void ProtectionSequences::XicorWriteByte() {
  ProgrammerState& s = p_.state;
  const int high = s.WriteAddress / 256;
  s.RegShadow2 = narrowed<std::int16_t>(s.WriteAddress - high * 256);
  s.RegShadow1 = narrowed<std::int16_t>(hardware::withA14InBit7(high) | kWeXicor);
  strobe({&ProtectionSequences::WEON_XICOR, &ProtectionSequences::WEOFF_XICOR});
}

void ProtectionSequences::send(std::span<const Cycle> cycles, WriteByte writeByte) {
  p_.bus.OEOFF();
  p_.state.RegShadow3 = kLatch3Writing;
  p_.registers.SetReg3();
  for (const Cycle& cycle : cycles) {
    p_.state.WriteAddress = cycle.address;
    p_.state.RegShadow4 = cycle.data;
    (this->*writeByte)();
  }
  speedDelay(kSequenceEndMs);
}

void ProtectionSequences::sendDisable(WriteByte writeByte) {
  static constexpr std::array<Cycle, 6> kDisable{{{0x5555, 0xAA},
                                                  {0x2AAA, 0x55},
                                                  {0x5555, 0x80},
                                                  {0x5555, 0xAA},
                                                  {0x2AAA, 0x55},
                                                  {0x5555, 0x20}}};
  send(kDisable, writeByte);
}

void ProtectionSequences::sendEnable(WriteByte writeByte) {
  static constexpr std::array<Cycle, 3> kEnable{{{0x5555, 0xAA}, {0x2AAA, 0x55}, {0x5555, 0xA0}}};
  send(kEnable, writeByte);
}

void ProtectionSequences::AtmelSDPDisable() { sendDisable(&ProtectionSequences::AtmelWriteByte); }

void ProtectionSequences::AtmelSDPEnable() { sendEnable(&ProtectionSequences::AtmelWriteByte); }

void ProtectionSequences::XicorSDPDisable() { sendDisable(&ProtectionSequences::XicorWriteByte); }

void ProtectionSequences::XicorSDPEnable() { sendEnable(&ProtectionSequences::XicorWriteByte); }

void ProtectionSequences::sendAtmelCommand(std::uint8_t command) {
  const std::array<Cycle, 3> cycles{{{0x5555, 0xAA}, {0x2AAA, 0x55}, {0x5555, command}}};
  send(cycles, &ProtectionSequences::AtmelWriteByte);
}

}  // namespace kestrel::operations
