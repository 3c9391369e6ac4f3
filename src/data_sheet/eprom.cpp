#include "data_sheet/eprom.h"

#include <algorithm>

namespace kestrel::data_sheet {
namespace {

constexpr std::int32_t kVppOnMs = 10;  // 12.5 V through its switch to the pin

}  // namespace

Outcome Eprom::program(std::span<const std::uint8_t> image, Progress& progress) {
  const hardware::ChipSession session(bus(), chip().sheet.wiring);
  bus().prepareVpp(chip().vppVolts);
  if (sheet_.order == devices::VerifyOrder::WholeChip) return programWholeChip(image, progress);
  return programEachByte(image, progress);
}

Outcome Eprom::erase(Progress& /*progress*/) {
  return Outcome::refused("an EPROM is erased under the lamp, not by the board");
}

Outcome Eprom::programEachByte(std::span<const std::uint8_t> image, Progress& progress) {
  progress.expect(std::ssize(image));
  const bool isPulsedByCe = chip().sheet.wiring.strobe == devices::Strobe::ChipEnable;
  if (!isPulsedByCe) bus().select();
  if (!hasVppOnOe()) {
    bus().vppOn();
    bus().waitMs(kVppOnMs);
  }
  for (std::uint32_t address = 0; address < image.size(); ++address) {
    bus().setAddress(address);
    const Outcome outcome = programByte(address, image[address]);
    if (!outcome.isDone()) return outcome;
    progress.advance();
  }
  return {};
}

// A first pass gives every byte one pulse, with VPP standing on /OE; the second one reads the chip
// and goes on with the bytes that are not right yet.
Outcome Eprom::programWholeChip(std::span<const std::uint8_t> image, Progress& progress) {
  progress.expect(2 * std::ssize(image));
  bus().vppOn();
  bus().waitMs(kVppOnMs);
  for (std::uint32_t address = 0; address < image.size(); ++address) {
    if (image[address] != kErased) {
      bus().setAddress(address);
      pulse(image[address], sheet_.pulseUs);
    }
    progress.advance();
  }
  for (std::uint32_t address = 0; address < image.size(); ++address) {
    const std::uint8_t wanted = image[address];
    bus().setAddress(address);
    const Outcome outcome = programByte(address, wanted, wanted == kErased ? 0 : 1);
    if (!outcome.isDone()) return outcome;
    progress.advance();
  }
  return {};
}

/// `pulses` were given already.
Outcome Eprom::programByte(std::uint32_t address, std::uint8_t wanted, int pulses) {
  std::uint8_t seen = kErased;
  if (pulses != 0 || wanted == kErased) seen = readBack();
  while (seen != wanted && canBecome(seen, wanted) && pulses < sheet_.mostPulses) {
    pulse(wanted, sheet_.pulseUs);
    ++pulses;
    seen = readBack();
  }
  if (seen != wanted) return Outcome::byteFailed(address, wanted, seen);
  if (sheet_.overprogramPerPulseUs != 0 && pulses != 0) overprogram(wanted, pulses);
  return {};
}

// With VPP on /OE a low /CE alone is the pulse, so it is high before VPP comes.
void Eprom::pulse(std::uint8_t data, std::int64_t widthUs) {
  if (hasVppOnOe()) bus().deselect();
  bus().drive(data);
  if (hasVppOnOe()) bus().vppOn();
  bus().pulse(widthUs);
}

void Eprom::overprogram(std::uint8_t data, int pulses) {
  pulse(data, std::min(sheet_.overprogramPerPulseUs * pulses, sheet_.longestOverprogramUs));
}

// The outputs stay on until the next pulse.
std::uint8_t Eprom::readBack() {
  if (hasVppOnOe()) bus().vppOff();
  bus().enableOutputs();
  if (hasVppOnOe()) bus().select();
  return bus().read();
}

bool Eprom::hasVppOnOe() const { return chip().sheet.wiring.vpp == devices::VppPin::Pin24; }

}  // namespace kestrel::data_sheet
