#include "hardware/ports/port_diagnosis.h"

#include <gtest/gtest.h>

namespace kestrel {
namespace {

const ListedPort kAt378{.name = "parport0", .base = 0x378, .drivers = {}};

PortSurvey surveyOf(std::optional<PortProblem> problem) {
  PortSurvey survey;
  survey.listed = {kAt378};
  survey.findings = {{.base = 0x378,
                      .device = "/dev/parport0",
                      .isDirect = false,
                      .problem = problem,
                      .reason = "reason",
                      .holder = {}}};
  survey.isPortDriverLoaded = survey.isUserDriverLoaded = true;
  return survey;
}

std::string onlyLineOf(const PortSurvey& survey) {
  const std::vector<std::string> lines = diagnose(survey);
  EXPECT_EQ(lines.size(), 1U);
  return lines.front();
}

TEST(PortDiagnosis, tellsAMachineWithoutAPortFromOneWithoutTheDriver) {
  PortSurvey survey;
  EXPECT_EQ(onlyLineOf(survey),
            "No parallel port: the driver parport_pc is not loaded. Cure: sudo modprobe -a "
            "parport_pc ppdev");
  survey.isPortDriverLoaded = true;
  EXPECT_EQ(onlyLineOf(survey),
            "No parallel port: the driver parport_pc is loaded and finds none. Switch the port on "
            "in the machine's set-up, or fit a card. Cure for a card with serial ports too: sudo "
            "modprobe parport_serial");
}

TEST(PortDiagnosis, namesTheCureForEveryProblem) {
  EXPECT_EQ(onlyLineOf(surveyOf(std::nullopt)),
            "Port 378h (/dev/parport0): the port works, but no board answers. Check the board's "
            "cable and power, and that its socket is empty");
  EXPECT_EQ(
      onlyLineOf(surveyOf(PortProblem::NoPermission)),
      "Port 378h (/dev/parport0): no permission to use it. Cure: sudo usermod -a -G lp $USER, "
      "then log in again");
  PortSurvey survey = surveyOf(PortProblem::NoDevice);
  survey.isUserDriverLoaded = false;
  EXPECT_EQ(onlyLineOf(survey),
            "Port 378h (/dev/parport0): the driver ppdev, which makes the device file, is not "
            "loaded. Cure: sudo modprobe ppdev");
  EXPECT_EQ(onlyLineOf(surveyOf(PortProblem::Other)), "Port 378h (/dev/parport0): reason");
}

TEST(PortDiagnosis, saysWhoHasThePort) {
  PortSurvey survey = surveyOf(PortProblem::Taken);
  EXPECT_EQ(onlyLineOf(survey),
            "Port 378h (/dev/parport0): another program has it. Cure: end that program; sudo fuser "
            "-v /dev/parport0 names it");
  survey.findings[0].holder = "kestrel, process 4711";
  EXPECT_EQ(onlyLineOf(survey),
            "Port 378h (/dev/parport0): another program has it (kestrel, process 4711). Cure: end "
            "that program");
  survey.listed[0].drivers = {"lp", "ppdev0"};
  EXPECT_EQ(onlyLineOf(survey),
            "Port 378h (/dev/parport0): the printer driver has it. Cure: sudo modprobe -r lp");
}

TEST(PortDiagnosis, tellsALockedDownKernelFromAnOrdinaryUser) {
  PortSurvey survey = surveyOf(PortProblem::NotPermitted);
  survey.findings[0].device = "0xD010";
  survey.findings[0].isDirect = true;
  const std::string cure =
      ". Cure: have a driver, sudo modprobe parport_pc io=0xD010 irq=none, and use its device "
      "file, --port BASE=/dev/parportN";
  EXPECT_EQ(onlyLineOf(survey), "Port 378h (0xD010): direct access is for root alone" + cure);
  survey.isLockedDown = true;
  EXPECT_EQ(onlyLineOf(survey),
            "Port 378h (0xD010): the kernel is locked down and forbids direct access" + cure);
}

TEST(PortDiagnosis, givesAPortFromElsewhereTheFirstFreeBase) {
  PortSurvey survey = surveyOf(std::nullopt);
  survey.listed.push_back({.name = "parport1", .base = 0xD010, .drivers = {}});
  const std::vector<std::string> lines = diagnose(survey);
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[1],
            "parport1 is at D010h, which is none of 378h, 278h and 3BCh. Cure: --port "
            "278=/dev/parport1");
  survey.findings[0].device = "/dev/parport1";  // already chosen
  EXPECT_EQ(diagnose(survey).size(), 1U);
}

}  // namespace
}  // namespace kestrel
