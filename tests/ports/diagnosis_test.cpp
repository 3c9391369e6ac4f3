#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "hardware/ports/port_choice.h"
#include "hardware/ports/port_diagnosis.h"

namespace kestrel {
namespace {

const std::string kPort = "Port 378h (/dev/parport0): ";

PortSurvey surveyOf(std::optional<PortProblem> problem, const std::string& holder = {}) {
  PortSurvey survey;
  survey.listed = {{.name = "parport0", .base = 0x378, .drivers = {}}};
  survey.findings = {{.base = 0x378,
                      .device = "/dev/parport0",
                      .isDirect = false,
                      .problem = problem,
                      .reason = {},
                      .holder = holder}};
  return survey;
}

TEST(Diagnosis, namesWhatIsInTheWayAndTheOneCure) {
  PortSurvey noPort;
  noPort.isPortDriverLoaded = true;
  PortSurvey printer = surveyOf(PortProblem::Taken, "kestrel, process 4711");
  printer.listed[0].drivers = {"lp", "ppdev0"};
  PortSurvey direct = surveyOf(PortProblem::NotPermitted);
  direct.findings[0].device = "0xD010";
  PortSurvey lockedDown = direct;
  lockedDown.isLockedDown = true;
  PortSurvey elsewhere = surveyOf(std::nullopt);
  elsewhere.listed.push_back({.name = "parport1", .base = 0xD010, .drivers = {}});
  const std::pair<PortSurvey, std::string> cases[]{
      {PortSurvey(),
       "No parallel port: the driver parport_pc is not loaded. Cure: sudo modprobe "
       "-a parport_pc ppdev"},
      {elsewhere,
       "parport1 is at D010h, which is none of 378h, 278h and 3BCh. Cure: --port "
       "278=/dev/parport1"},
      {noPort, "is loaded and finds none"},
      {surveyOf(PortProblem::NoDevice), kPort + "the driver ppdev, which makes the device file, is "
                                                "not loaded. Cure: sudo modprobe ppdev"},
      {surveyOf(PortProblem::NoPermission), kPort + "no permission to use it. Cure: sudo usermod "
                                                    "-a -G lp $USER, then log in again"},
      {surveyOf(PortProblem::Taken, "kestrel, process 4711"),
       kPort + "another program has it (kestrel, process 4711). Cure: end that program"},
      {printer, kPort + "the printer driver has it. Cure: sudo modprobe -r lp"},
      {direct, "direct access is for root alone"},
      {lockedDown,
       "Port 378h (0xD010): the kernel is locked down and forbids direct access. Cure: "
       "have a driver, sudo modprobe parport_pc io=0xD010 irq=none, and use its device "
       "file, --port BASE=/dev/parportN"}};
  for (const auto& [survey, text] : cases) {
    EXPECT_THAT(diagnose(survey).back(), testing::HasSubstr(text));
  }
}

TEST(PortChoice, takesADeviceFileOrAnAddressAndNothingElse) {
  EXPECT_EQ(parsePortChoice("3bc=/dev/parport1").base, 0x3BC);
  EXPECT_EQ(parsePortChoice("378=parport2").device, "/dev/parport2");
  EXPECT_EQ(parsePortChoice("278=0xD010").address, 0xD010);
  for (const char* text : {"378", "379=/dev/parport0", "=/dev/parport0", "1378=parport0",
                           "378=LPT1", "378=0x", "378=0x60", "378=0xFFFD", "378=0xD01G"}) {
    EXPECT_THROW(static_cast<void>(parsePortChoice(text)), std::invalid_argument) << text;
  }
}

}  // namespace
}  // namespace kestrel
