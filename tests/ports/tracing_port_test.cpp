#include "hardware/ports/tracing_port.h"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

#include "ports/scripted_machine.h"

namespace kestrel {
namespace {

struct Traced {
  test::ScriptedMachine machine;
  std::ostringstream trace;
  TracingPort port{machine, machine, trace};
};

TEST(Trace, writesOneEventALine) {
  Traced traced;
  traced.port.PortOut(0x378, 0x5A);
  traced.port.PortOut(0x3BE, 0x0A);
  traced.port.PortOut(0, 0);
  traced.port.PortOut(-1, 0xFF);
  EXPECT_EQ(traced.port.PortIn(0x379), 0x78);
  traced.port.Spin(12);
  traced.port.Sleep(500);
  EXPECT_EQ(traced.trace.str(),
            "out 378 5A\nout 3BE 0A\nout 0 00\nout FFFF FF\nin 379 78\nspin 12\nsleep 500\n");
  EXPECT_EQ(traced.machine.events,
            (std::vector<std::string>{"out 378=5A", "out 3BE=0A", "out 0=00", "out FFFF=FF",
                                      "in 379", "spin 12", "sleep 500"}));
}

TEST(Trace, leavesNoLineWhereNoTimePasses) {
  Traced traced;
  traced.port.Spin(0);
  traced.port.Spin(-3);
  traced.port.Sleep(0);
  traced.port.Sleep(-1);
  traced.port.Spin(9'223'372'036'854'775'807);
  EXPECT_EQ(traced.trace.str(), "spin 9223372036854775807\n");
}

TEST(Trace, endsWithTheWriteThatFailed) {
  Traced traced;
  traced.machine.onEvent = [](const std::string&) { throw std::runtime_error("gone"); };
  EXPECT_THROW(traced.port.PortOut(0x37A, 4), std::runtime_error);
  EXPECT_THROW(static_cast<void>(traced.port.PortIn(0x379)), std::runtime_error);
  EXPECT_EQ(traced.trace.str(), "out 37A 04\n");
}

TEST(Trace, tellsTheTimeOfTheClockBelow) {
  Traced traced;
  EXPECT_EQ(traced.port.longTime(), "14:03:07");
  EXPECT_TRUE(traced.trace.str().empty());
}

}  // namespace
}  // namespace kestrel
