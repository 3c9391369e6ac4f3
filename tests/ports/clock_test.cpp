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
void expectWithin(std::chrono::nanoseconds asked, std::chrono::nanoseconds longest,
                  const std::function<void()>& wait) {
  Time::duration shortest = 1h;
  for (int i = 0; i < 100; ++i) {
    const auto start = Time::now();
    wait();
    shortest = std::min(shortest, Time::now() - start);
  }
  EXPECT_GE(shortest, asked);
  EXPECT_LT(shortest, longest);
}

TEST(MonotonicClock, isNeverShorterThanAskedAndHardlyLonger) {
  ports::MonotonicClock clock;
  ports::MonotonicClock slow(100);
  expectWithin(100us, 110us, [&] { clock.Spin(4'000); });
  expectWithin(100us, 110us, [&] { slow.Spin(1'000); });
  expectWithin(300ns, 5us, [&] { clock.Spin(12); });
  expectWithin(5ms, 9ms, [&] { clock.Sleep(5); });
  expectWithin(0ns, 1ms, [&] { clock.Spin(-1'000'000), clock.Sleep(-1'000); });
}

TEST(MonotonicClock, endsWhenTheSwitchIsThrown) {
  StopSwitch stop;
  ports::MonotonicClock clock(25, &stop);
  const auto start = Time::now();
  std::thread person([&] { std::this_thread::sleep_for(20ms), stop.stopCommand(); });
  clock.Spin(4'000'000'000), clock.Sleep(60'000);
  EXPECT_LT(Time::now() - start, 10s);
  person.join();
}

// Takes the processor away for 1 ms of every 4, as another program might.
void stall(int /*signal*/) {
  for (const auto end = Time::now() + 1ms; Time::now() < end;) continue;
}

TEST(MonotonicClock, countsPulsesThatWereStretchedBeyondTwice) {
  const auto stretchedOf = [](std::int64_t counts, int loops) {
    ports::MonotonicClock clock;
    for (int i = 0; i < loops; ++i) clock.Spin(counts);
    return clock.stretchedPulses();
  };
  std::signal(SIGALRM, stall);
  constexpr itimerval kEvery4Ms{.it_interval = {0, 4'000}, .it_value = {0, 1'000}};
  setitimer(ITIMER_REAL, &kEvery4Ms, nullptr);
  EXPECT_GT(stretchedOf(20'000, 50), 0U);
  EXPECT_EQ(stretchedOf(399, 2'000), 0U) << "9.975 us is a settling loop, no pulse";
  EXPECT_EQ(stretchedOf(4'000'000, 1), 0U) << "100 ms and one stall at its end";
  constexpr itimerval kNoMore{};
  setitimer(ITIMER_REAL, &kNoMore, nullptr);
  std::signal(SIGALRM, SIG_DFL);
}

TEST(SuspendWatch, noticesASleepInTheMiddleOfACommandOnce) {
  constexpr std::int64_t kSecond = 1'000'000'000;
  ports::SuspendWatch watch;
  EXPECT_FALSE(watch.look(100 * kSecond, 130 * kSecond)) << "slept before the program began";
  EXPECT_TRUE(watch.look(101 * kSecond, 191 * kSecond));
  EXPECT_FALSE(watch.look(111 * kSecond, 801 * kSecond)) << "between two commands";
}

}  // namespace
}  // namespace kestrel
