#include "hardware/ports/real_ports.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "simulator/simulated_port.h"
#include "support/stand_in_kernel.h"
#include "support/temporary_folder.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;
using Bases = std::vector<std::uint16_t>;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

/// A machine with a simulated board and what its kernel shows of its ports.
struct Workstation {
  test::TemporaryFolder root;
  sim::Bench bench;
  sim::SimulatedPort lines{bench};
  sim::Board& board = bench.plug(sim::Model::kestrel5, 0x378);
  test::StandInKernel kernel;

  /// A port that the kernel lists at `base`, wired to the bench's connector 378h.
  void fit(const std::string& name, unsigned base) {
    write("proc/sys/dev/parport/" + name + "/base-addr", std::to_string(base) + "\t0\n");
    kernel.devices["/dev/" + name] = {.lines = &lines, .base = 0x378};
  }
  void write(const std::string& file, const std::string& text) const {
    fs::create_directories((root / file).parent_path());
    std::ofstream(root / file) << text;
  }
  [[nodiscard]] PortOptions options(std::vector<PortChoice> choices = {}) const {
    return {.choices = std::move(choices), .root = root.path(), .lockFolder = root.path()};
  }
};

TEST(RealPorts, standAtTheBaseWhereTheKernelListsThem) {
  Workstation machine;
  machine.write("proc/sys/dev/parport/default/timeslice", "200\n");
  machine.fit("parport0", 888);
  const auto ports = openRealPorts(machine.kernel, machine.options());
  EXPECT_EQ(ports->taken(), Bases{0x378});
  EXPECT_EQ(machine.board.latch(0), 0x40);
  ports->port().PortOut(0x378, 0x9F);
  ports->port().PortOut(0x37A, 0x0E);  // strobe of latch 3
  EXPECT_EQ(machine.board.latch(3), 0x9F);
  ports->port().PortOut(0x278, 0x55);
  ports->port().PortOut(0x37B, 0x55);
  EXPECT_EQ(ports->port().PortIn(0x3BD), 0xFF);
  EXPECT_EQ(machine.kernel.calls.back(), "control 0E") << "something else was reached";
}

TEST(RealPorts, ofACardElsewhereStandWhereTheUserPutsThem) {
  Workstation machine;
  machine.fit("parport0", 888);
  machine.fit("parport1", 0xD010);
  const auto ports =
      openRealPorts(machine.kernel, machine.options({parsePortChoice("278=/dev/parport1")}));
  EXPECT_EQ(ports->taken(), (Bases{0x378, 0x278}));
  const auto moved =
      openRealPorts(machine.kernel, machine.options({parsePortChoice("3BC=/dev/parport0")}));
  EXPECT_EQ(moved->taken(), Bases{}) << "the first program has it";
}

TEST(RealPorts, aSecondProgramIsToldAndChangesNothing) {
  Workstation machine;
  machine.fit("parport0", 888);
  const auto first = openRealPorts(machine.kernel, machine.options());
  first->port().PortOut(0x378, 0x70);
  first->port().PortOut(0x37A, 0x04);  // VPP on
  machine.write("proc/4711/comm", "kestrel\n");
  machine.write("proc/4712/comm", "vpp-guard\n");
  for (const char* process : {"proc/4711/fd", "proc/4712/fd"}) {
    fs::create_directories(machine.root / process);
    fs::create_symlink("/dev/parport0", machine.root / process / "5");
  }
  machine.kernel.calls.clear();
  const auto second = openRealPorts(machine.kernel, machine.options());
  EXPECT_TRUE(second->taken().empty());
  EXPECT_EQ(second->port().PortIn(0x379), 0xFF);
  EXPECT_FALSE(second->switchOff());
  EXPECT_THAT(machine.kernel.calls,
              ElementsAre("open /dev/parport0", "PPEXCL", "PPCLAIM", "close"));
  EXPECT_EQ(machine.board.latch(0), 0x70);
  EXPECT_THAT(second->diagnosis(), ElementsAre(HasSubstr("(kestrel, process 4711)")));
}

