#pragma once

#include <cstdint>
#include <string>

namespace kestrel {

/// Duration of one busy-loop count when nothing else is set, in nanoseconds. At the default
/// program speed a 2764 pulse of 40,002 counts then lasts 1.0 ms, its data-sheet pulse.
inline constexpr std::int64_t kDefaultCountNs = 25;

/// The passing of time: waits, and the host's time of day as text.
class Clock {
 public:
  virtual ~Clock() = default;

  /// Waits the given number of milliseconds; 0 or less returns at once.
  virtual void Sleep(std::int32_t milliseconds) = 0;

  /// Busy loop of the given number of counts; 0 or less returns at once.
  virtual void Spin(std::int64_t counts) = 0;

  /// Time of day with seconds, such as 14:03:07.
  [[nodiscard]] virtual std::string longTime() const;

  /// Time of day without seconds, such as 14:03.
  [[nodiscard]] virtual std::string shortTime() const;

  /// Date, such as 2026-11-21.
  [[nodiscard]] virtual std::string shortDate() const;
};

}  // namespace kestrel
