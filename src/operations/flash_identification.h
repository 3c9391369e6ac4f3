#pragma once

#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "data_sheet/drivers.h"
#include "hardware/board.h"
#include "operations/protection.h"

namespace kestrel::operations {

/// The maker and device code of a parallel flash, and the commands that ask for it.
class FlashIdentification {
 public:
  FlashIdentification(const SelectionState& device, LatchState& latches, OperationState& operation,
                      Reporting& reporting, hardware::Board& board, ProtectionSequences& protection,
                      const data_sheet::Drivers& drivers)
      : device_(device),
        latches_(latches),
        operation_(operation),
        reporting_(reporting),
        board_(board),
        protection_(protection),
        drivers_(drivers) {}

  /// Sends the three-cycle command sequence with FlashCmd as its last byte; the AT29C256 has its
  /// own form.
  void FlashCommand();
  void FlashCommandAtmel();

  void WEON_FLASH();
  void WEOFF_FLASH();

  /// Reads FlashMakerID and FlashDeviceID and logs the chip's name; records its page geometry, 0
  /// for an unknown code. Only for family letter "F"; by the data sheets for each chip with a code.
  void ReadFlashID();

  /// One identify exchange with its result thrown away.
  void ProbeFlashID();

  /// "Show Flash Code ID#".
  void menuFlashShowCodeID_Click();

  /// "ResetFlash": one write cycle of F0h at the address that is latched.
  void ResetFlash_Click();

 private:
  void fastCycle(std::uint8_t mid, std::uint8_t low, std::uint8_t data);
  void sendCommand(std::int16_t command);
  std::uint8_t readHere();
  std::uint8_t readNext();
  void readByDataSheet();
  void nameChip();
  [[nodiscard]] const devices::DataSheet* sheetOfCodes() const;

  const SelectionState& device_;
  LatchState& latches_;
  OperationState& operation_;
  Reporting& reporting_;
  hardware::Board& board_;
  ProtectionSequences& protection_;
  const data_sheet::Drivers& drivers_;
};

}  // namespace kestrel::operations
