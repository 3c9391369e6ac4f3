// The layers between the procedures and a port: trace, stop switch, filter.

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "hardware/ports/attended_port.h"
#include "hardware/ports/lpt_ports.h"
#include "hardware/ports/tracing_port.h"
#include "platform/runtime_error.h"
#include "ports/scripted_machine.h"

namespace kestrel {
namespace {

using test::Events;

TEST(TracingPort, writesOneEventALineAndNothingWhereNoTimePasses) {
  test::ScriptedMachine machine;
  std::ostringstream trace;
  TracingPort port(machine, machine, trace);
  port.PortOut(0x37A, 0x0A);
  port.PortOut(0, 0);
  port.PortOut(-1, 0xFF);
  EXPECT_EQ(port.PortIn(0x379), 0x78);
  for (const std::int64_t counts : {0, -3, 12}) port.Spin(counts);
  for (const std::int32_t milliseconds : {0, -1, 500}) port.Sleep(milliseconds);
  machine.onEvent = [] { throw OperationStopped(); };
  EXPECT_THROW(port.PortOut(0x378, 0x5A), OperationStopped);
  EXPECT_EQ(trace.str(),
            "out 37A 0A\nout 0 00\nout FFFF FF\nin 379 78\nspin 12\nsleep 500\nout 378 5A\n");
}

struct Attended : testing::Test {
  [[nodiscard]] long turns() const {
    return std::count(machine.events.begin(), machine.events.end(), "turn");
  }
  test::ScriptedMachine machine;
  StopSwitch stop;
  AttendedPort port{machine, machine, stop, machine};
};

TEST_F(Attended, slicesLongWaitsToTheExactSumAndNothingElse) {
  port.PortOut(0x378, 1);
  port.Spin(3'200'000);
  port.Sleep(19);
  port.Sleep(20);
  port.Sleep(25);
  EXPECT_EQ(machine.events,
            (Events{"out 888 1", "spin 3200000", "sleep 19", "sleep 10", "turn", "sleep 10",
                    "sleep 10", "turn", "sleep 10", "turn", "sleep 5"}));
}

TEST_F(Attended, refusesEveryCallWhileTheSwitchIsThrown) {
  stop.throwIt();
  EXPECT_THROW(port.PortOut(0x378, 0x5A), OperationStopped);
  EXPECT_THROW(static_cast<void>(port.PortIn(0x379)), OperationStopped);
  EXPECT_THROW(port.Sleep(0), OperationStopped);
  EXPECT_THROW(port.Spin(0), OperationStopped);
  EXPECT_TRUE(machine.events.empty());
  stop.reset();
  port.PortOut(0x378, 0x40);
  EXPECT_EQ(machine.events.size(), 1U);
}

TEST_F(Attended, endsAWaitOrAPulseInWhichTheSwitchIsThrown) {
  machine.onEvent = [&] { stop.throwIt(); };
  for (const auto& wait :
       {std::function([&] { port.Sleep(500); }), std::function([&] { port.Spin(40'002); })}) {
    EXPECT_THROW(wait(), OperationStopped);
    stop.reset();
  }
  EXPECT_EQ(machine.events, (Events{"sleep 10", "spin 40002"}));
}

TEST_F(Attended, givesTheScreenATurnAtReadsNowAndThen) {
  for (int i = 0; i < 199; ++i) static_cast<void>(port.PortIn(0x379));
  for (int i = 0; i < 1000; ++i) port.PortOut(0x37A, 4);
  EXPECT_EQ(turns(), 0);
  static_cast<void>(port.PortIn(0x379));
  EXPECT_EQ(turns(), 1);
  port.Sleep(4);  // polls with waits between them
  static_cast<void>(port.PortIn(0x379));
  EXPECT_EQ(turns(), 2);
}

TEST(LptPorts, letThroughTheThreeRegistersOfAConnectedBaseAlone) {
  test::ScriptedMachine machine;
  LptPorts ports;
  ports.connect(0x378, machine);
  for (const int port : {0, 1, 2, 0x278, 0x27A, 0x377, 0x37B, 0x3BC, 0x778, -1}) {
    ports.PortOut(static_cast<std::int16_t>(port), 0x55);
    EXPECT_EQ(ports.PortIn(static_cast<std::int16_t>(port)), 0xFF) << port;
  }
  ports.PortOut(0x378, 17);
  ports.PortOut(0x37A, 34);
  EXPECT_EQ(ports.PortIn(0x379), 0x78);
  ports.disconnect(0x378);
  ports.PortOut(0x378, 0);
  EXPECT_EQ(machine.events, (Events{"out 888 17", "out 890 34", "in 889"}));
}

}  // namespace
}  // namespace kestrel
