#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "data_sheet/drivers.h"
#include "hardware/board.h"

namespace kestrel::operations {

/// The walk over a parallel device that read, blank check and verify share.
///
/// It covers whole pages of 256 bytes, and the same middle bytes for every high byte: sizes that
/// are a power of two are covered exactly, others as the bounds of CodeLength give. A length of 0
/// still covers one page. With the algorithms of the data sheets any chip is walked, serial ones
/// too, over CodeLength bytes.
class DeviceWalk {
 public:
  DeviceWalk(const BufferState& buffers, LatchState& latches, OperationState& operation,
             Reporting& reporting, hardware::Board& board, const data_sheet::Drivers& drivers)
      : buffers_(buffers),
        latches_(latches),
        operation_(operation),
        reporting_(reporting),
        board_(board),
        drivers_(drivers) {}

  /// Sees the byte in ReadByte and the address that stands on the pins; false ends the walk.
  using Visit = std::function<bool(std::int32_t address)>;

  /// Resets the board, latches address 0, gives the chip its start wait, releases the bus and
  /// selects the chip with its outputs on.
  void begin();

  /// Reads every byte after begin(). True when no visit ended it, nor the chip itself.
  bool readAll(const Visit& visit);

  [[nodiscard]] bool isByDataSheet() const { return drivers_.areChosen(); }

  /// Why the chip could not be read; Done when it could.
  [[nodiscard]] const data_sheet::Outcome& outcome() const { return outcome_; }

 private:
  void setBounds();
  bool readPage(std::int32_t pageAddress, const Visit& visit);
  bool readAllByDataSheet(const Visit& visit);
  bool readPageByDataSheet(std::int32_t pageAddress, const Visit& visit);

  const BufferState& buffers_;
  LatchState& latches_;
  OperationState& operation_;
  Reporting& reporting_;
  hardware::Board& board_;
  const data_sheet::Drivers& drivers_;
  std::unique_ptr<data_sheet::ChipDriver> driver_;
  data_sheet::Outcome outcome_;
};

}  // namespace kestrel::operations
