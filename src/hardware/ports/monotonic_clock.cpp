#include "hardware/ports/monotonic_clock.h"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <limits>

#include "platform/runtime_error.h"

namespace kestrel::ports {
namespace {

constexpr std::int64_t kNsPerSecond = 1'000'000'000;

std::int64_t timeNs(clockid_t clock) {
  std::timespec now{};
  clock_gettime(clock, &now);
  return now.tv_sec * kNsPerSecond + now.tv_nsec;
}

std::int64_t nowNs() { return timeNs(CLOCK_MONOTONIC); }

// A count so large that its time does not fit lasts for ever either way: about a century.
std::int64_t durationNs(std::int64_t counts, std::int64_t countNs) {
  return std::min(counts, std::numeric_limits<std::int64_t>::max() / 4 / countNs) * countNs;
}

}  // namespace

MonotonicClock::MonotonicClock(std::int64_t countNs, const StopSwitch* stop)
    : countNs_(std::max<std::int64_t>(countNs, 1)), stop_(stop) {}

void MonotonicClock::throwIfSuspended(std::int64_t now) {
  if (!suspend_.look(now, timeNs(CLOCK_BOOTTIME))) return;
  throw RuntimeError(kDeviceIoError, "The computer was suspended during the operation");
}

// Returns the time at which it ended.
std::int64_t MonotonicClock::spinUntil(std::int64_t deadlineNs) const {
  std::int64_t now = nowNs();
  while (now < deadlineNs && !isStopped()) now = nowNs();
  return now;
}

void MonotonicClock::Spin(std::int64_t counts) {
  if (counts <= 0) return;
  const std::int64_t askedNs = durationNs(counts, countNs_);
  if (askedNs >= kPulseNs) throwIfSuspended(nowNs());
  const std::int64_t start = nowNs();
  const std::int64_t gotNs = spinUntil(start + askedNs) - start;
  if (askedNs >= kPulseNs && gotNs > 2 * askedNs) ++stretchedPulses_;
}

void MonotonicClock::Sleep(std::int32_t milliseconds) {
  if (milliseconds <= 0) return;
  const std::int64_t start = nowNs();
  throwIfSuspended(start);
  const std::int64_t deadline = start + milliseconds * kNsPerMs;
  const std::int64_t wakeUp = deadline - kWakeUpNs;
  const std::timespec until{.tv_sec = wakeUp / kNsPerSecond, .tv_nsec = wakeUp % kNsPerSecond};
  // A signal ends the wait early; one that is not a stop does not shorten it.
  while (!isStopped() &&
         clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR) {
  }
  spinUntil(deadline);
}

}  // namespace kestrel::ports
