#include "operations/eprom_programmer.h"

#include "platform/runtime_error.h"

namespace kestrel::operations {
namespace {

constexpr std::int16_t kPulseBudget = 255;
constexpr std::int16_t kLongPulsesBelow = 200;
constexpr std::int32_t kPulse2732Ms = 5;
constexpr std::int32_t kVppSettlingMs = 1500;

// Latch 0 while programming: board lamp on, outputs off; on model 4 bit 2 switches VPP on.
constexpr int kProgramming = hardware::kOutputDisable | hardware::kBoardLamp;
constexpr int kVppModel4 = 0x04;
constexpr int kVpp21 = 0x02;
constexpr int kVpp25 = 0x03;

// Program strobes, active low: 27-pin position of 28-pin chips, and pin 31 of 32-pin chips.
constexpr int kPgmOnLatch1 = 0x40;

constexpr std::int32_t kBlinkEvery64 = 0x3F;
constexpr std::int32_t kBlinkEvery512 = 0x1FF;
constexpr std::int32_t kBlinkEvery1024 = 0x3FF;

}  // namespace

/// In what one algorithm differs from the others.
struct EpromProgrammer::Algorithm {
  enum class VppPin { Oe, Pin3, Pin1, BySubCode };
  using Step = void (EpromProgrammer::*)();

  Step prepare;        ///< the bus before latch 0 is set up
  VppPin vppPin;       ///< where latch 0 puts VPP; Oe: the pulse itself does
  bool above12V;       ///< takes 21 and 25 V, with their settling wait
  bool readsFirst;     ///< reads each address and passes over bytes that are right already
  bool usesLoopIndex;  ///< counts addresses in LoopIndex instead of ProgramIndex
  bool readsWithOe;    ///< the read-back needs its own output enable
  bool deselectsAtEnd;
  Step startByte;    ///< at an address, before anything is decided
  Step startPulses;  ///< at an address that is programmed, before its first pulse
  Step pulse;
  std::int32_t blinkMask;
};

struct EpromProgrammer::Algorithms {
  using E = EpromProgrammer;
  using Pin = Algorithm::VppPin;

