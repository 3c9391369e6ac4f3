#include "hardware/ports/real_ports.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "simulator/simulated_port.h"
#include "support/stand_in_kernel.h"
#include "support/temporary_folder.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;
using Bases = std::vector<std::uint16_t>;
using testing::ElementsAre;
using testing::HasSubstr;

/// A machine with a simulated board and what its kernel shows of its ports.
struct RealPortsTest : testing::TestWithParam<sim::Model> {
  /// A port that the kernel lists at `base`, wired to the bench's connector 378h.
  void fit(const std::string& name, unsigned base) {
    write("proc/sys/dev/parport/" + name + "/base-addr", std::to_string(base) + "\t0\n");
    kernel.devices["/dev/" + name] = {.lines = &lines, .base = 0x378};
  }
  void write(const std::string& file, const std::string& text) const {
    fs::create_directories((root / file).parent_path());
    std::ofstream(root / file) << text;
  }
  std::unique_ptr<RealPorts> open(std::vector<PortChoice> choices = {}) {
    return openRealPorts(kernel, {std::move(choices), root.path(), root.path()});
  }
  /// Every switch of latch 0 on, by the codes of models 5 and 6.
  static void switchOn(RealPorts& ports) {
    ports.port().PortOut(0x378, 0xBF);
    ports.port().PortOut(0x37A, 0x04);
  }

  test::TemporaryFolder root;
  sim::Bench bench;
  sim::SimulatedPort lines{bench};
  sim::Board& board = bench.plug(sim::Model::kestrel5, 0x378);
  test::StandInKernel kernel;
};

TEST_F(RealPortsTest, standWhereTheKernelListsThemOrTheUserPutsThem) {
  write("proc/sys/dev/parport/default/timeslice", "200\n");
  fit("parport0", 888);
  fit("parport1", 0xD010);
  kernel.ioPorts = &lines;
  kernel.isIoPermitted = true;
  EXPECT_EQ(open()->taken(), Bases{0x378});
  EXPECT_EQ(open({parsePortChoice("278=/dev/parport1")})->taken(), (Bases{0x378, 0x278}));
  EXPECT_EQ(open({parsePortChoice("3BC=/dev/parport0")})->taken(), Bases{0x3BC});
  EXPECT_EQ(open({parsePortChoice("278=0xD110")})->taken(), (Bases{0x378, 0x278}));
  EXPECT_EQ(open({parsePortChoice("278=0x378")})->taken(), Bases{0x378}) << "a driver has 378h";
}

TEST_F(RealPortsTest, secondProgramIsToldAndChangesNothing) {
  fit("parport0", 888);
  const auto first = open();
  switchOn(*first);
  for (const std::string process : {"4711", "4712"}) {
    write("proc/" + process + "/comm", process == "4711" ? "vpp-guard\n" : "kestrel\n");
    fs::create_directories(root / ("proc/" + process + "/fd"));
    fs::create_symlink("/dev/parport0", root / ("proc/" + process + "/fd/5"));
  }
  kernel.calls.clear();
  const auto second = open();
  EXPECT_FALSE(second->switchOff());
  EXPECT_THAT(kernel.calls, ElementsAre("open /dev/parport0", "PPEXCL", "PPCLAIM", "close"));
  EXPECT_EQ(board.latch(0), 0xBF);
  EXPECT_THAT(second->diagnosis(), ElementsAre(HasSubstr("(kestrel, process 4712)")));
}

TEST_F(RealPortsTest, vanishAndAreTakenAnewWhenTheyAreBack) {
  const auto ports = open();
  EXPECT_EQ(ports->port().PortIn(0x379), 0xFF);
  EXPECT_THAT(ports->diagnosis(), ElementsAre(HasSubstr("parport_pc is not loaded")));
  fit("parport0", 632);
  ports->takeMissing();
  EXPECT_EQ(ports->taken(), Bases{0x278});
  kernel.failures["data"] = {ENODEV};
  EXPECT_THROW(ports->port().PortOut(0x278, 1), RuntimeError);
  EXPECT_TRUE(ports->taken().empty());
  EXPECT_THAT(ports->diagnosis(), ElementsAre(HasSubstr("the port has vanished")));
  ports->takeMissing();
  EXPECT_EQ(ports->taken(), Bases{0x278});
}

TEST_F(RealPortsTest, tellOfThePrinterDriverAndALockedDownKernel) {
  fit("parport0", 956);
  fs::create_directories(root / "proc/sys/dev/parport/parport0/devices/lp");
  kernel.devices["/dev/parport0"].hasPrinterDriver = true;
  write("sys/kernel/security/lockdown", "none [integrity] confidentiality\n");
  EXPECT_THAT(open({parsePortChoice("378=0xD010")})->diagnosis(),
              ElementsAre(HasSubstr("locked down"), HasSubstr("sudo modprobe -r lp")));
  EXPECT_EQ(bench.accessCount(), 0U) << "the printer's lines were moved";
}

TEST_P(RealPortsTest, leaveTheVoltagesOffHoweverTheyWereOn) {
  const sim::Board& each = bench.plug(GetParam(), 0x378);
  fit("parport0", 888);
  auto ports = open();
  const auto switchAllOn = [&] {
    ports->port().PortOut(0x378, 0xBF);
    ports->port().PortOut(0x37A, GetParam() == sim::Model::kestrel4 ? 0x0B : 0x04);
    return each.vppPins() != 0;
  };
  ASSERT_TRUE(switchAllOn());
  EXPECT_TRUE(ports->switchOff());
  EXPECT_EQ(each.latch(0), 0x40);
  ASSERT_TRUE(switchAllOn());
  ports.reset();
  EXPECT_EQ(each.latch(0), 0x40);
  lines.PortOut(0x378, 0xFF);
  for (std::size_t i = 0; i < 5; ++i) EXPECT_NE(each.latch(i), 0xFF) << i << " was left open";
}

INSTANTIATE_TEST_SUITE_P(Models, RealPortsTest,
                         testing::Values(sim::Model::kestrel4, sim::Model::kestrel5,
                                         sim::Model::kestrel6));

}  // namespace
}  // namespace kestrel
