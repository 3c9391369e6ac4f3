#include "cli/progress_line.h"

#include <algorithm>
#include <cstdio>

namespace kestrel::cli {
namespace {

constexpr std::size_t kWidestBar = 50;
constexpr std::size_t kBesideBar = 24;  // brackets, percent, time left
constexpr std::chrono::seconds kFirstGuess{1};

}  // namespace

// The bar stood at 0 for as long as nothing moved, a question included: time counts from its first
// step.
void ProgressLine::set(std::int32_t value, std::int32_t maximum, Time now) {
  if (value_ == 0 || value < value_) {
    started_ = now;
    startValue_ = value;
  }
  value_ = value;
  maximum_ = maximum;
}

std::string ProgressLine::text(std::size_t columns, Time now) const {
  const std::size_t bar = std::min(kWidestBar, columns > kBesideBar ? columns - kBesideBar : 0);
  const double done = maximum_ > 0 ? static_cast<double>(value_) / maximum_ : 0;
  const auto filled = static_cast<std::size_t>(done * static_cast<double>(bar));
  std::string percent = std::to_string(static_cast<int>(done * 100));
  percent.insert(0, 3 - std::min<std::size_t>(3, percent.size()), ' ');
  std::string line = '[' + std::string(filled, '#') + std::string(bar - filled, '-') + "] ";
  line += percent + " %" + timeLeft(now);
  return line.substr(0, columns);
}

std::string ProgressLine::timeLeft(Time now) const {
  const auto elapsed = now - started_;
  const std::int32_t steps = value_ - startValue_;
  if (elapsed < kFirstGuess || steps <= 0) return {};
  const auto left = elapsed * (maximum_ - value_) / steps;
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left).count();
  const std::string rest = std::to_string(seconds % 60);
  return "  " + std::to_string(seconds / 60) + (rest.size() < 2 ? ":0" : ":") + rest + " left";
}

}  // namespace kestrel::cli
