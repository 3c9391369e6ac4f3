#include "link/emulated_line.h"

#include <algorithm>
#include <utility>

namespace kestrel::test {

using Cycles = EmulatedAdapter::Cycles;

EmulatedLine::EmulatedLine(EmulatedAdapter& adapter, Cycles latency)
    : adapter_(adapter), latency_(latency) {
  adapter_.onByte([this](std::uint8_t value, Cycles at) {
    arrived_.push_back({.value = value, .at = at + latency_ / 2});
  });
}

void EmulatedLine::write(std::span<const std::uint8_t> bytes) {
  for (const std::uint8_t value : bytes) {
    const auto damage = std::exchange(damage_, std::uint8_t{0});
    adapter_.send(static_cast<std::uint8_t>(value ^ damage), adapter_.now() + latency_ / 2);
  }
}

void EmulatedLine::writeUrgently(std::uint8_t value) noexcept {
  adapter_.send(value, adapter_.now() + latency_ / 2);
}

std::size_t EmulatedLine::read(std::span<std::uint8_t> bytes, std::chrono::milliseconds limit) {
  const Cycles end =
      adapter_.now() + static_cast<Cycles>(limit.count()) * EmulatedAdapter::kCyclesPerMs;
  while (!hasByte() && adapter_.now() < end) {
    const Cycles next = arrived_.empty() ? adapter_.now() + 1 : arrived_.front().at;
    adapter_.runUntil(std::min(next, end));
  }
  std::size_t count = 0;
  while (count < bytes.size() && hasByte()) {
    bytes[count++] = arrived_.front().value;
    arrived_.pop_front();
  }
  return count;
}

}  // namespace kestrel::test
