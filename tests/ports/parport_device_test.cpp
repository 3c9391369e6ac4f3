#include "hardware/ports/parport_device.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "ports/scripted_machine.h"
#include "simulator/simulated_port.h"
#include "support/stand_in_kernel.h"

namespace kestrel {
namespace {

using Calls = std::vector<std::string>;
using testing::AllOf;
using testing::HasSubstr;

const Calls kSwitchOffCalls{"data 40",    "control 05", "control 04", "control 05",
                            "control 0A", "control 0B", "control 0A"};

Calls operator+(Calls left, const Calls& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

struct Parport {
  test::ScriptedMachine lines;
  test::StandInKernel kernel;
  std::optional<ParportDevice> port;

  Parport() { kernel.devices["/dev/parport0"].lines = &lines; }
  void take() {
    port.emplace(kernel, "/dev/parport0", std::uint16_t{0x378});
    port->take();
  }
  void takeAnew() {
    take();
    kernel.calls.clear();
  }
};

TEST(ParportDevice, isTakenExclusivelyAndSwitchedOffFirst) {
  Parport parport;
  parport.take();
  EXPECT_EQ(parport.kernel.calls,
            (Calls{"open /dev/parport0", "PPEXCL", "PPCLAIM"} + kSwitchOffCalls));
}

TEST(ParportDevice, isSwitchedOffAndGivenBackAtItsEnd) {
  Parport parport;
  parport.takeAnew();
  parport.port.reset();
  EXPECT_EQ(parport.kernel.calls, (kSwitchOffCalls + Calls{"PPRELEASE", "close"}));
}

TEST(ParportDevice, writesAndReadsTheRegisters) {
  Parport parport;
  parport.takeAnew();
  parport.port->PortOut(0x378, 0x5A);
  parport.port->PortOut(0x37A, 0xF7);
  parport.port->PortOut(0x379, 0x11);  // the status register cannot be written
  EXPECT_EQ(parport.port->PortIn(0x379), 0x78);
  EXPECT_EQ(parport.port->PortIn(0x378), 0xFF);
  EXPECT_EQ(parport.kernel.calls, (Calls{"data 5A", "control 07", "status"}));
}

TEST(ParportDevice, repeatsWhatASignalInterrupted) {
  Parport parport;
  for (const char* call : {"open", "PPEXCL", "PPCLAIM", "data", "control", "status"}) {
    parport.kernel.failures[call] = {EINTR, EINTR};
  }
  parport.take();
  EXPECT_EQ(parport.port->PortIn(0x379), 0x78);
  EXPECT_EQ(parport.lines.events,
            (Calls{"out 37A=0C", "out 378=40", "out 37A=05", "out 37A=04", "out 37A=05",
                   "out 37A=0A", "out 37A=0B", "out 37A=0A", "in 379"}));
}

struct Refusal {
  const char* call;
  int error;
  PortProblem problem;
  const char* reason;
};

class ParportRefused : public testing::TestWithParam<Refusal> {};

TEST_P(ParportRefused, saysWhyAndTouchesNothing) {
  Parport parport;
  parport.kernel.failures[GetParam().call] = {GetParam().error};
  try {
    parport.take();
    FAIL() << "taken";
  } catch (const PortError& error) {
    EXPECT_EQ(error.problem(), GetParam().problem);
    EXPECT_THAT(error.what(), AllOf(HasSubstr("/dev/parport0"), HasSubstr(GetParam().reason)));
  }
  parport.port.reset();
  EXPECT_TRUE(parport.lines.events.empty());
  EXPECT_EQ(parport.kernel.calls.back(),
            std::string(GetParam().call) == "open" ? "open /dev/parport0" : "close");
}

INSTANTIATE_TEST_SUITE_P(
    EveryCall, ParportRefused,
    testing::Values(Refusal{"open", ENOENT, PortProblem::NoDevice, "No such file"},
                    Refusal{"open", EACCES, PortProblem::NoPermission, "Permission denied"},
                    Refusal{"open", ENXIO, PortProblem::NoHardware, "No such device"},
                    Refusal{"open", EMFILE, PortProblem::Other, "Too many open files"},
                    Refusal{"PPEXCL", ENOTTY, PortProblem::NotAPort, "not a parallel port"},
                    Refusal{"PPCLAIM", ENXIO, PortProblem::Taken, "another driver or program"},
                    Refusal{"PPCLAIM", ENODEV, PortProblem::NoHardware, "No such device"},
                    Refusal{"PPCLAIM", ENOMEM, PortProblem::Other, "Cannot allocate memory"}));

TEST(ParportDevice, isNotHadBesideThePrinterDriver) {
  Parport parport;
  parport.kernel.devices["/dev/parport0"].hasPrinterDriver = true;
  EXPECT_THROW(parport.take(), PortError);
  parport.port.reset();
  EXPECT_TRUE(parport.lines.events.empty()) << "the printer's lines were moved";
}

TEST(ParportDevice, isUnavailableOnceItHasVanished) {
  Parport parport;
  parport.takeAnew();
  for (const char* call : {"data", "control", "status"}) {
    parport.kernel.failures[call] = {ENODEV, ENODEV};
  }
  EXPECT_FALSE(parport.port->isGone());
  const auto expectGone = [](const auto& access) {
    try {
      access();
      ADD_FAILURE() << "no error";
    } catch (const RuntimeError& error) {
      EXPECT_EQ(error.number(), 68);
      EXPECT_STREQ(error.what(), "Device unavailable: /dev/parport0 (No such device)");
    }
  };
  expectGone([&] { parport.port->PortOut(0x378, 1); });
  expectGone([&] { parport.port->PortOut(0x37A, 1); });
  expectGone([&] { static_cast<void>(parport.port->PortIn(0x379)); });
  EXPECT_TRUE(parport.port->isGone());
  EXPECT_FALSE(parport.port->switchOff());
  parport.port.reset();
  EXPECT_EQ(parport.kernel.calls.back(), "close");
}

TEST(ParportDevice, thatVanishesDuringTheClaimIsNotTaken) {
  Parport parport;
  parport.kernel.failures["control"] = {0, 0, EIO};
  EXPECT_THROW(parport.take(), RuntimeError);
}

class TakenBoard : public testing::TestWithParam<sim::Model> {};

TEST_P(TakenBoard, hasItsVoltageOffWhateverWasOnBefore) {
  sim::Bench bench;
  sim::SimulatedPort lines(bench);
  sim::Board& board = bench.plug(GetParam(), 0x3BC);
  test::StandInKernel kernel;
  kernel.devices["/dev/parport2"] = {.lines = &lines, .base = 0x3BC};
  ParportDevice port(kernel, "/dev/parport2", 0x378);
  port.take();
  // Every switch of latch 0 on, and its strobe left standing, by the codes of the model.
  port.PortOut(0x378, 0xBF);
  port.PortOut(0x37A, GetParam() == sim::Model::kestrel4 ? 0x0B : 0x04);
  ASSERT_EQ(board.latch(0), 0xBF);
  ASSERT_NE(board.vppPins(), 0U);
  EXPECT_TRUE(port.switchOff());
  EXPECT_EQ(board.latch(0), 0x40);
  EXPECT_EQ(board.vppPins(), 0U);
  port.PortOut(0x378, 0xFF);
  for (std::size_t latch = 0; latch < 5; ++latch) {
    EXPECT_NE(board.latch(latch), 0xFF) << "latch " << latch << " was left open";
  }
}

INSTANTIATE_TEST_SUITE_P(Models, TakenBoard,
                         testing::Values(sim::Model::kestrel4, sim::Model::kestrel5,
                                         sim::Model::kestrel6));

}  // namespace
}  // namespace kestrel
