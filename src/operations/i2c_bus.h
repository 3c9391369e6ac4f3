#pragma once

#include "app/state/programmer_state.h"
#include "hardware/board.h"

namespace kestrel::operations {

/// The two-wire bus of the serial chips, made of board lines. It knows lines and bytes.
///
///   SCL      latch 3 bit 7: CEON = low, CEOFF = high
///   SDA out  latch 4 bit 7, on the bus while REG4ON
///   SDA in   bit 7 of the byte that GetNibbles24CXX gives
///
/// Every procedure leaves SCL low.
class I2cBus {
 public:
  I2cBus(LatchState& latches, OperationState& operation, hardware::Board& board)
      : latches_(latches), operation_(operation), board_(board) {}

  void I2CStart();
  void I2CStop();

  /// Sends ByteToWrite and waits for the acknowledge; I2CError is 0 or the polls made.
  void I2CSendByte();

  /// Sends ByteToWrite and samples the acknowledge once, without its clock: ReadByte is 0
  /// (acknowledged) or 80h.
  void I2CSendByteNoWait();

  /// Polls for the acknowledge, at most 200 times a millisecond apart, then gives the ninth clock.
  void I2CWaitAck();

  /// Clocks eight bits into ReadByte; the caller gives the acknowledge.
  void I2CReadByte();

  /// A clock pulse: SCL high, then low.
  void clock();

 private:
  void setSda(std::int16_t level);
  void sendBits();

  LatchState& latches_;
  OperationState& operation_;
  hardware::Board& board_;
};

}  // namespace kestrel::operations
