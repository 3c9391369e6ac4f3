#pragma once

#include "data_sheet/pages.h"
#include "data_sheet/parallel_chip.h"

namespace kestrel::data_sheet {

/// EEPROMs that write a page by themselves: 28C256 and its like, AT29C256.
///
/// The bytes of a page follow each other within the chip's load window (100 us), at the full speed
/// of the port; then it is busy for its write cycle, with bit 7 the complement of the last byte's
/// and bit 6 another one at every read. A page that is right already is passed over.
///
/// Software protection: a protected chip takes a page only behind the bytes AAh at 5555h, 55h at
/// 2AAAh, A0h at 5555h, which also protect it; AAh, 55h, 80h, AAh, 55h, 20h at the same addresses
/// end it.
class PageEeprom final : public ParallelChip {
 public:
  PageEeprom(const ChipChoice& chip, const devices::PageSheet& sheet, hardware::ChipBus& bus)
      : ParallelChip(chip, bus), sheet_(sheet) {}

  [[nodiscard]] Outcome program(std::span<const std::uint8_t> image, Progress& progress) override;
  [[nodiscard]] Outcome erase(Progress& progress) override;
  [[nodiscard]] std::optional<devices::ChipCodes> codes() override;

 private:
  void command(std::uint8_t code);
  [[nodiscard]] Outcome endProtection();
  [[nodiscard]] Outcome programPage(std::uint32_t first, Page page);
  [[nodiscard]] Outcome writePage(std::uint32_t first, Page page);
  [[nodiscard]] Outcome waitForEnd(std::uint32_t address, std::uint8_t last);
  [[nodiscard]] Outcome compare(std::uint32_t first, Page page);

  const devices::PageSheet& sheet_;
  bool unlocksPages_ = false;
};

}  // namespace kestrel::data_sheet
