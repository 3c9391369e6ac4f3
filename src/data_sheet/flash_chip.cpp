#include "data_sheet/flash_chip.h"

#include <algorithm>
#include <array>

#include "app/state/text_format.h"

namespace kestrel::data_sheet {
namespace {

constexpr std::size_t kBlockBytes = 256;

std::string textOf(devices::ChipCodes codes) {
  return hexText(codes.maker, 2) + "h " + hexText(codes.device, 2) + "h";
}

/// Lines that nobody drives, or that are held low.
bool areNoCodes(devices::ChipCodes codes) {
  return codes.maker == codes.device && (codes.maker == 0xFF || codes.maker == 0x00);
}

}  // namespace

Outcome FlashChip::program(std::span<const std::uint8_t> image, Progress& progress) {
  const hardware::ChipSession session(bus(), chip().sheet.wiring);
  powerUp();
  const Outcome outcome = identify();
  return outcome.isDone() ? programWhatDiffers(image, progress) : outcome;
}

Outcome FlashChip::erase(Progress& progress) {
  const hardware::ChipSession session(bus(), chip().sheet.wiring);
  powerUp();
  const Outcome outcome = identify();
  return outcome.isDone() ? eraseChip(progress) : outcome;
}

std::optional<devices::ChipCodes> FlashChip::codes() {
  const hardware::ChipSession session(bus(), chip().sheet.wiring);
  powerUp();
  const devices::ChipCodes seen = readCodes();
  leaveCodes();
  return seen;
}

// What the chip calls a protected sector means something only with a code that is right.
Outcome FlashChip::identify() {
  const devices::ChipCodes seen = readCodes();
  Outcome outcome = seen == wanted_ ? checkProtection() : checkCodes(seen);
  leaveCodes();
  return outcome;
}

// Refuses a chip of another code by its name, unless that is to be passed over.
Outcome FlashChip::checkCodes(devices::ChipCodes seen) const {
  if (chip().takesAnyCode) return {};
  if (areNoCodes(seen)) {
    return Outcome::refused("no flash answers (codes " + textOf(seen) + " instead of " +
                            textOf(wanted_) + "): is the chip in, and the right way round?");
  }
  const devices::DataSheet* const other = devices::dataSheetOf(seen);
  return Outcome::refused("the chip in the socket is " +
                          (other == nullptr ? "unknown here" : "a " + std::string(other->device)) +
                          " (codes " + textOf(seen) + " instead of " + textOf(wanted_) + ")");
}

Outcome FlashChip::programWhatDiffers(std::span<const std::uint8_t> image, Progress& progress) {
  return forEachPage(image, kBlockBytes, progress, [this](std::uint32_t first, Page block) {
    return programBlock(first, block);
  });
}

Outcome FlashChip::programBlock(std::uint32_t first, Page block) {
  std::array<std::uint8_t, kBlockBytes> before{};
  showCells();
  bus().enableOutputs();
  readBlock(first, std::span(before).first(block.size()));
  for (std::size_t i = 0; i < block.size(); ++i) {
    if (before[i] == block[i]) continue;
    const std::uint32_t address = first + static_cast<std::uint32_t>(i);
    if (!canBecome(before[i], block[i])) return Outcome::byteFailed(address, block[i], before[i]);
    const Outcome outcome = programByte(address, block[i]);
    if (!outcome.isDone()) return outcome;
  }
  return {};
}

Outcome FlashChip::checkErased(Progress& progress) {
  progress.expect(chip().sizeBytes);
  std::array<std::uint8_t, kBlockBytes> block{};
  showCells();
  bus().enableOutputs();
  for (std::uint32_t first = 0; first < chip().sizeBytes; first += kBlockBytes) {
    readBlock(first, block);
    const auto* const found =
        std::ranges::find_if(block, [](std::uint8_t byte) { return byte != kErased; });
    if (found != block.end()) {
      const auto address =
          static_cast<std::int32_t>(first) + static_cast<std::int32_t>(found - block.begin());
      return Outcome::failed("the chip is not erased: address " + hexText(address) + " reads " +
                             hexText(*found, 2) + "h");
    }
    progress.advance(kBlockBytes);
    bus().enableOutputs();
  }
  return {};
}

}  // namespace kestrel::data_sheet
