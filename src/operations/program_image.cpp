#include "operations/program_image.h"

#include "platform/runtime_error.h"

namespace kestrel::operations {

void ProgramImage::PrepareProgramBuffer() {
  ProgrammerState& s = state_;
  if (controls_.HiLow_button[0].value()) {
    for (std::int32_t i = 0; i < s.DeviceSizeBytes; ++i) {
      at(s.ProgramBuffer, i) = at(s.CodeBuffer, i);
    }
    s.ProgramLength = s.DeviceSizeBytes;
  }
  if (controls_.HiLow_button[1].value()) {
    takeLane(1);
    s.ProgramLength = s.DeviceSizeBytes / 2;  // every size is even, so there is nothing to round
  }
  if (controls_.HiLow_button[2].value()) {
    takeLane(0);
    s.ProgramLength = s.DeviceSizeBytes / 2;
  }
}

void ProgramImage::takeLane(std::int32_t offset) {
  for (std::int32_t i = 0; i < state_.DeviceSizeBytes; i += 2) {
    at(state_.ProgramBuffer, i / 2) = at(state_.CodeBuffer, i + offset);
  }
}

}  // namespace kestrel::operations
