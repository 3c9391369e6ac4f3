#pragma once

#include <cstdint>
#include <functional>

#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "hardware/board.h"

namespace kestrel::operations {

/// The walk over a parallel device that read, blank check and verify share.
///
/// It covers whole pages of 256 bytes, and the same middle bytes for every high byte: sizes that
/// are a power of two are covered exactly, others as the bounds of CodeLength give. A length of 0
/// still covers one page.
class DeviceWalk {
 public:
  DeviceWalk(const BufferState& buffers, LatchState& latches, OperationState& operation,
             Reporting& reporting, hardware::Board& board)
      : buffers_(buffers),
        latches_(latches),
        operation_(operation),
        reporting_(reporting),
        board_(board) {}

  /// Sees the byte in ReadByte and the address that stands on the pins; false ends the walk.
  using Visit = std::function<bool(std::int32_t address)>;

  /// Resets the board, latches address 0, gives the chip its start wait, releases the bus and
  /// selects the chip with its outputs on.
  void begin();

  /// Reads every byte after begin(). True when no visit ended it.
  bool readAll(const Visit& visit);

 private:
  void setBounds();
  bool readPage(std::int32_t pageAddress, const Visit& visit);

  const BufferState& buffers_;
  LatchState& latches_;
  OperationState& operation_;
  Reporting& reporting_;
  hardware::Board& board_;
};

}  // namespace kestrel::operations
