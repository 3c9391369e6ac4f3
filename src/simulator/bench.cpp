#include "simulator/bench.h"

#include <algorithm>
#include <stdexcept>

namespace kestrel::sim {
namespace {

constexpr Nanoseconds kAccessTime = microseconds(1);

// kPortBases.size() for a number that is no base.
std::size_t slotOf(std::uint16_t base) {
  const auto* const found = std::find(kPortBases.begin(), kPortBases.end(), base);
  return static_cast<std::size_t>(found - kPortBases.begin());
}

}  // namespace

void Bench::portOut(std::uint16_t port, std::uint8_t value) {
  countAccess();
  unsigned offset = 0;
  Board* const board = addressed(port, offset);
  if (board == nullptr) return;
  if (offset == 0) board->writeData(value);
  if (offset == 2) board->writeControl(value);
}

std::uint8_t Bench::portIn(std::uint16_t port) {
  countAccess();
  unsigned offset = 0;
  Board* const board = addressed(port, offset);
  if (board == nullptr) return 0xFF;
  if (offset == 1) return board->readStatus();
  return offset == 0 ? board->readData() : board->readControl();
}

void Bench::wait(Nanoseconds time) { time_.now += std::max<Nanoseconds>(time, 0); }

void Bench::countAccess() {
  time_.now += kAccessTime;
  ++accessCount_;
  if (accessesLeft_ == kUnlimited) return;
  if (accessesLeft_ > 0) {
    --accessesLeft_;
    return;
  }
  accessesLeft_ = kUnlimited;
  for (Slot& slot : slots_) slot.plugged = false;
}

Board* Bench::addressed(std::uint16_t port, unsigned& offset) {
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    offset = static_cast<unsigned>(port) - kPortBases[i];
    if (offset < 3) return slots_[i].plugged ? slots_[i].board.get() : nullptr;
  }
  return nullptr;
}

Board& Bench::plug(Model model, std::uint16_t base) {
  const std::size_t index = slotOf(base);
  if (index == slots_.size()) throw std::invalid_argument("no printer port at this address");
  slots_[index].board = std::make_unique<Board>(model, time_, findings_);
  slots_[index].board->judgePulses(judgesPulses_);
  slots_[index].plugged = true;
  return *slots_[index].board;
}

void Bench::judgePulses(bool on) {
  judgesPulses_ = on;
  for (const Slot& slot : slots_) {
    if (slot.board) slot.board->judgePulses(on);
  }
}

void Bench::unplug(std::uint16_t base) {
  if (const std::size_t index = slotOf(base); index < slots_.size()) slots_[index].plugged = false;
}

bool Bench::isPlugged(std::uint16_t base) const {
  const std::size_t index = slotOf(base);
  return index < slots_.size() && slots_[index].plugged;
}

Board* Bench::board(std::uint16_t base) {
  const std::size_t index = slotOf(base);
  return index < slots_.size() ? slots_[index].board.get() : nullptr;
}

}  // namespace kestrel::sim
