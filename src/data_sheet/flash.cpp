#include "data_sheet/flash.h"

#include "app/state/text_format.h"

namespace kestrel::data_sheet {
namespace {

constexpr std::uint8_t kIdentify = 0x90;
constexpr std::uint8_t kProgramByte = 0xA0;
constexpr std::uint8_t kPrepareErase = 0x80;
constexpr std::uint8_t kEraseChip = 0x10;
constexpr std::uint8_t kReset = 0xF0;

// A part of a maker beyond the first 126 shows this one first, and its own code with A8 high.
constexpr std::uint8_t kContinuation = 0x7F;
constexpr std::uint32_t kA8 = 0x100;

// The smallest sectors of these parts (AM29F010).
constexpr std::uint32_t kSectorBytes = 0x4000;
constexpr std::uint32_t kProtectionAddress = 2;

constexpr unsigned kToggleBit = 0x40;
constexpr unsigned kTimeLimitBit = 0x20;

constexpr int kQuickReads = 3;
constexpr std::int32_t kBytePollUs = 25;
constexpr std::int32_t kErasePollMs = 20;
constexpr std::int32_t kMsPerSecond = 1000;

}  // namespace

void Flash::reset() { write({0, kReset}); }

devices::ChipCodes Flash::readCodes() {
  writeCommand(kIdentify);
  const devices::ChipCodes first = codesAt(0);
  return first.maker == kContinuation ? codesAt(kA8) : first;
}

Outcome Flash::checkProtection() {
  for (std::uint32_t sector = 0; sector < chip().sizeBytes; sector += kSectorBytes) {
    bus().setAddress(sector + kProtectionAddress);
    if (readOnce() == 0x01) {
      return Outcome::refused("the chip is write-protected at address " +
                              hexText(static_cast<std::int32_t>(sector)));
    }
  }
  return {};
}

Outcome Flash::programByte(std::uint32_t address, std::uint8_t wanted) {
  writeCommand(kProgramByte);
  write({address, wanted});
  bus().enableOutputs();
  // Bit 7 is right only when the byte is. A typical chip has it in the first of these reads.
  for (int read = 0; read < kQuickReads; ++read) {
    if (bus().read() == wanted) return {};
  }
  return waitForByte(address, wanted);
}

Outcome Flash::waitForByte(std::uint32_t address, std::uint8_t wanted) {
  Work work = look();
  const int polls = kTimeOutFactor * sheet_.longestByteUs / kBytePollUs;
  for (int poll = 0; work == Work::Busy && poll < polls; ++poll) {
    bus().waitUs(kBytePollUs);
    work = look();
  }
  if (work == Work::Done && seen_ == wanted) return {};
  if (work == Work::Done) return Outcome::byteFailed(address, wanted, seen_);
  reset();
  return Outcome::failed(
      "the chip " + std::string(work == Work::GivenUp ? "has given up" : "is still busy") +
      " with the byte at address " + hexText(static_cast<std::int32_t>(address)) + ", and reads " +
      hexText(seen_, 2) + "h");
}

Outcome Flash::eraseChip(Progress& progress) {
  writeCommand(kPrepareErase);
  writeCommand(kEraseChip);
  const Outcome outcome = waitForErase(progress);
  return outcome.isDone() ? checkErased(progress) : outcome;
}

// A chip that has given up its erase shows in its cells where.
Outcome Flash::waitForErase(Progress& progress) {
  progress.expect(sheet_.typicalEraseMs);
  const std::int32_t timeOutMs = kTimeOutFactor * sheet_.longestEraseMs;
  Work work = look();
  for (std::int32_t ms = 0; work == Work::Busy && ms < timeOutMs; ms += kErasePollMs) {
    bus().waitMs(kErasePollMs);
    if (ms < sheet_.typicalEraseMs) progress.advance(kErasePollMs);
    work = look();
  }
  if (work != Work::Done) reset();
  if (work != Work::Busy) return {};
  return Outcome::failed("the chip is still busy " + std::to_string(timeOutMs / kMsPerSecond) +
                         " s after its erase began, and reads " + hexText(seen_, 2) + "h");
}

// Bit 6 that came to rest means an end; the limit that fell together with the end counts for
// nothing.
Flash::Work Flash::look() {
  const auto toggles = [this] {
    const std::uint8_t before = readOnce();
    seen_ = readOnce();
    return ((before ^ seen_) & kToggleBit) != 0;
  };
  if (!toggles()) return Work::Done;
  if ((seen_ & kTimeLimitBit) == 0) return Work::Busy;
  return toggles() ? Work::GivenUp : Work::Done;
}

}  // namespace kestrel::data_sheet
