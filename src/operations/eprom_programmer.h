#pragma once

#include <cstdint>

#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "devices/families.h"
#include "hardware/board.h"
#include "operations/failure_reports.h"

namespace kestrel::operations {

/// The UV EPROM algorithms: latch the byte, pulse, read it back, again until it is right.
///
/// How many pulses a byte gets and where they grow long is the family's plan: at most 254, 55 short
/// ones and then long ones. FFh, the erased state, is never programmed.
class EpromProgrammer {
 public:
  EpromProgrammer(const PortState& portState, const SelectionState& device, LatchState& latches,
                  OperationState& operation, ShellState& shell, const TimingState& timing,
                  Reporting& reporting, hardware::Board& board, FailureReports& reports)
      : portState_(portState),
        device_(device),
        latches_(latches),
        operation_(operation),
        shell_(shell),
        timing_(timing),
        reporting_(reporting),
        board_(board),
        reports_(reports) {}

  /// 2716, 2732: VPP on the /OE pin, 5 ms pulses on /CE, each address read first.
  void P2732();

  /// 2764, 27128: pulses on /PGM, latch 1 bit 6.
  void P2764_128();

  /// 27256 and 4 Mbit: pulses on /CE with /OE high.
  void P27256_040();

  /// 27512 and 8 Mbit: VPP on the /OE pin, pulses on /CE, each address read first.
  void P27080();

  /// 1 and 2 Mbit: pulses on /PGM, latch 3 bit 2.
  void P27010_020();

 private:
  void setUpLatch0();
  [[nodiscard]] int levelBits(const devices::Family& family) const;
  void waitForVppSettling();
  void reportStart();

  /// Gives each byte of the image to `programByte`, with its address standing; false from it, a
  /// byte that failed, ends the walk.
  template <typename ProgramByte>
  bool forEachByte(std::int32_t& index, std::int32_t blinkMask, const ProgramByte& programByte);

  /// Pulses until the byte read back is right; reports a byte that never is.
  template <typename PulseAndReadBack>
  bool pulseUntilRight(const PulseAndReadBack& pulseAndReadBack);

  void ReadBackByte();
  void readBackWithOutputsOn();

  // Passing over what is right already.
  void readAddress();
  bool isRightAlready();

  // One pulse, up to the read-back.
  void pulse2732();
  void pulse2764();
  void pulse27256();
  void pulse27080();
  void pulse27010();

  void putByteOnBus();
  void putByteInLatch();
  void pulseDelay();

  const PortState& portState_;
  const SelectionState& device_;
  LatchState& latches_;
  OperationState& operation_;
  ShellState& shell_;
  const TimingState& timing_;
  Reporting& reporting_;
  hardware::Board& board_;
  FailureReports& reports_;
  devices::PulsePlan pulses_;
  std::int16_t PulsesLeft_ = 0;
};

}  // namespace kestrel::operations
