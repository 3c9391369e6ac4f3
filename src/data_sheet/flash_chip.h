#pragma once

#include "data_sheet/pages.h"
#include "data_sheet/parallel_chip.h"

namespace kestrel::data_sheet {

/// What flash of both kinds shares: its code is read before anything is written, and it is
/// programmed byte by byte from FFh.
class FlashChip : public ParallelChip {
 public:
  FlashChip(const ChipChoice& chip, devices::ChipCodes wanted, hardware::ChipBus& bus)
      : ParallelChip(chip, bus), wanted_(wanted) {}

  [[nodiscard]] Outcome program(std::span<const std::uint8_t> image, Progress& progress) final;
  [[nodiscard]] Outcome erase(Progress& progress) final;
  [[nodiscard]] std::optional<devices::ChipCodes> codes() final;

 protected:
  /// Selects the chip and makes it take commands.
  virtual void powerUp() = 0;

  /// Enters the mode in which the chip shows its codes, and leaves it.
  [[nodiscard]] virtual devices::ChipCodes readCodes() = 0;
  virtual void leaveCodes() = 0;

  /// Of a chip of the right code, in that mode.
  [[nodiscard]] virtual Outcome checkProtection() { return {}; }

  [[nodiscard]] virtual Outcome eraseChip(Progress& progress) = 0;

  /// A byte that is right is passed over; one that wants a 1 where a 0 stands has failed at once.
  [[nodiscard]] Outcome programWhatDiffers(std::span<const std::uint8_t> image, Progress& progress);

  [[nodiscard]] Outcome checkErased(Progress& progress);

  /// A byte that differs in ones alone.
  [[nodiscard]] virtual Outcome programByte(std::uint32_t address, std::uint8_t wanted) = 0;

  /// From here on a read shows the cells.
  virtual void showCells() = 0;

 private:
  [[nodiscard]] Outcome identify();
  [[nodiscard]] Outcome checkCodes(devices::ChipCodes seen) const;
  [[nodiscard]] Outcome programBlock(std::uint32_t first, Page block);

  devices::ChipCodes wanted_;
};

}  // namespace kestrel::data_sheet
