#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "hardware/ports/port_choice.h"
#include "hardware/ports/port_diagnosis.h"

namespace kestrel {
namespace {

using testing::ElementsAre;

struct Diagnosis : testing::Test {
  PortFinding& found(std::optional<PortProblem> problem) {
    survey.listed = {{.name = "parport0", .base = 0x378, .drivers = {}}};
    survey.findings.resize(1);
    survey.findings[0].base = 0x378;
    survey.findings[0].device = "/dev/parport0";
    survey.findings[0].problem = problem;
    return survey.findings[0];
  }
  PortSurvey survey;
};

TEST_F(Diagnosis, tellsAMachineWithoutAPortFromOneWithoutADriver) {
  EXPECT_THAT(diagnose(survey),
              ElementsAre("No parallel port: the driver parport_pc is not loaded. Cure: sudo "
                          "modprobe -a parport_pc ppdev"));
  survey.isPortDriverLoaded = true;
  EXPECT_THAT(diagnose(survey), ElementsAre(testing::HasSubstr("is loaded and finds none")));
  found(PortProblem::NoDevice);
  EXPECT_THAT(diagnose(survey),
              ElementsAre("Port 378h (/dev/parport0): the driver ppdev, which makes the device "
                          "file, is not loaded. Cure: sudo modprobe ppdev"));
}

TEST_F(Diagnosis, namesWhatKeepsThePortFromThisUser) {
  found(PortProblem::NoPermission);
  EXPECT_THAT(diagnose(survey),
              ElementsAre("Port 378h (/dev/parport0): no permission to use it. Cure: sudo usermod "
                          "-a -G lp $USER, then log in again"));
  found(PortProblem::Taken).holder = "kestrel, process 4711";
  EXPECT_THAT(diagnose(survey),
              ElementsAre("Port 378h (/dev/parport0): another program has it (kestrel, process "
                          "4711). Cure: end that program"));
  survey.listed[0].drivers = {"lp", "ppdev0"};
  EXPECT_THAT(diagnose(survey),
              ElementsAre("Port 378h (/dev/parport0): the printer driver has it. Cure: sudo "
                          "modprobe -r lp"));
}

TEST_F(Diagnosis, tellsALockedDownKernelFromAnOrdinaryUser) {
  found(PortProblem::NotPermitted).device = "0xD010";
  EXPECT_THAT(diagnose(survey)[0], testing::HasSubstr("direct access is for root alone"));
  survey.isLockedDown = true;
  EXPECT_EQ(diagnose(survey)[0],
            "Port 378h (0xD010): the kernel is locked down and forbids direct access. Cure: have a "
            "driver, sudo modprobe parport_pc io=0xD010 irq=none, and use its device file, --port "
            "BASE=/dev/parportN");
}

TEST_F(Diagnosis, givesAPortFromElsewhereTheFirstFreeBase) {
  found(std::nullopt);
  survey.listed.push_back({.name = "parport1", .base = 0xD010, .drivers = {}});
  EXPECT_THAT(diagnose(survey),
              ElementsAre("Port 378h (/dev/parport0): the port works, but no board answers. Check "
                          "the board's cable and power, and that its socket is empty",
                          "parport1 is at D010h, which is none of 378h, 278h and 3BCh. Cure: "
                          "--port 278=/dev/parport1"));
}

TEST(PortChoice, takesADeviceFileOrAnAddressAndNothingElse) {
  EXPECT_EQ(parsePortChoice("3bc=/dev/parport1").base, 0x3BC);
  EXPECT_EQ(parsePortChoice("378=parport2").device, "/dev/parport2");
  EXPECT_EQ(parsePortChoice("278=0xD010").address, 0xD010);
  EXPECT_TRUE(parsePortChoice("278=0xD010").isDirect());
  for (const char* text : {"378", "379=/dev/parport0", "=/dev/parport0", "1378=parport0",
                           "378=LPT1", "378=0x", "378=0x60", "378=0xFFFD", "378=0xD01G"}) {
    EXPECT_THROW(static_cast<void>(parsePortChoice(text)), std::invalid_argument) << text;
  }
}

}  // namespace
}  // namespace kestrel
