#include "operations/program_image.h"

#include "platform/runtime_error.h"

namespace kestrel::operations {

void ProgramImage::PrepareProgramBuffer() {
  if (controls_.HiLow_button[0].value()) {
    for (std::int32_t i = 0; i < device_.DeviceSizeBytes; ++i) {
      at(operation_.ProgramBuffer, i) = at(buffers_.CodeBuffer, i);
    }
    operation_.ProgramLength = device_.DeviceSizeBytes;
  }
  if (controls_.HiLow_button[1].value()) {
    takeLane(1);
    operation_.ProgramLength =
        device_.DeviceSizeBytes / 2;  // every size is even, so there is nothing to round
  }
  if (controls_.HiLow_button[2].value()) {
    takeLane(0);
    operation_.ProgramLength = device_.DeviceSizeBytes / 2;
  }
}

void ProgramImage::takeLane(std::int32_t offset) {
  for (std::int32_t i = 0; i < device_.DeviceSizeBytes; i += 2) {
    at(operation_.ProgramBuffer, i / 2) = at(buffers_.CodeBuffer, i + offset);
  }
}

}  // namespace kestrel::operations
