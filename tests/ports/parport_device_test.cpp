#include "hardware/ports/parport_device.h"

#include <gtest/gtest.h>

#include <optional>

#include "hardware/ports/io_ports.h"
#include "ports/scripted_machine.h"
#include "support/stand_in_kernel.h"
#include "support/temporary_folder.h"

namespace kestrel {
namespace {

using test::Events;

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
  PortProblem problemOf(const std::function<void()>& action) {
    try {
      action();
    } catch (const PortError& error) {
      return error.problem();
    }
    ADD_FAILURE() << "no error";
    return {};
  }

  test::ScriptedMachine lines;
  test::StandInKernel kernel;
  std::optional<ParportDevice> port;
};

TEST_F(Parport, isSwitchedOffFirstAndLast) {
  take();
  port->PortOut(0x378, 0x5A);
  port->PortOut(0x37A, 0xF7);
  port->PortOut(0x379, 0x11);  // the status register cannot be written
  EXPECT_EQ(port->PortIn(0x379), 0x78);
  EXPECT_EQ(port->PortIn(0x378), 0xFF);
  port.reset();
  EXPECT_EQ(kernel.calls, (Events{"open /dev/parport0",
                                  "PPEXCL",
                                  "PPCLAIM",
                                  "data 40",
                                  "control 05",
                                  "control 04",
                                  "control 05",
                                  "control 0A",
                                  "control 0B",
                                  "control 0A",  //
                                  "data 5A",
                                  "control 07",
                                  "status",  //
                                  "data 40",
                                  "control 05",
                                  "control 04",
                                  "control 05",
                                  "control 0A",
                                  "control 0B",
                                  "control 0A",
                                  "PPRELEASE",
                                  "close"}));
}

TEST_F(Parport, repeatsWhatASignalInterrupted) {
  for (const char* call : {"open", "PPEXCL", "PPCLAIM", "data", "control", "status"}) {
    kernel.failures[call] = {EINTR, EINTR};
  }
  take();
  EXPECT_EQ(port->PortIn(0x379), 0x78);
  EXPECT_EQ(lines.events.size(), 9U) << "0Ch, the seven writes that switch off, the read";
}

struct Refusal {
  const char* call;
  int error;
  PortProblem problem;
};

class ParportRefused : public Parport, public testing::WithParamInterface<Refusal> {};

TEST_P(ParportRefused, saysWhyAndTouchesNothing) {
  kernel.failures[GetParam().call] = {GetParam().error};
  EXPECT_EQ(problemOf([this] { take(); }), GetParam().problem);
  port.reset();
  EXPECT_TRUE(lines.events.empty());
  EXPECT_EQ(kernel.calls.back(), kernel.calls.size() == 1 ? "open /dev/parport0" : "close");
}

INSTANTIATE_TEST_SUITE_P(EveryCall, ParportRefused,
                         testing::Values(Refusal{"open", ENOENT, PortProblem::NoDevice},
                                         Refusal{"open", EACCES, PortProblem::NoPermission},
                                         Refusal{"open", ENXIO, PortProblem::NoHardware},
                                         Refusal{"PPEXCL", ENOTTY, PortProblem::NotAPort},
                                         Refusal{"PPCLAIM", ENXIO, PortProblem::Taken},
                                         Refusal{"PPCLAIM", ENOMEM, PortProblem::Other}));

TEST_F(Parport, isUnavailableOnceItHasVanished) {
  take();
  EXPECT_FALSE(port->isGone());
  for (const char* call : {"data", "control", "status"}) kernel.failures[call] = {ENODEV};
  EXPECT_THROW(port->PortOut(0x37A, 1), RuntimeError);
  EXPECT_THROW(static_cast<void>(port->PortIn(0x379)), RuntimeError);
  try {
    port->PortOut(0x378, 1);
    FAIL() << "no error";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.number(), 68);
    EXPECT_STREQ(error.what(), "Device unavailable: /dev/parport0 (No such device)");
  }
  EXPECT_TRUE(port->isGone());
}

TEST_F(Parport, thatVanishesDuringTheClaimIsNotTaken) {
  kernel.failures["control"] = {0, 0, EIO};
  EXPECT_THROW(take(), RuntimeError);
}

TEST_F(Parport, reachedDirectlyIsForOneProgramWithPermission) {
  const test::TemporaryFolder locks;
  const auto open = [&](std::uint16_t address) {
    return IoPorts(kernel, address, 0x378, locks.path().string());
  };
  {
    IoPorts direct = open(0xD010);
    direct.take();
    EXPECT_EQ(problemOf([&] { open(0xD010); }), PortProblem::Taken);
    direct.PortOut(0x378, 0x5A);
    direct.PortOut(0x37A, 0xF7);  // bits 4 and 5 are no lines
    EXPECT_EQ(direct.PortIn(0x379), 0x78);
  }
  EXPECT_EQ(kernel.calls,
            (Events{"permit D010", "outb D010 40", "outb D012 05", "outb D012 04", "outb D012 05",
                    "outb D012 0A", "outb D012 0B", "outb D012 0A",  //
                    "outb D010 5A", "outb D012 07", "inb D011",      //
                    "outb D010 40", "outb D012 05", "outb D012 04", "outb D012 05", "outb D012 0A",
                    "outb D012 0B", "outb D012 0A", "forbid D010"}));
  EXPECT_EQ(problemOf([&] { open(0x60); }), PortProblem::NotAPort);
  kernel.isIoPermitted = false;
  EXPECT_EQ(problemOf([&] { open(0xD010); }), PortProblem::NotPermitted);
}

}  // namespace
}  // namespace kestrel
