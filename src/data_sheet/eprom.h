#pragma once

#include "data_sheet/parallel_chip.h"

namespace kestrel::data_sheet {

/// UV EPROMs: pulses of the sheet's length, no more of them than it allows, and its overprogram
/// pulse.
///
///   pulse on        programmed with         read back with
///   /PGM            /CE low, /OE high       /CE low, /OE low, /PGM high
///   /CE             /OE high                /CE high, /OE low
///   /CE, VPP on /OE VPP                     VPP off, /CE low, /OE low
///
/// FFh, the erased state, is read back and not pulsed. A byte with a 0 where a 1 is wanted has
/// failed at once: only the lamp makes a 1.
///
/// The sheets raise the supply to 6 or 6.25 V meanwhile, which this board cannot; the margin of a
/// cell is so much smaller.
class Eprom final : public ParallelChip {
 public:
  Eprom(const ChipChoice& chip, const devices::EpromSheet& sheet, hardware::ChipBus& bus)
      : ParallelChip(chip, bus), sheet_(sheet) {}

  [[nodiscard]] Outcome program(std::span<const std::uint8_t> image, Progress& progress) override;
  [[nodiscard]] Outcome erase(Progress& progress) override;

 private:
  [[nodiscard]] Outcome programEachByte(std::span<const std::uint8_t> image, Progress& progress);
  [[nodiscard]] Outcome programWholeChip(std::span<const std::uint8_t> image, Progress& progress);
  [[nodiscard]] Outcome programByte(std::uint32_t address, std::uint8_t wanted, int pulses = 0);
  void pulse(std::uint8_t data, std::int64_t widthUs);
  void overprogram(std::uint8_t data, int pulses);
  [[nodiscard]] std::uint8_t readBack();
  [[nodiscard]] bool hasVppOnOe() const;

  const devices::EpromSheet& sheet_;
};

}  // namespace kestrel::data_sheet
