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

void ParallelChip::write(const Cycle& cycle) {
  bus_.setAddress(cycle.address);
  bus_.drive(cycle.data);
  bus_.strobe();
}

void ParallelChip::writeCommand(std::uint8_t command) {
  constexpr std::uint32_t kSecondAddress = 0x2AAA;
  write({kCommandAddress, 0xAA});
  write({kSecondAddress, 0x55});
  write({kCommandAddress, command});
}

std::uint8_t ParallelChip::readOnce() {
  bus_.enableOutputs();
  const std::uint8_t seen = bus_.read();
  bus_.disableOutputs();
  return seen;
}

devices::ChipCodes ParallelChip::codesAt(std::uint32_t address) {
  bus_.setAddress(address);
  const std::uint8_t maker = readOnce();
  bus_.setAddress(address + 1);
  return {.maker = maker, .device = readOnce()};
}

Outcome ParallelChip::read(std::uint32_t first, std::span<std::uint8_t> bytes) {
  bus_.select();
  bus_.enableOutputs();
  readBlock(first, bytes);
  return {};
}

}  // namespace kestrel::data_sheet
