#include "data_sheet/page_eeprom.h"

#include <algorithm>
#include <array>
#include <vector>

#include "app/state/text_format.h"

namespace kestrel::data_sheet {
namespace {

constexpr unsigned kDataBit = 0x80;
constexpr std::uint8_t kIdentify = 0x90;
constexpr std::uint8_t kLeaveIdentify = 0xF0;
constexpr std::uint8_t kOpenLoad = 0xA0;
constexpr std::uint8_t kBeginEndProtection = 0x80;
constexpr std::uint8_t kEndProtection = 0x20;

// A load that the computer interrupts for longer than the window leaves half a page: it is sent
// again. Two plain tries come before the chip is taken for a protected one.
constexpr int kPageAttempts = 6;
constexpr int kPlainTries = 2;

constexpr std::size_t kFirstComparedBytes = 2;
constexpr std::size_t kMostComparedBytes = 32;

constexpr std::int64_t kReadBackUs = 10;
constexpr int kEqualReads = 4;

}  // namespace

Outcome PageEeprom::program(std::span<const std::uint8_t> image, Progress& progress) {
  const hardware::ChipSession session(bus(), chip().sheet.wiring);
  bus().useFullSpeed();
  bus().select();
  unlocksPages_ = chip().protection == Protection::On;
  if (chip().protection == Protection::Off) {
    const Outcome outcome = endProtection();
    if (!outcome.isDone()) return outcome;
  }
  return forEachPage(image, static_cast<std::size_t>(sheet_.pageBytes), progress,
                     [this](std::uint32_t first, Page page) { return programPage(first, page); });
}

Outcome PageEeprom::erase(Progress& progress) {
  const std::vector<std::uint8_t> erased(chip().sizeBytes, kErased);
  return program(erased, progress);
}

// The identify mode of a flash with pages; each command takes a write cycle.
std::optional<devices::ChipCodes> PageEeprom::codes() {
  if (!sheet_.codes) return std::nullopt;
  const hardware::ChipSession session(bus(), chip().sheet.wiring);
  bus().useFullSpeed();
  bus().select();
  command(kIdentify);
  const devices::ChipCodes seen = codesAt(0);
  command(kLeaveIdentify);
  return seen;
}

void PageEeprom::command(std::uint8_t code) {
  bus().disableOutputs();
  writeCommand(code);
  bus().waitMs(sheet_.longestCycleMs);
}

Outcome PageEeprom::endProtection() {
  bus().disableOutputs();
  writeCommand(kBeginEndProtection);
  writeCommand(kEndProtection);
  return waitForEnd(kCommandAddress, kEndProtection);
}

Outcome PageEeprom::programPage(std::uint32_t first, Page page) {
  // A chip that is to be protected needs one load at least.
  const bool mustBeSent = chip().protection == Protection::On && first == 0;
  Outcome outcome = compare(first, page);
  if (outcome.isDone() && !mustBeSent) return outcome;
  for (int tries = 0; tries < kPageAttempts; ++tries) {
    if (tries == kPlainTries && chip().protection == Protection::Keep) unlocksPages_ = true;
    outcome = writePage(first, page);
    if (!outcome.isDone()) return outcome;
    outcome = compare(first, page);
    if (outcome.isDone()) return outcome;
  }
  return outcome;
}

Outcome PageEeprom::writePage(std::uint32_t first, Page page) {
  bus().disableOutputs();
  if (unlocksPages_) writeCommand(kOpenLoad);
  for (std::uint32_t address = first; const std::uint8_t byte : page) {
    write({.address = address++, .data = byte});
  }
  return waitForEnd(first + static_cast<std::uint32_t>(page.size()) - 1, page.back());
}

// The last byte shows up when the cycle has ended. Where it does not, a protected chip or half a
// page, the reads are at least equal: bit 6 has come to rest.
Outcome PageEeprom::waitForEnd(std::uint32_t address, std::uint8_t last) {
  bus().setAddress(address);
  std::uint8_t before = readOnce();
  int equal = 0;
  const std::int64_t polls =
      std::int64_t{1000} * kTimeOutFactor * sheet_.longestCycleMs / kReadBackUs;
  for (std::int64_t poll = 0; poll < polls; ++poll) {
    const std::uint8_t seen = readOnce();
    equal = seen == before ? equal + 1 : 0;
    if (equal > 0 && ((seen ^ last) & kDataBit) == 0) return {};
    if (equal == kEqualReads) return {};
    before = seen;
    bus().waitUs(kReadBackUs);
  }
  return Outcome::failed(
      "the chip is still busy " + std::to_string(kTimeOutFactor * sheet_.longestCycleMs) +
      " ms after it was sent the page of address " + hexText(static_cast<std::int32_t>(address)) +
      ", and reads " + hexText(before, 2) + "h");
}

// A page that differs mostly does so at its beginning, so that few bytes are read then.
Outcome PageEeprom::compare(std::uint32_t first, Page page) {
  std::array<std::uint8_t, kMostComparedBytes> seen{};
  std::size_t count = kFirstComparedBytes;
  bus().enableOutputs();
  while (!page.empty()) {
    const Page block = page.first(std::min(page.size(), count));
    readBlock(first, std::span(seen).first(block.size()));
    Outcome outcome = compareBytes(first, block, std::span(seen).first(block.size()));
    if (!outcome.isDone()) return outcome;
    first += static_cast<std::uint32_t>(block.size());
    page = page.subspan(block.size());
    count = kMostComparedBytes;
  }
  return {};
}

}  // namespace kestrel::data_sheet
