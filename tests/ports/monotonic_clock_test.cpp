#include "hardware/ports/monotonic_clock.h"

#include <gtest/gtest.h>
#include <sys/time.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <functional>
#include <thread>

namespace kestrel {
namespace {

using namespace std::chrono_literals;
using std::chrono::nanoseconds;

nanoseconds timeOf(const std::function<void()>& action) {
  const auto start = std::chrono::steady_clock::now();
  action();
  return std::chrono::steady_clock::now() - start;
}

// The shortest of some tries: what the clock does when nothing else wants the processor.
nanoseconds quietest(int tries, const std::function<void()>& action) {
  nanoseconds shortest = nanoseconds::max();
  for (int i = 0; i < tries; ++i) shortest = std::min(shortest, timeOf(action));
  return shortest;
}

TEST(MonotonicClock, timesALoopByItsCounts) {
  MonotonicClock clock;  // 25 ns a count
  for (int i = 0; i < 100; ++i) EXPECT_GE(timeOf([&] { clock.Spin(4'000); }), 100us);
  EXPECT_LT(quietest(100, [&] { clock.Spin(4'000); }), 110us);
  EXPECT_GE(quietest(5, [&] { clock.Spin(40'002); }), 1'000'050ns);
  EXPECT_LT(quietest(1'000, [&] { clock.Spin(12); }), 5us);
}

TEST(MonotonicClock, takesAnotherLengthOfACount) {
  MonotonicClock clock(100);
  const nanoseconds loop = quietest(100, [&] { clock.Spin(1'000); });
  EXPECT_GE(loop, 100us);
  EXPECT_LT(loop, 150us);
}

TEST(MonotonicClock, neverWakesEarly) {
  MonotonicClock clock;
  const nanoseconds wait = quietest(10, [&] { clock.Sleep(5); });
  EXPECT_GE(wait, 5ms);
  EXPECT_LT(wait, 9ms);
}

TEST(MonotonicClock, passesNoTimeForNothing) {
  MonotonicClock clock;
  EXPECT_LT(quietest(100,
                     [&] {
                       clock.Spin(0);
                       clock.Spin(-1'000'000);
                       clock.Sleep(0);
                       clock.Sleep(-1'000);
                     }),
            1ms);
}

TEST(MonotonicClock, endsWhenTheSwitchIsThrown) {
  StopSwitch stop;
  MonotonicClock clock(25, &stop);
  std::thread operatorAtTheSwitch([&] {
    std::this_thread::sleep_for(20ms);
    stop.throwIt();
  });
  const nanoseconds loop = timeOf([&] { clock.Spin(4'000'000'000); });  // 100 s
  operatorAtTheSwitch.join();
  EXPECT_LT(loop, 10s);
  EXPECT_LT(timeOf([&] { clock.Sleep(60'000); }), 10s);
}

// Takes the processor away for 3 ms at a time, as another program might.
void stallTheLoop(int /*signal*/) {
  const auto end = std::chrono::steady_clock::now() + 3ms;
  while (std::chrono::steady_clock::now() < end) {
  }
}

std::uint64_t stretchedOf(std::int64_t counts, int loops) {
  const auto before = std::signal(SIGALRM, stallTheLoop);
  constexpr itimerval kEvery4Ms{.it_interval = {0, 4'000}, .it_value = {0, 1'000}};
  setitimer(ITIMER_REAL, &kEvery4Ms, nullptr);
  MonotonicClock clock;
  for (int i = 0; i < loops; ++i) clock.Spin(counts);
  constexpr itimerval kNoMore{};
  setitimer(ITIMER_REAL, &kNoMore, nullptr);
  std::signal(SIGALRM, before);
  return clock.stretchedPulses();
}

TEST(MonotonicClock, countsPulsesThatWereStretchedBeyondTwice) {
  EXPECT_GT(stretchedOf(20'000, 50), 0U);
  EXPECT_EQ(stretchedOf(399, 2'000), 0U) << "9.975 us is a settling loop, no pulse";
  EXPECT_EQ(stretchedOf(4'000'000, 1), 0U) << "100 ms and one stall at its end";
}

}  // namespace
}  // namespace kestrel
