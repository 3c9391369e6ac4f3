// The layers between the procedures and a port: trace, stop switch, filter; the clock below them.

#include <gtest/gtest.h>
#include <sys/time.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <functional>
#include <sstream>
#include <thread>

#include "hardware/ports/interruptible_port.h"
#include "hardware/ports/lpt_filter.h"
#include "hardware/ports/monotonic_clock.h"
#include "hardware/ports/tracing_port.h"
#include "platform/runtime_error.h"
#include "support/fakes.h"
#include "support/port_script.h"

namespace kestrel {
namespace {

TEST(TracingPort, writesOneEventALineAndNothingWhereNoTimePasses) {
  test::PortScript machine;
  machine.answers = {0x78};
  std::ostringstream trace;
  ports::TracingPort port(machine, machine, trace);
  port.PortOut(0x37A, 0x0A);
  port.PortOut(-1, 0);
  EXPECT_EQ(port.PortIn(0x379), 0x78);
  for (const std::int64_t counts : {0, -3, 12}) port.Spin(counts);
  for (const std::int32_t milliseconds : {0, -1, 500}) port.Sleep(milliseconds);
  machine.onEvent = [] { throw OperationStopped(); };
  EXPECT_THROW(port.PortOut(0x378, 0x5A), OperationStopped);
  EXPECT_EQ(trace.str(), "out 37A 0A\nout FFFF 00\nin 379 78\nspin 12\nsleep 500\nout 378 5A\n");
}

struct Attended : testing::Test {
  Attended() {
    screen.onTurn = [this] { machine.note("turn"); };
  }
  test::PortScript machine;
  test::FakeScreen screen;
  StopSwitch stop;
  ports::InterruptiblePort port{machine, machine, stop, screen};
};

TEST_F(Attended, givesTheScreenATurnInLongWaitsOfTheExactSumAndAtReadsNowAndThen) {
  for (int i = 0; i < 199; ++i) static_cast<void>(port.PortIn(0x379));
  for (int i = 0; i < 1000; ++i) port.PortOut(0x37A, 4);
  EXPECT_EQ(machine.taken().find("turn"), std::string::npos);
  static_cast<void>(port.PortIn(0x379));
  EXPECT_EQ(machine.taken(), "turn 379?");
  port.PortOut(0x378, 1);
  port.Spin(3'200'000);
  for (const std::int32_t milliseconds : {19, 20, 25}) port.Sleep(milliseconds);
  EXPECT_EQ(machine.taken(),
            "378=01 spin3200000 sleep19 sleep10 turn sleep10 sleep10 turn sleep10 turn sleep5");
  port.Spin(160'000);
  static_cast<void>(port.PortIn(0x379));
  EXPECT_EQ(machine.taken(), "spin160000 turn 379?");
}

TEST_F(Attended, passesNothingOnWhileTheSwitchIsThrown) {
  const std::function<void()> calls[]{[&] { port.PortOut(0x378, 0x5A); },
                                      [&] { static_cast<void>(port.PortIn(0x379)); },
                                      [&] { port.Sleep(500); }, [&] { port.Spin(40'002); }};
  stop.stopCommand();
  for (const auto& call : calls) EXPECT_THROW(call(), OperationStopped);
  EXPECT_EQ(machine.taken(), "");
  machine.onEvent = [&] { stop.stopCommand(); };
  for (const auto& wait : {calls[2], calls[3]}) {
    stop.beginCommand();
    EXPECT_THROW(wait(), OperationStopped);
  }
  EXPECT_EQ(machine.taken(), "sleep10 spin40002") << "each thrown in its middle";
}

TEST(LptFilter, letThroughTheThreeRegistersOfAConnectedBaseAlone) {
  test::PortScript machine;
  ports::LptFilter ports;
  ports.connect(0x378, machine);
  for (const int port : {0, 1, 2, 0x278, 0x27A, 0x377, 0x37B, 0x3BC, 0x778, -1}) {
    ports.PortOut(static_cast<std::int16_t>(port), 0x55);
    machine.answers = {0x78};
    EXPECT_EQ(ports.PortIn(static_cast<std::int16_t>(port)), 0xFF) << port;
  }
  ports.PortOut(0x378, 0x11);
  ports.PortOut(0x37A, 0x22);
  EXPECT_EQ(ports.PortIn(0x379), 0x78);
  ports.disconnect(0x378);
  ports.PortOut(0x378, 0);
  EXPECT_EQ(machine.taken(), "378=11 37A=22 379?");
}

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
