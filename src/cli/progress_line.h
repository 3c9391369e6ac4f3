#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

namespace kestrel::cli {

/// The progress bar of a command as a line of text: bar, percent, and the time left once that is
/// more than a guess.
class ProgressLine {
 public:
  using Time = std::chrono::steady_clock::time_point;

  /// The bar has moved; a value that falls starts anew.
  void set(std::int32_t value, std::int32_t maximum, Time now);

  [[nodiscard]] bool isMoving() const { return value_ > 0 && value_ <= maximum_; }

  /// The line, at most `columns` wide; for example
  /// "[#########-----------]  47 %  0:12 left".
  [[nodiscard]] std::string text(std::size_t columns, Time now) const;

 private:
  [[nodiscard]] std::string timeLeft(Time now) const;

  std::int32_t value_ = 0;
  std::int32_t maximum_ = 0;
  Time started_{};
  std::int32_t startValue_ = 0;
};

}  // namespace kestrel::cli
