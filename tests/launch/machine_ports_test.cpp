#include "app/launch/machine_ports.h"

#include <gtest/gtest.h>

#include "support/fakes.h"

namespace kestrel {
namespace {

// The simulated board's time is its own: a pulse is as long as the chip sees it, not the host.
TEST(MachinePorts, withASimulatedBoardHaveItsClock) {
  LaunchOptions options;
  options.simulate = true;
  options.countNs = 50;
  const StopSwitch stop;
  test::FakeScreen screen;
  MachinePorts ports(options, "2764", stop, screen);
  ports.clock().Sleep(1500);
  ports.clock().Spin(1'000);
  EXPECT_EQ(ports.simulated()->bench().now(), 1'500'050'000);
  ports.port().PortOut(0x378, 0x12);
  EXPECT_EQ(ports.simulated()->bench().portIn(0x378), 0x12);
}

}  // namespace
}  // namespace kestrel
