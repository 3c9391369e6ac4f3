#pragma once

#include "data_sheet/parallel_chip.h"

namespace kestrel::data_sheet {

/// What flash of both kinds shares: it tells its code, and is programmed byte by byte from FFh.
class FlashChip : public ParallelChip {
 public:
  using ParallelChip::ParallelChip;

 protected:
  /// Refuses a chip of another code by its name, unless that is to be passed over.
  [[nodiscard]] Outcome checkCodes(devices::ChipCodes seen, devices::ChipCodes wanted) const;

  /// A byte that is right is passed over; one that wants a 1 where a 0 stands has failed at once.
  [[nodiscard]] Outcome programWhatDiffers(std::span<const std::uint8_t> image, Progress& progress);

  [[nodiscard]] Outcome checkErased(Progress& progress);

  /// A byte that differs in ones alone.
  [[nodiscard]] virtual Outcome programByte(std::uint32_t address, std::uint8_t wanted) = 0;

  /// From here on a read shows the cells.
  virtual void showCells() = 0;

 private:
  [[nodiscard]] Outcome programBlock(std::uint32_t first, std::span<const std::uint8_t> block);
};

}  // namespace kestrel::data_sheet
