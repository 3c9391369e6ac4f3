#include "hardware/ports/interruptible_port.h"

#include <algorithm>

#include "platform/runtime_error.h"

namespace kestrel::ports {
namespace {

// What a status read stands for in the count towards the next turn: with the latch loads before
// it, about twenty accesses of 1 us. A count of the time itself would cost more than the read.
constexpr std::int64_t kReadNs = 20'000;

}  // namespace

InterruptiblePort::InterruptiblePort(PortAccess& port, Waits& waits, const StopSwitch& stop,
                                     Screen& screen)
    : port_(port), waits_(waits), stop_(stop), screen_(screen) {}

void InterruptiblePort::stopped() { throw OperationStopped(); }

void InterruptiblePort::turn() {
  sinceTurnNs_ = 0;
  screen_.turn();
  throwIfStopped();
}

void InterruptiblePort::beforeRead() {
  throwIfStopped();
  sinceTurnNs_ += kReadNs;
  if (sinceTurnNs_ >= kTurnNs) turn();
}

std::uint8_t InterruptiblePort::PortIn(std::int16_t port) {
  beforeRead();
  return port_.PortIn(port);
}

PendingRead InterruptiblePort::askPortIn(std::int16_t port) {
  beforeRead();
  return port_.askPortIn(port);
}

void InterruptiblePort::sleepSlice(std::int32_t milliseconds) {
  waits_.Sleep(milliseconds);
  sinceTurnNs_ += milliseconds * kNsPerMs;
  throwIfStopped();
}

void InterruptiblePort::Sleep(std::int32_t milliseconds) {
  throwIfStopped();
  if (milliseconds <= 0) return;
  if (milliseconds < kLongSleepMs) {
    sleepSlice(milliseconds);
    return;
  }
  while (milliseconds > 0) {
    const std::int32_t slice = std::min(milliseconds, kSliceMs);
    milliseconds -= slice;
    sleepSlice(slice);
    if (milliseconds > 0) turn();
  }
}

void InterruptiblePort::Spin(std::int64_t counts) {
  throwIfStopped();
  waits_.Spin(counts);
  sinceTurnNs_ += std::clamp<std::int64_t>(counts, 0, kTurnNs) * kDefaultCountNs;
  throwIfStopped();
}

}  // namespace kestrel::ports
