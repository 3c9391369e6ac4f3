#include "operations/flash_programmer.h"

#include "platform/runtime_error.h"

namespace kestrel::operations {
namespace {

// JEDEC maker codes.
constexpr std::int16_t kMakerAmic = 0x37;
constexpr std::int16_t kMakerAmd = 0x01;
constexpr std::int16_t kMakerEon = 0x1C;
constexpr std::int16_t kMakerAtmel = 0x1F;

constexpr int kTries = 50;
constexpr std::int32_t kAtmelByteMs = 1;
constexpr std::int64_t kLoopTestCounts = 10000;
constexpr std::int32_t kLoopTestRounds = 1000;

}  // namespace

bool FlashProgrammer::hasKnownMaker() const {
  const std::int16_t maker = p_.state.FlashMakerID;
  return maker == kMakerAmic || maker == kMakerAmd || maker == kMakerEon || maker == kMakerAtmel;
}

void FlashProgrammer::ProgramFlash() {
  ProgrammerState& s = p_.state;
  identification_.ReadFlashID();
  if (!hasKnownMaker()) {
    p_.reporting.LogMessage("Device ID# " + s.FlashCode + " - Not Supported");
    s.ProgramStatus = 0;
    return;
  }
  p_.reporting.LogMessage("Device ID# " + s.FlashCode + " - Start programming");
  p_.controls.ProgressBar1.setMaximum(s.CodeLength / 256);
  p_.registers.REG4ON();
  p_.bus.OEOFF();
  p_.bus.CEOFF();
  const std::int32_t last = s.CodeLength - 1;
  const std::int32_t lastHigh = last / 65536;
  const std::int32_t lastMid = (last - lastHigh * 65536) / 256;
  s.LinearAddress = 0;
  for (std::int32_t high = 0; high <= lastHigh; ++high) {
    s.RegShadow3 =
        narrowed<std::int16_t>(at(s.AddrMapHigh, high) | s.Reg3Fixed | hardware::kChipDisable);
    p_.registers.SetReg3();
    for (std::int32_t mid = 0; mid <= lastMid; ++mid) {
      p_.bus.latchMiddle(mid);
      p_.reporting.advanceProgress();
      if (!programPage()) return;
    }
  }
}

bool FlashProgrammer::programPage() {
  ProgrammerState& s = p_.state;
  for (s.RegShadow2 = 0; s.RegShadow2 <= 255; ++s.RegShadow2) {
    p_.registers.SetReg2();
    if (!programByte()) return false;
    ++s.LinearAddress;
  }
  return true;
}

bool FlashProgrammer::programByte() {
  ProgrammerState& s = p_.state;
  int tries = kTries;
  do {
    if (--tries == 0) {
      reports_.ProgramFailureReport();
      return false;
    }
    s.ByteToWrite = at(s.ProgramBuffer, s.LinearAddress);
    FlashWriteByte();
    if (s.FlashMakerID == kMakerAtmel) {
      p_.bus.sleepMs(kAtmelByteMs);
      s.FlashPollPending = 0;
    } else {
      FlashPollByte();
    }
  } while (s.FlashPollPending > 0);
  return true;
}

void FlashProgrammer::FlashPollByte() {
  ProgrammerState& s = p_.state;
  p_.registers.REG4OFF();
  s.FlashPollPending = 1;
  p_.bus.CEON();
  p_.bus.OEON();
  p_.bus.GetNibbles();
  p_.bus.OEOFF();
  p_.bus.CEOFF();
  if (s.ReadByte == s.ByteToWrite) {
    s.FlashPollPending = 0;
  } else {
    ++s.FlashPollMisses;
  }
  p_.registers.REG4ON();
}

void FlashProgrammer::LoopFlashTest_Click() {
  const std::int32_t rounds = p_.controls.Slider1.value() * kLoopTestRounds;
  std::int32_t& round = p_.state.LoopIndex;
  for (round = 1; round <= rounds; ++round) {
    FlashWriteByte();
    p_.bus.spin(kLoopTestCounts);
    if (round % kLoopTestRounds == 0) screen_.turn();
  }
}

}  // namespace kestrel::operations
