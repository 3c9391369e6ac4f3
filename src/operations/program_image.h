#pragma once

#include "app/state/controls.h"
#include "app/state/programmer_state.h"

namespace kestrel::operations {

/// The image that is programmed and compared, made from the code buffer by the byte lane: all
/// bytes, or the odd or even ones alone for one of the two chips of a 16-bit system.
class ProgramImage {
 public:
  ProgramImage(const BufferState& buffers, const SelectionState& device, OperationState& operation,
               const Controls& controls)
      : buffers_(buffers), device_(device), operation_(operation), controls_(controls) {}

  /// Builds ProgramBuffer and ProgramLength; the length is the device's size or half of it,
  /// whatever CodeLength is.
  void PrepareProgramBuffer();

 private:
  void takeLane(std::int32_t offset);

  const BufferState& buffers_;
  const SelectionState& device_;
  OperationState& operation_;
  const Controls& controls_;
};

}  // namespace kestrel::operations
