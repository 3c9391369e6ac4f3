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

void Chip::fitWeakCell(std::uint32_t address) {
  if (address >= cells_.size()) throw std::out_of_range("no such address in the " + typeName_);
  weakCells_.push_back(address);
}

void Chip::setCell(std::uint32_t address, std::uint8_t value) {
  if (!isWeak(address)) cells_[address] = value;
}

bool Chip::isWeak(std::uint32_t address) const {
  return std::find(weakCells_.begin(), weakCells_.end(), address) != weakCells_.end();
}

}  // namespace kestrel::sim
