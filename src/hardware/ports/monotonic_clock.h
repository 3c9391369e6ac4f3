#pragma once

#include <cstdint>

#include "hardware/ports/suspend_watch.h"
#include "platform/stop_switch.h"
#include "platform/waits.h"

namespace kestrel::ports {

/// The real clock. Busy loops and waits run by the machine's monotonic time, so a count lasts the
/// same on every processor: never shorter than asked for, and within 1 us above it while nothing
/// else wants the processor. A wait gives the processor away but for its last kWakeUpNs, which the
/// scheduler cannot be trusted with.
///
/// When the machine was suspended in the middle of a command, the next pulse or wait throws
/// RuntimeError 57 instead: nobody knows what the board went through meanwhile.
///
/// A thrown stop switch ends a running loop or wait early: the only case of a shorter one.
class MonotonicClock final : public Waits {
 public:
  /// A loop of this length or longer counts as a pulse; the settling loops of the bus are shorter.
  static constexpr std::int64_t kPulseNs = 10'000;
  static constexpr std::int64_t kWakeUpNs = 200'000;

  /// A count lasts `countNs` nanoseconds (1 or more). The switch, if any, outlives the clock.
  explicit MonotonicClock(std::int64_t countNs = kDefaultCountNs, const StopSwitch* stop = nullptr);

  void Sleep(std::int32_t milliseconds) override;
  void Spin(std::int64_t counts) override;

  /// Pulses so far that lasted more than twice as long as asked for, because the machine gave the
  /// processor to something else meanwhile. They are reported once at the end of a command.
  [[nodiscard]] std::uint64_t stretchedPulses() const { return stretchedPulses_; }
  void resetStretchedPulses() { stretchedPulses_ = 0; }

 private:
  [[nodiscard]] bool isStopped() const { return stop_ != nullptr && stop_->isThrown(); }
  void throwIfSuspended(std::int64_t now);
  std::int64_t spinUntil(std::int64_t deadlineNs) const;

  std::int64_t countNs_;
  const StopSwitch* stop_;
  SuspendWatch suspend_;
  std::uint64_t stretchedPulses_ = 0;
};

}  // namespace kestrel::ports
