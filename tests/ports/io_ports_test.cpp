#include "hardware/ports/io_ports.h"

#include <gtest/gtest.h>

#include <optional>

#include "ports/scripted_machine.h"
#include "support/stand_in_kernel.h"
#include "support/temporary_folder.h"

namespace kestrel {
namespace {

using Calls = std::vector<std::string>;

struct DirectPort {
  test::TemporaryFolder folder;
  test::ScriptedMachine lines;
  test::StandInKernel kernel;
  std::optional<IoPorts> port;

  DirectPort() {
    kernel.ioPorts = &lines;
    kernel.isIoPermitted = true;
  }
  void open(std::uint16_t address = 0xD010) {
    port.emplace(kernel, address, std::uint16_t{0x378}, folder.path().string());
  }
  PortProblem problemOfOpening(std::uint16_t address = 0xD010) {
    try {
      IoPorts(kernel, address, 0x278, folder.path().string());
    } catch (const PortError& error) {
      return error.problem();
    }
    ADD_FAILURE() << "opened";
    return PortProblem::Other;
  }
};

const Calls kSwitchOffCalls{"outb D010 40", "outb D012 05", "outb D012 04", "outb D012 05",
                            "outb D012 0A", "outb D012 0B", "outb D012 0A"};

TEST(IoPorts, areSwitchedOffFirstAndLast) {
  DirectPort direct;
  direct.open();
  EXPECT_EQ(direct.kernel.calls, Calls{"permit D010+3"});
  direct.kernel.calls.clear();
  direct.port->take();
  EXPECT_EQ(direct.kernel.calls, kSwitchOffCalls);
  direct.kernel.calls.clear();
  direct.port.reset();
  Calls expected = kSwitchOffCalls;
  expected.emplace_back("forbid D010+3");
  EXPECT_EQ(direct.kernel.calls, expected);
}

TEST(IoPorts, reachTheRegistersAtTheirOwnAddress) {
  DirectPort direct;
  direct.open();
  direct.port->take();
  direct.kernel.calls.clear();
  direct.port->PortOut(0x378, 0x5A);
  direct.port->PortOut(0x37A, 0xF7);  // bits 4 and 5 are no lines
  direct.port->PortOut(0x379, 0x11);
  EXPECT_EQ(direct.port->PortIn(0x379), 0x78);
  EXPECT_EQ(direct.port->PortIn(0x37A), 0xFF);
  EXPECT_EQ(direct.kernel.calls, (Calls{"outb D010 5A", "outb D012 07", "inb D011"}));
}

TEST(IoPorts, areRefusedWithoutPermission) {
  DirectPort direct;
  direct.kernel.isIoPermitted = false;
  EXPECT_EQ(direct.problemOfOpening(), PortProblem::NotPermitted);
  EXPECT_TRUE(direct.lines.events.empty());
}

TEST(IoPorts, areForOneProgramOnly) {
  DirectPort direct;
  direct.open();
  direct.kernel.calls.clear();
  EXPECT_EQ(direct.problemOfOpening(), PortProblem::Taken);
  EXPECT_TRUE(direct.kernel.calls.empty()) << "the second one reached the port";
  direct.port.reset();
  direct.open();
}

TEST(IoPorts, keepOffTheMachinesOwnDevices) {
  DirectPort direct;
  EXPECT_EQ(direct.problemOfOpening(0x60), PortProblem::NotAPort);
  EXPECT_EQ(direct.problemOfOpening(0xFFFE), PortProblem::NotAPort);
}

}  // namespace
}  // namespace kestrel
