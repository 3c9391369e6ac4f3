// The layers between the procedures and a port: trace, stop switch, filter.

#include <gtest/gtest.h>

#include <sstream>

#include "hardware/ports/interruptible_port.h"
#include "hardware/ports/lpt_filter.h"
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

}  // namespace
}  // namespace kestrel
