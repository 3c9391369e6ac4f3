#include "simulator/chip.h"

#include <algorithm>
#include <stdexcept>

namespace kestrel::sim {

Chip::Chip(std::string_view typeName, Package package, std::size_t sizeBytes)
    : typeName_(typeName), package_(package), cells_(sizeBytes, 0xFF) {}

void Chip::load(std::span<const std::uint8_t> contents) {
  if (contents.size() != cells_.size()) {
    throw std::invalid_argument("the " + typeName_ + " holds " + std::to_string(cells_.size()) +
                                " bytes, not " + std::to_string(contents.size()));
  }
  std::copy(contents.begin(), contents.end(), cells_.begin());
  contentsReplaced();
}

void Chip::blank() {
  std::fill(cells_.begin(), cells_.end(), std::uint8_t{0xFF});
  contentsReplaced();
}

void Chip::fitWeakCell(std::uint32_t address, std::optional<std::uint32_t> pulses) {
  if (address >= cells_.size()) throw std::out_of_range("no such address in the " + typeName_);
  mendCell(address);
  weakCells_.push_back({.address = address, .pulses = pulses});
}

void Chip::mendCell(std::uint32_t address) {
  std::erase_if(weakCells_, [address](const WeakCell& cell) { return cell.address == address; });
}

std::vector<std::uint32_t> Chip::weakCells() const {
  std::vector<std::uint32_t> addresses;
  for (const WeakCell& cell : weakCells_) addresses.push_back(cell.address);
  return addresses;
}

bool Chip::setCell(std::uint32_t address, std::uint8_t value) {
  if (cells_[address] == value) return true;
  if (refusesPulse(address)) return false;
  cells_[address] = value;
  return true;
}

bool Chip::refusesPulse(std::uint32_t address) {
  const auto weak =
      std::find_if(weakCells_.begin(), weakCells_.end(),
                   [address](const WeakCell& cell) { return cell.address == address; });
  if (weak == weakCells_.end()) return false;
  ++weak->received;
  if (!weak->pulses || weak->received < *weak->pulses) return true;
  weak->received = 0;
  return false;
}

}  // namespace kestrel::sim
