#include "data_sheet/two_wire_bus.h"

#include <array>

namespace kestrel::data_sheet {
namespace {

// An edge and the next one are two or more further accesses apart, of about 1 us each.
constexpr std::int64_t kEdgeUs = 3;

constexpr unsigned kSdaBit = 0x80;
constexpr std::uint8_t kSdaLow = 0x00;
constexpr std::size_t kBits = 8;

}  // namespace

void TwoWireBus::setSda(bool high) {
  if (high) {
    bus_.release();
  } else {
    bus_.drive(kSdaLow);
  }
}

void TwoWireBus::raiseClock() {
  bus_.deselect();
  bus_.waitUs(kEdgeUs);
}

void TwoWireBus::lowerClock() {
  bus_.select();
  bus_.waitUs(kEdgeUs);
}

bool TwoWireBus::isSdaFree() { return fetch(clockIn()); }

// SDA falls while SCL is high.
void TwoWireBus::start() {
  setSda(true);
  raiseClock();
  setSda(false);
  bus_.waitUs(kEdgeUs);
  lowerClock();
}

// SDA rises while SCL is high.
void TwoWireBus::stop() {
  setSda(false);
  raiseClock();
  setSda(true);
  bus_.waitUs(kEdgeUs);
  lowerClock();
}

void TwoWireBus::send(std::uint8_t byte) {
  for (unsigned mask = kSdaBit; mask != 0; mask >>= 1U) clockOut((byte & mask) != 0);
  acknowledges_.push_back(clockIn());
}

bool TwoWireBus::isAcknowledged() {
  bool areLow = true;
  for (const PendingRead& pending : acknowledges_) areLow = !fetch(pending) && areLow;
  acknowledges_.clear();
  return areLow;
}

void TwoWireBus::receive(std::span<std::uint8_t> bytes) {
  std::array<PendingRead, kBits> bits{};
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    for (PendingRead& bit : bits) bit = clockIn();
    unsigned value = 0;
    for (const PendingRead& bit : bits) value = value << 1U | (fetch(bit) ? 1U : 0U);
    bytes[i] = static_cast<std::uint8_t>(value);
    const bool isLast = i + 1 == bytes.size();
    clockOut(isLast);
  }
}

void TwoWireBus::clockOut(bool bit) {
  setSda(bit);
  raiseClock();
  lowerClock();
}

PendingRead TwoWireBus::clockIn() {
  setSda(true);
  raiseClock();
  const PendingRead pending = bus_.askUpperHalf();
  lowerClock();
  return pending;
}

bool TwoWireBus::fetch(const PendingRead& pending) {
  return (bus_.fetchUpperHalf(pending) & kSdaBit) != 0;
}

}  // namespace kestrel::data_sheet
