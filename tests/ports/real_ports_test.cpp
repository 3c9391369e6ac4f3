#include "hardware/ports/real_ports.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <stdexcept>

#include "hardware/ports/port_choice.h"
#include "hardware/ports/port_diagnosis.h"
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
struct RealPortsTest : testing::Test {
  /// A port that the kernel lists at `base`, wired to the bench's connector 378h.
  void fit(const std::string& name, unsigned base) {
    write("proc/sys/dev/parport/" + name + "/base-addr", std::to_string(base) + "\t0\n");
    kernel.devices["/dev/" + name] = {.lines = &lines, .base = 0x378};
  }
  void write(const std::string& file, const std::string& text) const {
    fs::create_directories((root / file).parent_path());
    std::ofstream(root / file) << text;
  }
  std::unique_ptr<ports::RealPorts> open(const std::vector<std::string>& choices = {}) {
    ports::PortOptions options{
        .choices = {}, .root = root.path(), .lockFolder = root.path(), .guard = TAPE_GUARD};
    for (const std::string& each : choices) options.choices.push_back(ports::parsePortChoice(each));
    return std::make_unique<ports::RealPorts>(kernel, options);
  }

  test::TemporaryFolder root;
  sim::Bench bench;
  sim::SimulatedPort lines{bench};
  test::StandInKernel kernel;
};

TEST_F(RealPortsTest, standWhereTheKernelListsThemOrTheUserPutsThem) {
  write("proc/sys/dev/parport/default/timeslice", "200\n");
  fit("parport0", 888);
  fit("parport1", 0xD010);
  kernel.ioPorts = &lines;
  kernel.isIoPermitted = true;
  EXPECT_EQ(open()->taken(), Bases{0x378});
  EXPECT_EQ(open({"278=/dev/parport1"})->taken(), (Bases{0x378, 0x278}));
  EXPECT_EQ(open({"3BC=/dev/parport0"})->taken(), Bases{0x3BC});
  EXPECT_EQ(open({"278=0xD110"})->taken(), (Bases{0x378, 0x278}));
  EXPECT_EQ(open({"278=0x378"})->taken(), Bases{0x378}) << "a driver has 378h";
}

TEST_F(RealPortsTest, secondProgramIsToldAndChangesNothing) {
  fit("parport0", 888);
  auto first = open();
  for (const std::string process : {"4711", "4712"}) {
    write("proc/" + process + "/comm", process == "4711" ? "vpp-guard\n" : "kestrel\n");
    fs::create_directory(root / ("proc/" + process + "/fd"));
    fs::create_symlink("/dev/parport0", root / ("proc/" + process + "/fd/5"));
  }
  kernel.calls = "";
  const std::uint64_t accesses = bench.accessCount();
  const auto second = open();
  EXPECT_FALSE(second->switchOff());
  EXPECT_EQ(kernel.calls, "open /dev/parport0, PPEXCL, PPCLAIM, close, ");
  EXPECT_THAT(second->diagnosis(), ElementsAre(HasSubstr("(kestrel, process 4712)")));
  EXPECT_EQ(bench.accessCount(), accesses);
  first.reset();
  second->takeMissing();
  EXPECT_EQ(second->taken(), Bases{0x378});
}

const std::string kPort = "Port 378h (/dev/parport0): ";
constexpr auto kHolder = "kestrel, process 4711";

ports::PortSurvey surveyOf(std::optional<ports::PortProblem> problem,
                           const std::string& device = "/dev/parport0", bool isLockedDown = false) {
  ports::PortSurvey survey;
  survey.isLockedDown = isLockedDown;
  survey.listed = {{.name = "parport0", .base = 0x378, .drivers = {}}};
  survey.findings = {{0x378, device, false, problem, {}, kHolder}};
  return survey;
}

TEST(Diagnosis, namesWhatIsInTheWayAndTheOneCure) {
  ports::PortSurvey noPort;
  noPort.isPortDriverLoaded = true;
  ports::PortSurvey printer = surveyOf(ports::PortProblem::Taken);
  printer.listed[0].drivers = {"lp", "ppdev0"};
  ports::PortSurvey elsewhere = surveyOf(std::nullopt);
  elsewhere.listed.push_back({.name = "parport1", .base = 0xD010, .drivers = {}});
  const std::pair<ports::PortSurvey, std::string> cases[]{
      {ports::PortSurvey(), "sudo modprobe -a parport_pc ppdev"},
      {elsewhere, "which is none of 378h, 278h and 3BCh. Cure: --port 278=/dev/parport1"},
      {noPort, "is loaded and finds none"},
      {surveyOf(ports::PortProblem::NoDevice), "not loaded. Cure: sudo modprobe ppdev"},
      {surveyOf(ports::PortProblem::NoPermission), "sudo usermod -a -G lp $USER"},
      {surveyOf(ports::PortProblem::Taken), "another program has it (kestrel, process 4711)"},
      {printer, kPort + "the printer driver has it. Cure: sudo modprobe -r lp"},
      {surveyOf(ports::PortProblem::NotPermitted, "0xD010"), "direct access is for root alone"},
      {surveyOf(ports::PortProblem::NotPermitted, "0xD010", true),
       "Port 378h (0xD010): the kernel is locked down and forbids direct access"}};
  for (const auto& [survey, text] : cases) {
    EXPECT_THAT(diagnose(survey).back(), testing::HasSubstr(text));
  }
}

TEST(PortChoice, takesADeviceFileOrAnAddressAndNothingElse) {
  EXPECT_EQ(ports::parsePortChoice("3bc=/dev/parport1").base, 0x3BC);
  EXPECT_EQ(ports::parsePortChoice("378=parport2").device, "/dev/parport2");
  EXPECT_EQ(ports::parsePortChoice("278=0xD010").address, 0xD010);
  for (const char* text : {"378", "379=/dev/parport0", "=/dev/parport0", "1378=parport0",
                           "378=LPT1", "378=0x", "378=0x60", "378=0xFFFD", "378=0xD01G"}) {
    EXPECT_THROW(static_cast<void>(ports::parsePortChoice(text)), std::invalid_argument) << text;
  }
}

}  // namespace
}  // namespace kestrel