TEST(RealPorts, areFreeAgainAndOffAtTheEnd) {
  Workstation machine;
  machine.fit("parport0", 888);
  auto ports = openRealPorts(machine.kernel, machine.options());
  ports->port().PortOut(0x378, 0x70);
  ports->port().PortOut(0x37A, 0x04);
  ports.reset();
  EXPECT_EQ(machine.board.latch(0), 0x40);
  EXPECT_EQ(machine.kernel.calls.back(), "close");
  EXPECT_EQ(openRealPorts(machine.kernel, machine.options())->taken(), Bases{0x378});
}

TEST(RealPorts, areSwitchedOffByHand) {
  Workstation machine;
  machine.fit("parport0", 888);
  const auto ports = openRealPorts(machine.kernel, machine.options());
  ports->port().PortOut(0x378, 0x70);
  ports->port().PortOut(0x37A, 0x04);
  EXPECT_TRUE(ports->switchOff());
  EXPECT_EQ(machine.board.latch(0), 0x40);
  machine.kernel.failures["data"] = {ENODEV};
  EXPECT_FALSE(ports->switchOff());
}

TEST(RealPorts, thatVanishAreTakenAnewWhenTheyAreBack) {
  Workstation machine;
  machine.fit("parport0", 888);
  const auto ports = openRealPorts(machine.kernel, machine.options());
  machine.kernel.failures["data"] = {ENODEV};
  EXPECT_THROW(ports->port().PortOut(0x378, 1), RuntimeError);
  EXPECT_TRUE(ports->taken().empty());
  EXPECT_THAT(ports->diagnosis(), ElementsAre(HasSubstr("the port has vanished")));
  ports->takeMissing();
  EXPECT_EQ(ports->taken(), Bases{0x378});
  ports->port().PortOut(0x378, 1);
}

TEST(RealPorts, areFoundWhenTheyCome) {
  Workstation machine;
  const auto ports = openRealPorts(machine.kernel, machine.options());
  EXPECT_TRUE(ports->taken().empty());
  EXPECT_EQ(ports->port().PortIn(0x379), 0xFF);
  EXPECT_THAT(ports->diagnosis(), ElementsAre(HasSubstr("parport_pc is not loaded")));
  fs::create_directories(machine.root / "sys/module/parport_pc");
  EXPECT_THAT(ports->diagnosis(), ElementsAre(HasSubstr("finds none")));
  machine.fit("parport0", 632);
  ports->takeMissing();
  EXPECT_EQ(ports->taken(), Bases{0x278});
}

TEST(RealPorts, tellOfThePrinterDriver) {
  Workstation machine;
  machine.fit("parport0", 956);
  fs::create_directories(machine.root / "proc/sys/dev/parport/parport0/devices/lp");
  machine.kernel.devices["/dev/parport0"].hasPrinterDriver = true;
  const auto ports = openRealPorts(machine.kernel, machine.options());
  EXPECT_THAT(ports->diagnosis(),
              ElementsAre("Port 3BCh (/dev/parport0): the printer driver has it. Cure: sudo "
                          "modprobe -r lp"));
  EXPECT_EQ(machine.bench.accessCount(), 0U) << "the printer's lines were moved";
}

TEST(RealPorts, areReachedDirectlyOnlyWhereNoDriverIs) {
  Workstation machine;
  machine.kernel.ioPorts = &machine.lines;
  machine.kernel.isIoPermitted = true;
  machine.fit("parport0", 888);
  const auto taken = openRealPorts(machine.kernel, machine.options({parsePortChoice("278=0x378")}));
  EXPECT_EQ(taken->taken(), Bases{0x378});
  EXPECT_THAT(taken->diagnosis(), Contains(HasSubstr("use its device file instead")));
  const auto direct =
      openRealPorts(machine.kernel, machine.options({parsePortChoice("278=0xD010")}));
  EXPECT_EQ(direct->taken(), Bases{0x278});
}

TEST(RealPorts, tellOfALockedDownKernel) {
  Workstation machine;
  machine.write("sys/kernel/security/lockdown", "none [integrity] confidentiality\n");
  const auto options = machine.options({parsePortChoice("378=0xD010")});
  const auto ports = openRealPorts(machine.kernel, options);
  EXPECT_THAT(ports->diagnosis(), ElementsAre(HasSubstr("the kernel is locked down")));
  machine.write("sys/kernel/security/lockdown", "[none] integrity confidentiality\n");
  EXPECT_THAT(ports->diagnosis(), ElementsAre(HasSubstr("direct access is for root alone")));
}

}  // namespace
}  // namespace kestrel
