#include "data_sheet/parallel_chip.h"

namespace kestrel::data_sheet {

// All are asked for before the first is fetched: over a link a block is one round trip.
void ParallelChip::readBlock(std::uint32_t first, std::span<std::uint8_t> bytes) {
  pending_.clear();
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    bus_.setAddress(first++ % chip_.sizeBytes);
    pending_.push_back(bus_.ask());
  }
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = bus_.fetch(pending_[i]);
}

Outcome ParallelChip::read(std::uint32_t first, std::span<std::uint8_t> bytes) {
  bus_.select();
  bus_.enableOutputs();
  readBlock(first, bytes);
  return {};
}

}  // namespace kestrel::data_sheet
