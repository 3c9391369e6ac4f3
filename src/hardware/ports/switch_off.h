#pragma once

#include <chrono>

namespace kestrel::ports {

/// What a guard has to know of a port: how to take every voltage off the board behind it.
class SwitchOff {
 public:
  virtual ~SwitchOff() = default;

  /// Tries it once; false when an access failed and a voltage may still be on. Async-signal-safe.
  virtual bool switchOff() noexcept = 0;
};

/// How long a switch-off that fails is tried again by the program, and by the guard beside it.
inline constexpr std::chrono::milliseconds kSwitchOffLimit{2'000};

/// How long the guard goes on trying by itself once the program is gone.
inline constexpr std::chrono::milliseconds kSwitchOffLimitAlone{10'000};

/// Tries until it worked, but no longer than the limit; true when it worked. Async-signal-safe.
bool switchOffWithin(std::chrono::milliseconds limit, SwitchOff& port) noexcept;

}  // namespace kestrel::ports
