#pragma once

#include <cstdint>
#include <string>

#include "platform/port_access.h"
#include "platform/screen.h"
#include "platform/stop_switch.h"
#include "platform/waits.h"

namespace kestrel::ports {

/// The layer that keeps a running command interruptible: between the procedures (and their trace)
/// and the port and clock that do the work.
///
/// - Every call looks at the stop switch first and throws OperationStopped while it is thrown.
///   Whoever puts the board to rest then does so under a StopSwitch::Shield.
/// - Waits of kLongSleepMs and more pass in slices of kSliceMs that add up to the time asked for,
///   with a turn of the screen between two of them. Shorter waits may be pulses and stay whole.
/// - A read gives the screen a turn when kTurnNs have passed since the last one, as counted from
///   the calls themselves: a read never stands inside a pulse or a page load.
/// - A busy loop is passed on whole, so that a pulse is timed in one piece; the clock itself ends
///   one that the switch interrupts (MonotonicClock), and the exception follows here.
///
/// Not thread-safe, as the ports are not.
class InterruptiblePort final : public PortAccess, public Waits {
 public:
  static constexpr std::int32_t kLongSleepMs = 20;
  static constexpr std::int32_t kSliceMs = 10;
  static constexpr std::int64_t kTurnNs = 4'000'000;

  /// All four outlive this layer.
  InterruptiblePort(PortAccess& port, Waits& waits, const StopSwitch& stop, Screen& screen);

  void PortOut(std::int16_t port, std::uint8_t value) override {
    throwIfStopped();
    port_.PortOut(port, value);
  }
  [[nodiscard]] std::uint8_t PortIn(std::int16_t port) override;
  [[nodiscard]] PendingRead askPortIn(std::int16_t port) override;
  void Sleep(std::int32_t milliseconds) override;
  void Spin(std::int64_t counts) override;

 private:
  [[nodiscard]] std::uint8_t awaitPortIn(std::int16_t port, PendingRead pending) override {
    return port_.fetchPortIn(port, pending);
  }
  void throwIfStopped() const {
    if (stop_.isThrown()) stopped();
  }
  [[noreturn]] static void stopped();
  void sleepSlice(std::int32_t milliseconds);
  void beforeRead();
  void turn();

  PortAccess& port_;
  Waits& waits_;
  const StopSwitch& stop_;
  Screen& screen_;
  std::int64_t sinceTurnNs_ = 0;
};

}  // namespace kestrel::ports
