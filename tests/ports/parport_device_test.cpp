#include "hardware/ports/parport_device.h"

#include <gmock/gmock.h>

#include <optional>

#include "hardware/ports/direct_port.h"
#include "support/port_script.h"
#include "support/stand_in_kernel.h"
#include "support/temporary_folder.h"

namespace kestrel {
namespace {

const std::string kOff =
    "data 40, control 05, control 04, control 05, control 0A, control 0B, control 0A, ";

struct Parport : testing::Test {
  Parport() {
    kernel.devices["/dev/parport0"].lines = &lines;
    kernel.ioPorts = &lines;
    kernel.isIoPermitted = true;
  }
  void take() {
    port.emplace(kernel, "/dev/parport0", std::uint16_t{0x378});
    port->take();
  }
  /// What a board would see and what would be lost on it.
  static void use(ports::RealPort& port) {
    port.PortOut(0x378, 0x5A);
    port.PortOut(0x37A, 0xF7);  // bits 4 and 5 are no lines
    port.PortOut(0x379, 0x11);  // the status register cannot be written
    EXPECT_EQ(port.PortIn(0x379), 0x78);
    EXPECT_EQ(port.PortIn(0x378), 0xFF);
  }
  [[nodiscard]] std::string calls() { return std::exchange(kernel.calls, {}); }
  static auto refuses(ports::PortProblem problem) {
    return testing::Throws<ports::PortError>(
        testing::Property(&ports::PortError::problem, problem));
  }

  test::PortScript lines;
  test::StandInKernel kernel;
  std::optional<ports::ParportDevice> port;
};

TEST_F(Parport, isSwitchedOffFirstAndLastAlsoWhenSignalsInterrupt) {
  take();
  lines.answers = {0x78};
  use(*port);
  port.reset();
  EXPECT_EQ(calls(), "open /dev/parport0, PPEXCL, PPCLAIM, " + kOff +
                         "data 5A, control 07, status, " + kOff + "PPRELEASE, close, ");
  static_cast<void>(lines.taken());
  for (const char* call : {"open", "PPEXCL", "PPCLAIM", "data", "control", "status"}) {
    kernel.failures[call] = {EINTR, EINTR};
  }
  take();
  EXPECT_EQ(port->PortIn(0x379), 0xFF);
  EXPECT_EQ(lines.taken(), "37A=0C 378=40 37A=05 37A=04 37A=05 37A=0A 37A=0B 37A=0A 379?");
}

TEST_F(Parport, thatIsRefusedSaysWhyAndIsNotTouched) {
  const std::tuple<const char*, int, ports::PortProblem> refusals[]{
      {"open", ENOENT, ports::PortProblem::NoDevice},
      {"open", EACCES, ports::PortProblem::NoPermission},
      {"open", ENXIO, ports::PortProblem::NoHardware},
      {"PPEXCL", ENOTTY, ports::PortProblem::NotAPort},
      {"PPCLAIM", ENXIO, ports::PortProblem::Taken},
      {"PPCLAIM", ENOMEM, ports::PortProblem::Other}};
  for (const auto& [call, error, problem] : refusals) {
    kernel.failures[call] = {error};
    EXPECT_THAT([this] { take(); }, refuses(problem));
    port.reset();
    EXPECT_EQ(lines.taken(), "");
    EXPECT_EQ(calls().ends_with(" close, "), std::string(call) != "open");
  }
}

TEST_F(Parport, isUnavailableOnceItHasVanished) {
  take();
  for (const char* call : {"data", "control", "status"}) {
    EXPECT_FALSE(port->isGone());
    kernel.failures[call] = {ENODEV};
    EXPECT_THROW(use(*port), RuntimeError) << call;
    EXPECT_TRUE(port->isGone());
    take();
  }
}

// A board of model 5 with VPP on pin 1, and a port that fails for a while, or for ever.
TEST_F(Parport, isSwitchedOffWhenItWorksAgainAndTellsWhenItNeverDoes) {
  const auto switchOn = [this] {
    take();
    port->PortOut(0x378, 0x60);
    for (const auto control : std::initializer_list<std::uint8_t>{5, 4, 5})
      port->PortOut(0x37A, control);
  };
  switchOn();
  kernel.failures["control"].assign(20, EIO);
  EXPECT_THROW(port->PortOut(0x37A, 7), RuntimeError);
  EXPECT_TRUE(calls().ends_with(kOff));
  EXPECT_FALSE(port->mayVoltageBeOn());
  switchOn();
  kernel.takesNotes = false;  // of the many tries
  kernel.failures["control"].assign(10'000'000, EINTR);
  EXPECT_THROW(port->PortOut(0x37A, 7), RuntimeError);
  EXPECT_FALSE(port->giveBack());
  EXPECT_TRUE(port->mayVoltageBeOn());
  EXPECT_GE(kernel.devices["/dev/parport0"].holder, 0) << "the guard needs the claim";
}

TEST_F(Parport, reachedDirectlyIsForOneProgramWithPermission) {
  const test::TemporaryFolder locks;
  const auto open = [&](std::uint16_t address) {
    return ports::DirectPort(kernel, address, 0x378, locks.path().string());
  };
  {
    ports::DirectPort direct = open(0xD010);
    direct.take();
    EXPECT_THAT([&] { open(0xD010); }, refuses(ports::PortProblem::Taken));
    lines.answers = {0x78};
    use(direct);
  }
  const std::string off =
      "outb D010 40, outb D012 05, outb D012 04, outb D012 05, outb D012 0A, outb D012 0B, outb "
      "D012 0A, ";
  EXPECT_EQ(calls(), "permit D010, " + off + "outb D010 5A, outb D012 07, inb D011, " + off +
                         "forbid D010, ");
  EXPECT_THAT([&] { open(0x60); }, refuses(ports::PortProblem::NotAPort));
  kernel.isIoPermitted = false;
  EXPECT_THAT([&] { open(0xD010); }, refuses(ports::PortProblem::NotPermitted));
}

}  // namespace
}  // namespace kestrel
