#pragma once

#include <string>

namespace kestrel {

/// The host's local time as text, 24 hours in every locale.
class TimeOfDay {
 public:
  virtual ~TimeOfDay() = default;

  /// Time of day with seconds, such as 14:03:07.
  [[nodiscard]] virtual std::string longTime() const;

  /// Time of day without seconds, such as 14:03.
  [[nodiscard]] virtual std::string shortTime() const;

  /// Date, such as 2026-11-21.
  [[nodiscard]] virtual std::string shortDate() const;
};

}  // namespace kestrel
