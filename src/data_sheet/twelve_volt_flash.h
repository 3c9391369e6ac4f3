#pragma once

#include "data_sheet/flash_chip.h"

namespace kestrel::data_sheet {

/// Flash of the first generation, CAT28F010 and CAT28F020. With 12 V on pin 1 a write goes to its
/// command register; without them it is a read-only memory.
///
///   00h                   reads show the cells
///   90h                   reads show maker and device code
///   40h, address + data   a program pulse begins; C0h ends it, and 6 us later the byte can be read
///   20h, 20h              an erase pulse begins; A0h with an address ends it, and 6 us later the
///                         byte at that address can be read
///
/// A byte gets up to 25 program pulses of 10 us. To be erased every byte is made 00h first, as
/// cells that are erased further than the others conduct for ever; then come pulses of 10 ms, up to
/// 1,000 and none more once every byte is FFh. A timer of the chip's own ends a pulse that the
/// computer lets grow too long.
class TwelveVoltFlash final : public FlashChip {
 public:
  TwelveVoltFlash(const ChipChoice& chip, const devices::TwelveVoltFlashSheet& sheet,
                  hardware::ChipBus& bus)
      : FlashChip(chip, sheet.codes, bus) {}

 protected:
  void powerUp() override;
  [[nodiscard]] devices::ChipCodes readCodes() override;
  void leaveCodes() override { showCells(); }
  [[nodiscard]] Outcome eraseChip(Progress& progress) override;
  [[nodiscard]] Outcome programByte(std::uint32_t address, std::uint8_t wanted) override;
  void showCells() override;

 private:
  [[nodiscard]] Outcome eraseZeros(Progress& progress);
  void eraseOnce();
  [[nodiscard]] std::uint8_t verifyErased(std::uint32_t address);
};

}  // namespace kestrel::data_sheet
