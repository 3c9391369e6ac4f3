#include "hardware/ports/lpt_ports.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "ports/scripted_machine.h"

namespace kestrel {
namespace {

TEST(LptPorts, letsThroughTheThreeRegistersOfAConnectedBase) {
  test::ScriptedMachine lpt1;
  test::ScriptedMachine lpt3;
  LptPorts ports;
  ports.connect(0x378, lpt1);
  ports.connect(0x3BC, lpt3);
  ports.PortOut(0x378, 0x11);
  ports.PortOut(0x37A, 0x22);
  EXPECT_EQ(ports.PortIn(0x379), 0x78);
  ports.PortOut(0x3BE, 0x33);
  EXPECT_EQ(lpt1.events, (std::vector<std::string>{"out 378=11", "out 37A=22", "in 379"}));
  EXPECT_EQ(lpt3.events, (std::vector<std::string>{"out 3BE=33"}));
}

TEST(LptPorts, dropsAllOtherAccesses) {
  test::ScriptedMachine machine;
  LptPorts ports;
  ports.connect(0x378, machine);
  for (const int port : {0, 1, 2, 0x61, 0x277, 0x278, 0x27A, 0x377, 0x37B, 0x3BC, 0x778, -1}) {
    ports.PortOut(static_cast<std::int16_t>(port), 0x55);
    EXPECT_EQ(ports.PortIn(static_cast<std::int16_t>(port)), 0xFF) << port;
  }
  EXPECT_TRUE(machine.events.empty());
}

TEST(LptPorts, forgetsADisconnectedPort) {
  test::ScriptedMachine machine;
  LptPorts ports;
  ports.connect(0x278, machine);
  ports.disconnect(0x278);
  EXPECT_EQ(ports.PortIn(0x279), 0xFF);
  EXPECT_TRUE(machine.events.empty());
  EXPECT_THROW(ports.connect(0x379, machine), std::invalid_argument);
}

}  // namespace
}  // namespace kestrel
