#include "hardware/ports/attended_port.h"

#include <gtest/gtest.h>

#include "platform/runtime_error.h"
#include "ports/scripted_machine.h"

namespace kestrel {
namespace {

struct Attended {
  test::ScriptedMachine machine;
  StopSwitch stop;
  AttendedPort port{machine, machine, stop, machine};
};

using Events = std::vector<std::string>;

TEST(AttendedPort, addsNothingToShortCalls) {
  Attended attended;
  attended.port.PortOut(0x378, 0x5A);
  EXPECT_EQ(attended.port.PortIn(0x379), 0x78);
  attended.port.Sleep(19);
  attended.port.Spin(3'200'000);
  EXPECT_EQ(attended.machine.events, (Events{"out 378=5A", "in 379", "sleep 19", "spin 3200000"}));
}

TEST(AttendedPort, slicesLongWaitsToTheExactSum) {
  Attended attended;
  attended.port.Sleep(25);
  EXPECT_EQ(attended.machine.events, (Events{"sleep 10", "turn", "sleep 10", "turn", "sleep 5"}));
  attended.machine.events.clear();
  attended.port.Sleep(20);
  EXPECT_EQ(attended.machine.events, (Events{"sleep 10", "turn", "sleep 10"}));
  attended.machine.events.clear();
  attended.port.Sleep(1500);
  EXPECT_EQ(attended.machine.count("sleep 10"), 150);
  EXPECT_EQ(attended.machine.count("turn"), 149);
}

TEST(AttendedPort, refusesEveryCallWhileTheSwitchIsThrown) {
  Attended attended;
  attended.stop.throwIt();
  EXPECT_THROW(attended.port.PortOut(0x378, 0x5A), OperationStopped);
  EXPECT_THROW(static_cast<void>(attended.port.PortIn(0x379)), OperationStopped);
  EXPECT_THROW(attended.port.Sleep(0), OperationStopped);
  EXPECT_THROW(attended.port.Spin(0), OperationStopped);
  EXPECT_TRUE(attended.machine.events.empty());
  attended.stop.reset();
  attended.port.PortOut(0x378, 0x40);
  EXPECT_EQ(attended.machine.events, Events{"out 378=40"});
}

TEST(AttendedPort, endsAWaitWithinOneSliceOfTheStop) {
  Attended attended;
  attended.machine.onEvent = [&](const std::string&) {
    if (attended.machine.events.size() == 5) attended.stop.throwIt();  // during the third slice
  };
  EXPECT_THROW(attended.port.Sleep(500), OperationStopped);
  EXPECT_EQ(attended.machine.events, (Events{"sleep 10", "turn", "sleep 10", "turn", "sleep 10"}));
}

TEST(AttendedPort, reportsAStopThatFallsIntoAPulse) {
  Attended attended;
  attended.machine.onEvent = [&](const std::string&) { attended.stop.throwIt(); };
  EXPECT_THROW(attended.port.Spin(40'002), OperationStopped);
  attended.stop.reset();
  EXPECT_THROW(attended.port.Sleep(5), OperationStopped);
}

TEST(AttendedPort, givesTheScreenATurnAtReadsNowAndThen) {
  Attended attended;
  for (int i = 0; i < 199; ++i) static_cast<void>(attended.port.PortIn(0x379));
  EXPECT_EQ(attended.machine.count("turn"), 0);
  static_cast<void>(attended.port.PortIn(0x379));
  EXPECT_EQ(attended.machine.count("turn"), 1);
  // A poll every 2 ms: the waits count as well, or the window would stand still.
  for (int i = 0; i < 4; ++i) {
    attended.port.Sleep(2);
    static_cast<void>(attended.port.PortIn(0x379));
  }
  EXPECT_EQ(attended.machine.count("turn"), 3);
}

TEST(AttendedPort, neverTurnsAtWritesAndPulses) {
  Attended attended;
  for (int i = 0; i < 1000; ++i) {
    attended.port.PortOut(0x37A, 4);
    attended.port.Spin(40'002);
  }
  EXPECT_EQ(attended.machine.count("turn"), 0);
}

TEST(AttendedPort, takesAPressOfStopAtItsTurn) {
  Attended attended;
  attended.machine.onEvent = [&](const std::string& event) {
    if (event == "turn") attended.stop.throwIt();
  };
  attended.port.Spin(160'000);
  EXPECT_THROW(static_cast<void>(attended.port.PortIn(0x379)), OperationStopped);
  EXPECT_EQ(attended.machine.events, (Events{"spin 160000", "turn"}));
}

}  // namespace
}  // namespace kestrel
