#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "hardware/board.h"
#include "images/ranges.h"
#include "operations/device_walk.h"
#include "operations/program_image.h"

namespace kestrel::operations {

/// Whether the EPROM in the socket can take the image. A program pulse makes a 0 of a 1; a 1 of a 0
/// makes the lamp alone, and of the whole chip.
class ImageCheck {
 public:
  ImageCheck(const SelectionState& device, const LatchState& latches, BufferState& buffers,
             const OperationState& operation, ShellState& shell, Controls& controls,
             Reporting& reporting, hardware::Board& board, ProgramImage& image, DeviceWalk& walk)
      : device_(device),
        latches_(latches),
        buffers_(buffers),
        operation_(operation),
        shell_(shell),
        controls_(controls),
        reporting_(reporting),
        board_(board),
        image_(image),
        walk_(walk) {}

  struct Result {
    std::size_t bytes = 0;              ///< that want a 0 to be a 1
    std::vector<images::Range> ranges;  ///< where they are

    [[nodiscard]] bool canBeProgrammed() const { return bytes == 0; }
  };

  /// Reads the chip, as far as the image goes; nothing unless the box is ticked, for an EPROM.
  [[nodiscard]] std::optional<Result> run();

 private:
  [[nodiscard]] bool isWanted() const;
  [[nodiscard]] Result readChip();
  void report(const Result& result);

  const SelectionState& device_;
  const LatchState& latches_;
  BufferState& buffers_;
  const OperationState& operation_;
  ShellState& shell_;
  Controls& controls_;
  Reporting& reporting_;
  hardware::Board& board_;
  ProgramImage& image_;
  DeviceWalk& walk_;
};

}  // namespace kestrel::operations
