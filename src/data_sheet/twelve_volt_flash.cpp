#include "data_sheet/twelve_volt_flash.h"

#include "app/state/text_format.h"

namespace kestrel::data_sheet {
namespace {

constexpr std::uint8_t kReadCells = 0x00;
constexpr std::uint8_t kSetUpErase = 0x20;  // written twice: the second one starts it
constexpr std::uint8_t kSetUpProgram = 0x40;
constexpr std::uint8_t kIdentify = 0x90;
constexpr std::uint8_t kEraseVerify = 0xA0;
constexpr std::uint8_t kProgramVerify = 0xC0;

constexpr std::int32_t kVppOnMs = 10;
constexpr std::int64_t kProgramUs = 10;
constexpr std::int32_t kEraseMs = 10;
constexpr std::int64_t kVerifyUs = 6;
constexpr int kMostProgramPulses = 25;
constexpr int kMostErasePulses = 1000;

constexpr std::int64_t kProgressStep = 256;

}  // namespace

void TwelveVoltFlash::powerUp() {
  bus().prepareVpp(chip().vppVolts);
  bus().select();
  bus().vppOn();
  bus().waitMs(kVppOnMs);
}

void TwelveVoltFlash::showCells() { write({0, kReadCells}); }

devices::ChipCodes TwelveVoltFlash::readCodes() {
  write({0, kIdentify});
  return codesAt(0);
}

Outcome TwelveVoltFlash::programByte(std::uint32_t address, std::uint8_t wanted) {
  std::uint8_t seen = kErased;
  for (int pulse = 0; pulse < kMostProgramPulses; ++pulse) {
    write({address, kSetUpProgram});
    write({address, wanted});
    bus().waitUs(kProgramUs);
    write({address, kProgramVerify});
    bus().waitUs(kVerifyUs);
    seen = readOnce();
    if (seen == wanted) return {};
  }
  return Outcome::byteFailed(address, wanted, seen);
}

Outcome TwelveVoltFlash::eraseChip(Progress& progress) {
  const std::vector<std::uint8_t> zeros(chip().sizeBytes, 0x00);
  const Outcome outcome = programWhatDiffers(zeros, progress);
  return outcome.isDone() ? eraseZeros(progress) : outcome;
}

// What was found erased stays so: each pulse is followed by the bytes from the last one on.
Outcome TwelveVoltFlash::eraseZeros(Progress& progress) {
  progress.expect(chip().sizeBytes);
  int pulses = 0;
  for (std::uint32_t address = 0; address < chip().sizeBytes; ++address) {
    std::uint8_t seen = pulses == 0 ? 0x00 : verifyErased(address);
    for (; seen != kErased && pulses < kMostErasePulses; ++pulses) {
      eraseOnce();
      seen = verifyErased(address);
    }
    if (seen != kErased) {
      return Outcome::failed("the chip is not erased by " + std::to_string(kMostErasePulses) +
                             " pulses: address " + hexText(static_cast<std::int32_t>(address)) +
                             " reads " + hexText(seen, 2) + "h");
    }
    if ((address + 1) % kProgressStep == 0) progress.advance(kProgressStep);
  }
  showCells();
  return {};
}

void TwelveVoltFlash::eraseOnce() {
  write({0, kSetUpErase});
  write({0, kSetUpErase});
  bus().waitMs(kEraseMs);
}

std::uint8_t TwelveVoltFlash::verifyErased(std::uint32_t address) {
  write({address, kEraseVerify});
  bus().waitUs(kVerifyUs);
  return readOnce();
}

}  // namespace kestrel::data_sheet
