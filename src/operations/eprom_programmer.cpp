#include "operations/eprom_programmer.h"

#include "platform/runtime_error.h"

namespace kestrel::operations {
namespace {

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

constexpr int latchBitOf(devices::VppPin pin) {
  switch (pin) {
    case devices::VppPin::Pin1:
      return hardware::kVppOnPin1;
    case devices::VppPin::Pin3:
      return hardware::kVppOnPin3;
    case devices::VppPin::Pin24:  // by each pulse
    case devices::VppPin::None:
      break;
  }
  return 0;
}

}  // namespace

void EpromProgrammer::P2732() {
  board_.registers.REG4ON();
  board_.bus.CEOEOFF();
  setUpLatch0();
  waitForVppSettling();
  reportStart();
  board_.bus.OEON();
  forEachByte(operation_.ProgramIndex, kBlinkEvery64, [this] {
    board_.bus.SETADR();
    board_.bus.VPP24_OFF();
    board_.bus.OEON();
    readAddress();
    if (isRightAlready()) return true;
    board_.bus.SETADR();
    return pulseUntilRight([this] {
      pulse2732();
      ReadBackByte();
    });
  });
}

void EpromProgrammer::P2764_128() {
  board_.registers.REG4ON();
  board_.bus.CEOEOFF();
  setUpLatch0();
  waitForVppSettling();
  reportStart();
  const bool isDone = forEachByte(operation_.ProgramIndex, kBlinkEvery512, [this] {
    if (operation_.ByteToWrite == kErased) return true;
    board_.bus.SETADR();
    board_.bus.CEON();
    return pulseUntilRight([this] {
      pulse2764();
      readBackWithOutputsOn();
    });
  });
  if (isDone) board_.bus.CEOFF();
}

void EpromProgrammer::P27256_040() {
  board_.registers.REG4ON();
  board_.bus.CEOEOFF();
  setUpLatch0();
  reportStart();
  forEachByte(operation_.ProgramIndex, kBlinkEvery512, [this] {
    if (operation_.ByteToWrite == kErased) return true;
    board_.bus.SETADR();
    return pulseUntilRight([this] {
      pulse27256();
      readBackWithOutputsOn();
    });
  });
}

void EpromProgrammer::P27080() {
  board_.registers.REG4ON();
  board_.bus.CEOEOFF();
  setUpLatch0();
  reportStart();
  board_.bus.OEON();
  forEachByte(operation_.ProgramIndex, kBlinkEvery1024, [this] {
    board_.bus.SETADR();
    readAddress();
    if (isRightAlready()) return true;
    return pulseUntilRight([this] {
      pulse27080();
      ReadBackByte();
    });
  });
}

void EpromProgrammer::P27010_020() {
  board_.registers.REG4ON();
  board_.bus.CEON();
  board_.bus.OEOFF();
  setUpLatch0();
  reportStart();
  forEachByte(shell_.LoopIndex, kBlinkEvery512, [this] {
    if (operation_.ByteToWrite == kErased) return true;
    board_.bus.SETADR();
    return pulseUntilRight([this] {
      pulse27010();
      readBackWithOutputsOn();
    });
  });
}

// A model that is none of 4, 5, 6 leaves the latch as it is, but for the 2764's VPP pin.
void EpromProgrammer::setUpLatch0() {
  const devices::Family& family = devices::familyOf(device_.FamilyCode);
  pulses_ = family.pulses;
  const std::int16_t model = portState_.KestrelModel;
  const bool hasModel = model == 4 || model == 5 || model == 6;
  int latch = hasModel ? kProgramming : latches_.RegShadow0;
  if (model == 4) latch |= kVppModel4;
  if (model == 5 || model == 6) latch |= levelBits(family);
  const bool is2764 = family.program == devices::ProgramRoutine::P2764_128;
  if (hasModel || is2764) latch |= latchBitOf(family.vppPin);
  latches_.RegShadow0 = narrowed<std::int16_t>(latch);
  board_.registers.SetReg0();
}

int EpromProgrammer::levelBits(const devices::Family& family) const {
  if (!family.takes21And25V || device_.VppClass != 3) return 0;
  if (device_.VppVolts == 21) return kVpp21;
  return device_.VppVolts == 25 ? kVpp25 : 0;
}

// 21 and 25 V come from the board's converter, which takes about a second to rise.
void EpromProgrammer::waitForVppSettling() {
  if (device_.VppVolts <= 12) return;
  reporting_.LogMessage("Wait 1500ms second VPP Settling");
  board_.bus.sleepMs(kVppSettlingMs);
}

void EpromProgrammer::reportStart() { reporting_.LogMessage("Programming Started... Wait "); }

template <typename ProgramByte>
bool EpromProgrammer::forEachByte(std::int32_t& index, std::int32_t blinkMask,
                                  const ProgramByte& programByte) {
  for (index = 0; index < operation_.ProgramLength; ++index) {
    operation_.ByteToWrite = at(operation_.ProgramBuffer, index);
    if (!programByte()) return false;
    board_.bus.IncADR();
    if ((index & blinkMask) == 0) board_.lamps.BlinkProgramLamp();
    reporting_.GoProgressiveBar1();
  }
  return true;
}

template <typename PulseAndReadBack>
bool EpromProgrammer::pulseUntilRight(const PulseAndReadBack& pulseAndReadBack) {
  PulsesLeft_ = pulses_.budget;
  do {
    if (--PulsesLeft_ == 0) {
      reports_.ProgramFailureReport();
      return false;
    }
    pulseAndReadBack();
  } while (latches_.ReadByte != operation_.ByteToWrite);
  return true;
}

void EpromProgrammer::ReadBackByte() {
  latches_.RegShadow4 = kErased;
  board_.registers.SetReg4();
  board_.bus.ShortDelay10();
  board_.registers.REG4OFF();
  board_.bus.ShortDelay10();
  board_.bus.GetNibbles();
}

void EpromProgrammer::readBackWithOutputsOn() {
  board_.bus.OEON();
  ReadBackByte();
  board_.bus.OEOFF();
}

void EpromProgrammer::readAddress() {
  board_.bus.CEON();
  ReadBackByte();
  board_.bus.CEOFF();
}

// A byte that is there already is passed over like an erased one.
bool EpromProgrammer::isRightAlready() {
  if (latches_.ReadByte == operation_.ByteToWrite) operation_.ByteToWrite = kErased;
  return operation_.ByteToWrite == kErased;
}

void EpromProgrammer::putByteInLatch() {
  latches_.RegShadow4 = operation_.ByteToWrite;
  board_.registers.SetReg4();
}

void EpromProgrammer::putByteOnBus() {
  board_.registers.REG4ON();
  putByteInLatch();
}

void EpromProgrammer::pulseDelay() {
  board_.bus.spin(timing_.DelayCountB);
  if (PulsesLeft_ < pulses_.longBelow) board_.bus.spin(timing_.DelayCountA);
}

void EpromProgrammer::pulse2732() {
  putByteInLatch();
  board_.registers.REG4ON();
  board_.bus.CEOFF();
  board_.bus.VPP24_ON();
  board_.bus.CEON();
  board_.bus.sleepMs(pulses_.milliseconds);
  board_.bus.CEOFF();
  board_.bus.VPP24_OFF();
  board_.bus.CEON();
  board_.bus.ShortDelay20();
}

void EpromProgrammer::pulse2764() {
  putByteOnBus();
  hardware::clearBits(latches_.RegShadow1, kPgmOnLatch1);
  board_.registers.SetReg1();
  pulseDelay();
  hardware::setBits(latches_.RegShadow1, kPgmOnLatch1);
  board_.registers.SetReg1();
  board_.bus.ShortDelay20();
}

void EpromProgrammer::pulse27256() {
  putByteOnBus();
  board_.bus.CEOEOFF();
  board_.bus.CEON();
  pulseDelay();
  board_.bus.CEOFF();
  board_.bus.ShortDelay20();
}

void EpromProgrammer::pulse27080() {
  putByteOnBus();
  board_.bus.VPP24_ON();
  board_.bus.CEON();
  pulseDelay();
  board_.bus.CEOFF();
  board_.bus.VPP24_OFF();
  board_.bus.CEON();
  board_.bus.ShortDelay20();
}

void EpromProgrammer::pulse27010() {
  putByteOnBus();
  hardware::clearBits(latches_.RegShadow3, hardware::kPin31High);
  board_.registers.SetReg3();
  pulseDelay();
  hardware::setBits(latches_.RegShadow3, hardware::kPin31High);
  board_.registers.SetReg3();
  board_.bus.ShortDelay20();
}

}  // namespace kestrel::operations