  // clang-format off
  static constexpr Algorithm P2732{
      .prepare = &E::deselect, .vppPin = Pin::Oe, .above12V = true, .readsFirst = true,
      .usesLoopIndex = false, .readsWithOe = false, .deselectsAtEnd = false,
      .startByte = &E::readFirst24, .startPulses = &E::latchAddress, .pulse = &E::pulse2732,
      .blinkMask = kBlinkEvery64};
  static constexpr Algorithm P2764_128{
      .prepare = &E::deselect, .vppPin = Pin::Pin3, .above12V = true, .readsFirst = false,
      .usesLoopIndex = false, .readsWithOe = true, .deselectsAtEnd = true,
      .startByte = nullptr, .startPulses = &E::latchAddressAndSelect, .pulse = &E::pulse2764,
      .blinkMask = kBlinkEvery512};
  static constexpr Algorithm P27256_040{
      .prepare = &E::deselect, .vppPin = Pin::BySubCode, .above12V = false, .readsFirst = false,
      .usesLoopIndex = false, .readsWithOe = true, .deselectsAtEnd = false,
      .startByte = nullptr, .startPulses = &E::latchAddress, .pulse = &E::pulse27256,
      .blinkMask = kBlinkEvery512};
  static constexpr Algorithm P27080{
      .prepare = &E::deselect, .vppPin = Pin::Oe, .above12V = false, .readsFirst = true,
      .usesLoopIndex = false, .readsWithOe = false, .deselectsAtEnd = false,
      .startByte = &E::readFirst, .startPulses = nullptr, .pulse = &E::pulse27080,
      .blinkMask = kBlinkEvery1024};
  static constexpr Algorithm P27010_020{
      .prepare = &E::selectWithOutputsOff, .vppPin = Pin::Pin1, .above12V = false, .readsFirst = false,
      .usesLoopIndex = true, .readsWithOe = true, .deselectsAtEnd = false,
      .startByte = nullptr, .startPulses = &E::latchAddress, .pulse = &E::pulse27010,
      .blinkMask = kBlinkEvery512};
  // clang-format on
};

void EpromProgrammer::P2732() { program(Algorithms::P2732); }

void EpromProgrammer::P2764_128() { program(Algorithms::P2764_128); }

void EpromProgrammer::P27256_040() { program(Algorithms::P27256_040); }

void EpromProgrammer::P27080() { program(Algorithms::P27080); }

void EpromProgrammer::P27010_020() { program(Algorithms::P27010_020); }

void EpromProgrammer::program(const Algorithm& algorithm) {
  ProgrammerState& s = p_.state;
  p_.registers.REG4ON();
  (this->*algorithm.prepare)();
  setUpLatch0(algorithm);
  if (algorithm.above12V) waitForVppSettling();
  p_.reporting.LogMessage("Programming Started... Wait ");
  if (algorithm.readsFirst) p_.bus.OEON();
  std::int32_t& index = algorithm.usesLoopIndex ? s.LoopIndex : s.ProgramIndex;
  for (index = 0; index < s.ProgramLength; ++index) {
    s.ByteToWrite = at(s.ProgramBuffer, index);
    if (!programByte(algorithm)) return;
    p_.bus.IncADR();
    if ((index & algorithm.blinkMask) == 0) p_.lamps.BlinkProgramLamp();
    p_.reporting.GoProgressiveBar1();
  }
  if (algorithm.deselectsAtEnd) p_.bus.CEOFF();
}

// A model that is none of 4, 5, 6 leaves the latch as it is, but for the 2764's own bit.
void EpromProgrammer::setUpLatch0(const Algorithm& algorithm) {
  ProgrammerState& s = p_.state;
  const bool isModel4 = s.KestrelModel == 4;
  const bool isModel5or6 = s.KestrelModel == 5 || s.KestrelModel == 6;
  int latch = s.RegShadow0;
  if (isModel4) latch = kProgramming | kVppModel4;
  if (isModel5or6) {
    latch = kProgramming;
    const bool takesLevel = algorithm.above12V && s.VppClass == 3;
    if (takesLevel && s.VppVolts == 21) latch |= kVpp21;
    if (takesLevel && s.VppVolts == 25) latch |= kVpp25;
  }
  const auto pin = algorithm.vppPin;
  const bool hasModel = isModel4 || isModel5or6;
  const auto bySubCode = [&](const char* code) {
    return pin == Algorithm::VppPin::BySubCode && s.FamilySubCode == code;
  };
  if (pin == Algorithm::VppPin::Pin3 || (hasModel && bySubCode("4"))) latch |= hardware::kVppOnPin3;
  if (hasModel && (pin == Algorithm::VppPin::Pin1 || bySubCode("8"))) latch |= hardware::kVppOnPin1;
  s.RegShadow0 = narrowed<std::int16_t>(latch);
  p_.registers.SetReg0();
}

// 21 and 25 V come from the board's converter, which takes about a second to rise.
void EpromProgrammer::waitForVppSettling() {
  if (p_.state.VppVolts <= 12) return;
  p_.reporting.LogMessage("Wait 1500ms second VPP Settling");
  p_.bus.sleepMs(kVppSettlingMs);
}

bool EpromProgrammer::programByte(const Algorithm& algorithm) {
  ProgrammerState& s = p_.state;
  if (algorithm.startByte != nullptr) (this->*algorithm.startByte)();
  // A byte that is there already is passed over like an erased one.
  if (algorithm.readsFirst && s.ReadByte == s.ByteToWrite) s.ByteToWrite = kErased;
  if (s.ByteToWrite == kErased) return true;
  if (algorithm.startPulses != nullptr) (this->*algorithm.startPulses)();
  return pulseUntilRight(algorithm);
}

bool EpromProgrammer::pulseUntilRight(const Algorithm& algorithm) {
  PulsesLeft_ = kPulseBudget;
  do {
    if (--PulsesLeft_ == 0) {
      reports_.ProgramFailureReport();
      return false;
    }
    (this->*algorithm.pulse)();
    if (algorithm.readsWithOe) p_.bus.OEON();
    ReadBackByte();
    if (algorithm.readsWithOe) p_.bus.OEOFF();
  } while (p_.state.ReadByte != p_.state.ByteToWrite);
  return true;
}

void EpromProgrammer::ReadBackByte() {
  p_.state.RegShadow4 = kErased;
  p_.registers.SetReg4();
  p_.bus.ShortDelay10();
  p_.registers.REG4OFF();
  p_.bus.ShortDelay10();
  p_.bus.GetNibbles();
}

void EpromProgrammer::deselect() { p_.bus.CEOEOFF(); }

void EpromProgrammer::selectWithOutputsOff() {
  p_.bus.CEON();
  p_.bus.OEOFF();
}

void EpromProgrammer::latchAddress() { p_.bus.SETADR(); }

void EpromProgrammer::latchAddressAndSelect() {
  p_.bus.SETADR();
  p_.bus.CEON();
}

void EpromProgrammer::readFirst24() {
  p_.bus.SETADR();
  p_.bus.VPP24_OFF();
  p_.bus.OEON();
  p_.bus.CEON();
  ReadBackByte();
  p_.bus.CEOFF();
}

void EpromProgrammer::readFirst() {
  p_.bus.SETADR();
  p_.bus.CEON();
  ReadBackByte();
  p_.bus.CEOFF();
}

void EpromProgrammer::putByteInLatch() {
  p_.state.RegShadow4 = p_.state.ByteToWrite;
  p_.registers.SetReg4();
}

void EpromProgrammer::putByteOnBus() {
  p_.registers.REG4ON();
  putByteInLatch();
}

void EpromProgrammer::pulseDelay() {
  p_.bus.spin(p_.state.DelayCountB);
  if (PulsesLeft_ < kLongPulsesBelow) p_.bus.spin(p_.state.DelayCountA);
}

void EpromProgrammer::pulse2732() {
  putByteInLatch();
  p_.registers.REG4ON();
  p_.bus.CEOFF();
  p_.bus.VPP24_ON();
  p_.bus.CEON();
  p_.bus.sleepMs(kPulse2732Ms);
  p_.bus.CEOFF();
  p_.bus.VPP24_OFF();
  p_.bus.CEON();
  p_.bus.ShortDelay20();
}

void EpromProgrammer::pulse2764() {
  putByteOnBus();
  hardware::clearBits(p_.state.RegShadow1, kPgmOnLatch1);
  p_.registers.SetReg1();
  pulseDelay();
  hardware::setBits(p_.state.RegShadow1, kPgmOnLatch1);
  p_.registers.SetReg1();
  p_.bus.ShortDelay20();
}

void EpromProgrammer::pulse27256() {
  putByteOnBus();
  p_.bus.CEOEOFF();
  p_.bus.CEON();
  pulseDelay();
  p_.bus.CEOFF();
  p_.bus.ShortDelay20();
}

void EpromProgrammer::pulse27080() {
  putByteOnBus();
  p_.bus.VPP24_ON();
  p_.bus.CEON();
  pulseDelay();
  p_.bus.CEOFF();
  p_.bus.VPP24_OFF();
  p_.bus.CEON();
  p_.bus.ShortDelay20();
}

void EpromProgrammer::pulse27010() {
  putByteOnBus();
  hardware::clearBits(p_.state.RegShadow3, hardware::kPin31High);
  p_.registers.SetReg3();
  pulseDelay();
  hardware::setBits(p_.state.RegShadow3, hardware::kPin31High);
  p_.registers.SetReg3();
  p_.bus.ShortDelay20();
}

}  // namespace kestrel::operations
