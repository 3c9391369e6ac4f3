#include "operations/flash_programmer.h"

#include "platform/runtime_error.h"

namespace kestrel::operations {
namespace {

// JEDEC maker codes.
constexpr std::int16_t kMakerAmic = 0x37;
constexpr std::int16_t kMakerAmd = 0x01;
constexpr std::int16_t kMakerEon = 0x1C;
constexpr std::int16_t kMakerAtmel = 0x1F;

constexpr int kByteAttempts = 50;
constexpr std::int32_t kAtmelByteMs = 1;
constexpr std::int64_t kLoopTestCounts = 10000;
constexpr std::int32_t kLoopTestRounds = 1000;

}  // namespace

bool FlashProgrammer::hasKnownMaker() const {
  const std::int16_t maker = operation_.FlashMakerID;
  return maker == kMakerAmic || maker == kMakerAmd || maker == kMakerEon || maker == kMakerAtmel;
}

void FlashProgrammer::ProgramFlash() {
  identification_.ReadFlashID();
  if (!hasKnownMaker()) {
    reporting_.LogMessage("Device ID# " + operation_.FlashCode + " - Not Supported");
    reporting_.noteEnding(Ending::Failed, "a flash of another maker is in the socket");
    operation_.ProgramStatus = 0;
    return;
  }
  reporting_.LogMessage("Device ID# " + operation_.FlashCode + " - Start programming");
  controls_.ProgressBar1.setMaximum(buffers_.CodeLength / 256);
  board_.registers.REG4ON();
  board_.bus.OEOFF();
  board_.bus.CEOFF();
  const std::int32_t last = buffers_.CodeLength - 1;
  const std::int32_t lastHigh = last / 65536;
  const std::int32_t lastMid = (last - lastHigh * 65536) / 256;
  latches_.LinearAddress = 0;
  for (std::int32_t high = 0; high <= lastHigh; ++high) {
    latches_.RegShadow3 = narrowed<std::int16_t>(at(device_.AddrMapHigh, high) | device_.Reg3Fixed |
                                                 hardware::kChipDisable);
    board_.registers.SetReg3();
    for (std::int32_t mid = 0; mid <= lastMid; ++mid) {
      board_.bus.latchMiddle(mid);
      reporting_.advanceProgress();
      if (!programPage()) return;
    }
  }
}

bool FlashProgrammer::programPage() {
  for (latches_.RegShadow2 = 0; latches_.RegShadow2 <= 255; ++latches_.RegShadow2) {
    board_.registers.SetReg2();
    if (!programByte()) return false;
    ++latches_.LinearAddress;
  }
  return true;
}

bool FlashProgrammer::programByte() {
  int tries = kByteAttempts;
  do {
    if (--tries == 0) {
      reports_.ProgramFailureReport();
      return false;
    }
    operation_.ByteToWrite = at(operation_.ProgramBuffer, latches_.LinearAddress);
    FlashWriteByte();
    if (operation_.FlashMakerID == kMakerAtmel) {
      board_.bus.sleepMs(kAtmelByteMs);
      operation_.FlashPollPending = 0;
    } else {
      FlashPollByte();
    }
  } while (operation_.FlashPollPending > 0);
  return true;
}

void FlashProgrammer::FlashPollByte() {
  board_.registers.REG4OFF();
  operation_.FlashPollPending = 1;
  board_.bus.CEON();
  board_.bus.OEON();
  board_.bus.GetNibbles();
  board_.bus.OEOFF();
  board_.bus.CEOFF();
  if (latches_.ReadByte == operation_.ByteToWrite) {
    operation_.FlashPollPending = 0;
  } else {
    ++operation_.FlashPollMisses;
  }
  board_.registers.REG4ON();
}

void FlashProgrammer::LoopFlashTest_Click() {
  const DeviceOperation operation = board_.operation();
  const std::int32_t rounds = controls_.Slider1.value() * kLoopTestRounds;
  std::int32_t& round = shell_.LoopIndex;
  for (round = 1; round <= rounds; ++round) {
    FlashWriteByte();
    board_.bus.spin(kLoopTestCounts);
    if (round % kLoopTestRounds == 0) screen_.turn();
  }
}

}  // namespace kestrel::operations
