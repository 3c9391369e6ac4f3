#include "hardware/ports/monotonic_clock.h"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <limits>

namespace kestrel {
namespace {

constexpr std::int64_t kNsPerSecond = 1'000'000'000;
constexpr std::int64_t kNsPerMs = 1'000'000;

std::int64_t nowNs() {
  std::timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec * kNsPerSecond + now.tv_nsec;
}

// A count so large that its time does not fit lasts for ever either way: about a century.
std::int64_t durationNs(std::int64_t counts, std::int64_t countNs) {
  return std::min(counts, std::numeric_limits<std::int64_t>::max() / 4 / countNs) * countNs;
}

}  // namespace

MonotonicClock::MonotonicClock(std::int64_t countNs, const StopSwitch* stop)
    : countNs_(std::max<std::int64_t>(countNs, 1)), stop_(stop) {}

// Returns the time at which it ended.
std::int64_t MonotonicClock::spinUntil(std::int64_t deadlineNs) const {
  std::int64_t now = nowNs();
  while (now < deadlineNs && !isStopped()) now = nowNs();
  return now;
}

void MonotonicClock::Spin(std::int64_t counts) {
  if (counts <= 0) return;
  const std::int64_t start = nowNs();
  const std::int64_t askedNs = durationNs(counts, countNs_);
  const std::int64_t gotNs = spinUntil(start + askedNs) - start;
  if (askedNs >= kPulseNs && gotNs > 2 * askedNs) ++stretchedPulses_;
}

void MonotonicClock::Sleep(std::int32_t milliseconds) {
  if (milliseconds <= 0) return;
  const std::int64_t deadline = nowNs() + milliseconds * kNsPerMs;
  const std::int64_t wakeUp = deadline - kWakeUpNs;
  const std::timespec until{.tv_sec = wakeUp / kNsPerSecond, .tv_nsec = wakeUp % kNsPerSecond};
  // A signal ends the wait early; one that is not a stop does not shorten it.
  while (!isStopped() &&
         clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR) {
  }
  spinUntil(deadline);
}

}  // namespace kestrel
