#pragma once

#include <cstdint>

namespace kestrel {

/// Duration of one busy-loop count when nothing else is set, in nanoseconds. At the default
/// program speed a 2764 pulse of 40,002 counts then lasts 1.0 ms, its data-sheet pulse.
inline constexpr std::int64_t kDefaultCountNs = 25;

inline constexpr std::int64_t kNsPerMs = 1'000'000;

/// How the procedures let time pass. An implementation over a device that can vanish, or that was
/// asked to stop, throws as the port does.
class Waits {
 public:
  virtual ~Waits() = default;

  /// Waits the given number of milliseconds; 0 or less returns at once.
  virtual void Sleep(std::int32_t milliseconds) = 0;

  /// Busy loop of the given number of counts; 0 or less returns at once.
  virtual void Spin(std::int64_t counts) = 0;
};

}  // namespace kestrel
