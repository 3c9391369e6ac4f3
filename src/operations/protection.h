#pragma once

#include <cstdint>

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "devices/page_write_pins.h"
#include "hardware/board.h"
#include "platform/waits.h"

namespace kestrel::operations {

/// Single write cycles and unlock sequences of the 28-pin page-write chips: AT29C256 (/WE is latch
/// 1 bit 7) and 28C256 (/WE is latch 1 bit 6, A14 is bit 7).
class ProtectionSequences {
 public:
  ProtectionSequences(const SelectionState& device, LatchState& latches, OperationState& operation,
                      const Controls& controls, hardware::Board& board)
      : device_(device),
        latches_(latches),
        operation_(operation),
        controls_(controls),
        board_(board) {}

  /// One write cycle at WriteAddress with the byte in RegShadow4.
  void AtmelWriteByte();
  void XicorWriteByte();

  // Software data protection off and on, in the form of each maker.
  void AtmelSDPDisable();
  void AtmelSDPEnable();
  void XicorSDPDisable();
  void XicorSDPEnable();

  /// The AT29C256's three-cycle command with its last byte.
  void sendAtmelCommand(std::uint8_t command);

  // /WE of each chip, active low.
  void WEON_ATMEL() { lowerWriteEnable(devices::kAt29C256Pins); }
  void WEOFF_ATMEL() { raiseWriteEnable(devices::kAt29C256Pins); }
  void WEON_XICOR() { lowerWriteEnable(devices::kX28C256Pins); }
  void WEOFF_XICOR() { raiseWriteEnable(devices::kX28C256Pins); }
  void WriteStrobeDelay();

  /// Waits so many milliseconds more than the program-speed slider is below its maximum.
  void speedDelay(std::int32_t milliseconds);

 private:
  void lowerWriteEnable(const devices::PageWritePins& pins);
  void raiseWriteEnable(const devices::PageWritePins& pins);
  void strobe(const devices::PageWritePins& pins);

  /// The cycles one after the other, each by `writeByte`, and the wait that ends a sequence.
  template <typename Cycles, typename WriteByte>
  void send(const Cycles& cycles, const WriteByte& writeByte);

  const SelectionState& device_;
  LatchState& latches_;
  OperationState& operation_;
  const Controls& controls_;
  hardware::Board& board_;
};

}  // namespace kestrel::operations
