#include "data_sheet/parallel_chip.h"

namespace kestrel::data_sheet {

std::uint8_t ParallelChip::readAt(std::uint32_t address) {
  bus_.setAddress(address);
  return bus_.read();
}

Outcome ParallelChip::read(std::uint32_t first, std::span<std::uint8_t> bytes) {
  bus_.select();
  bus_.enableOutputs();
  for (std::uint8_t& byte : bytes) {
    byte = readAt(first % chip_.sizeBytes);
    ++first;
  }
  return {};
}

}  // namespace kestrel::data_sheet
