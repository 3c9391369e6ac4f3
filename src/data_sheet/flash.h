#pragma once

#include "data_sheet/flash_chip.h"

namespace kestrel::data_sheet {

/// 5 V flash with the JEDEC command set: each command behind AAh at 555h and 55h at 2AAh (address
/// bits 0 to 10 count; the bytes here are written to 5555h and 2AAAh, which older parts want).
///
///   90h, read           maker at 0, device at 1, protection of the sector at its address + 2
///   A0h, address + data makes zeros of ones
///   80h, unlock, 10h    makes all bytes FFh
///   F0h                 reads bytes again, also after a time limit
///
/// While busy bit 7 is the complement of the byte's, bit 6 another one at every read, and bit 5
/// goes to 1 when the chip has given up. The code is read before anything is written.
class Flash final : public FlashChip {
 public:
  Flash(const ChipChoice& chip, const devices::FlashSheet& sheet, hardware::ChipBus& bus)
      : FlashChip(chip, sheet.codes, bus), sheet_(sheet) {}

 protected:
  void powerUp() override { bus().select(); }
  [[nodiscard]] devices::ChipCodes readCodes() override;
  void leaveCodes() override { reset(); }
  [[nodiscard]] Outcome checkProtection() override;
  [[nodiscard]] Outcome eraseChip(Progress& progress) override;
  [[nodiscard]] Outcome programByte(std::uint32_t address, std::uint8_t wanted) override;
  void showCells() override {}

 private:
  enum class Work { Done, Busy, GivenUp };

  void reset();
  [[nodiscard]] Outcome waitForByte(std::uint32_t address, std::uint8_t wanted);
  [[nodiscard]] Outcome waitForErase(Progress& progress);
  [[nodiscard]] Work look();

  const devices::FlashSheet& sheet_;
  std::uint8_t seen_ = 0;  ///< by look()
};

}  // namespace kestrel::data_sheet
