#include <gtest/gtest.h>
#include <sys/time.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <functional>
#include <thread>

#include "hardware/ports/monotonic_clock.h"

namespace kestrel {
namespace {

using namespace std::chrono_literals;
using Time = std::chrono::steady_clock;

// The shortest of some tries: what the clock does when nothing else wants the processor.
std::chrono::nanoseconds quietest(int tries, const std::function<void()>& action) {
  std::chrono::nanoseconds shortest = 1h;
  for (int i = 0; i < tries; ++i) {
    const auto start = Time::now();
    action();
    shortest = std::min<std::chrono::nanoseconds>(shortest, Time::now() - start);
  }
  return shortest;
}

TEST(MonotonicClock, isNeverShorterThanAskedAndHardlyLonger) {
  MonotonicClock clock;
  MonotonicClock slow(100);
  const auto expectWithin = [](std::chrono::nanoseconds got, std::chrono::nanoseconds asked,
                               std::chrono::nanoseconds longest) {
    EXPECT_GE(got, asked);
    EXPECT_LT(got, longest);
  };
  expectWithin(quietest(100, [&] { clock.Spin(4'000); }), 100us, 110us);
  expectWithin(quietest(100, [&] { slow.Spin(1'000); }), 100us, 110us);
  expectWithin(quietest(1'000, [&] { clock.Spin(12); }), 300ns, 5us);
  expectWithin(quietest(10, [&] { clock.Sleep(5); }), 5ms, 9ms);
  expectWithin(quietest(10, [&] { clock.Spin(-1'000'000), clock.Sleep(-1'000); }), 0ns, 1ms);
}

TEST(MonotonicClock, endsWhenTheSwitchIsThrown) {
  StopSwitch stop;
  MonotonicClock clock(25, &stop);
  std::thread person([&] { std::this_thread::sleep_for(20ms), stop.throwIt(); });
  EXPECT_LT(quietest(1, [&] { clock.Spin(4'000'000'000), clock.Sleep(60'000); }), 10s);
  person.join();
}

// Takes the processor away for 1 ms of every 4, as another program might.
void stall(int /*signal*/) {
  for (const auto end = Time::now() + 1ms; Time::now() < end;) {
  }
}

std::uint64_t stretchedOf(std::int64_t counts, int loops) {
  const auto before = std::signal(SIGALRM, stall);
  constexpr itimerval kEvery4Ms{.it_interval = {0, 4'000}, .it_value = {0, 1'000}};
  constexpr itimerval kNoMore{};
  setitimer(ITIMER_REAL, &kEvery4Ms, nullptr);
  MonotonicClock clock;
  for (int i = 0; i < loops; ++i) clock.Spin(counts);
  setitimer(ITIMER_REAL, &kNoMore, nullptr);
  std::signal(SIGALRM, before);
  return clock.stretchedPulses();
}

TEST(MonotonicClock, countsPulsesThatWereStretchedBeyondTwice) {
  EXPECT_GT(stretchedOf(20'000, 50), 0U);
  EXPECT_EQ(stretchedOf(399, 2'000), 0U) << "9.975 us is a settling loop, no pulse";
  EXPECT_EQ(stretchedOf(4'000'000, 1), 0U) << "100 ms and one stall at its end";
}

TEST(SuspendWatch, noticesASleepInTheMiddleOfACommandOnce) {
  constexpr std::int64_t kSecond = 1'000'000'000;
  SuspendWatch watch;
  EXPECT_FALSE(watch.look(100 * kSecond, 130 * kSecond)) << "slept before the program began";
  EXPECT_TRUE(watch.look(101 * kSecond, 191 * kSecond));
  EXPECT_FALSE(watch.look(111 * kSecond, 801 * kSecond)) << "between two commands";
}

}  // namespace
}  // namespace kestrel
