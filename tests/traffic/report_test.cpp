// The failure reports, letter for letter, and what they do to the board and the buttons.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/unit_rig.h"

namespace kestrel::test {
namespace {

using testing::ElementsAre;

constexpr const char* kAsterisks = "**************************************************";

TEST(FailureReports, tellAByteThatDoesNotProgram) {
  UnitRig rig;
  rig.start(0, 0);
  rig.state.LinearAddress = 0x1A0;
  rig.state.ByteToWrite = 0x0F;
  rig.state.ReadByte = 0xFF;
  rig.reports.ProgramFailureReport();
  EXPECT_THAT(rig.log(),
              ElementsAre("*** Programming Failure ***",
                          "*** Address:1A0h, Programming BYTE:Fh, Read BYTE:FFh",
                          "*** Aborting Programming - Click on [ERROR] Indicator to Reset"));
  // The voltages go first; the alert turns the board's lamp off and the report on again.
  EXPECT_EQ(rig.traffic(), "0=00 3=C0 0=40 0=40 0=48");
  EXPECT_EQ(rig.state.ProgramFailed, 1);
  EXPECT_EQ(rig.controls.Program_label.colour(), Colour::Green);
  EXPECT_THAT(rig.sounds.played, ElementsAre("error.wav"));
}

TEST(FailureReports, tellAMismatchWithTheByteOfTheCodeBuffer) {
  UnitRig rig;
  rig.start(0, 0);
  rig.controls.Verify_button.setColour(Colour::Highlight);
  rig.state.ProgramIndex = 0x2A;
  rig.state.CodeBuffer[0x2A] = 0x55;
  rig.state.ProgramBuffer[0x2A] = 0x66;
  rig.state.ReadByte = 0xAA;
  rig.reports.VerifyMismatchReport();
  EXPECT_THAT(rig.log(),
              ElementsAre(kAsterisks, "Device Memory DOES NOT VERIFY with Buffer Contents",
                          "Address: 2A ][ Buffer Data: 55 ][ Device Data: AA",
                          "Click on [ERROR] Alert to Reset the Situation"));
  EXPECT_EQ(rig.state.VerifyFailed, 1);
  EXPECT_EQ(rig.controls.Verify_button.colour(), Colour::ButtonFace);
  EXPECT_EQ(rig.traffic(), "0=40 0=40 1=00 2=00 3=C4");
}

TEST(FailureReports, tellASerialChipThatDoesNotAnswer) {
  UnitRig rig;
  rig.reports.AckErrorReport();
  EXPECT_THAT(rig.log(), ElementsAre(kAsterisks, "Device 24CXX DOES NOT RESPOND - ACK Error",
                                     "Check Chip Installation Position on Socket",
                                     "Click on [ERROR] Alert to Reset the Situation"));
  EXPECT_THAT(rig.sounds.played, ElementsAre("error.wav"));
}

TEST(ErrorAlert, locksFourButtonsAndGivesThemBackAsTheyWere) {
  UnitRig rig;
  Controls& c = rig.controls;
  rig.buttons.enable(c.Read_button);
  rig.buttons.enable(c.Display_button);
  rig.alert.RaiseErrorAlert();
  rig.alert.RaiseErrorAlert();  // a second one saves nothing
  EXPECT_FALSE(c.Read_button.enabled() || c.Display_button.enabled());
  EXPECT_THAT(rig.state.SavedButtonState, ElementsAre("False", "False", "True", "True"));
  c.ProgressBar1.setValue(7);
  rig.start(0, 0);
  rig.alert.Error_label_Click();
  EXPECT_TRUE(c.Read_button.enabled() && c.Display_button.enabled());
  EXPECT_FALSE(c.Program_button.enabled() || c.Verify_button.enabled());
  EXPECT_EQ(c.ProgressBar1.value(), 0);
  EXPECT_EQ(rig.traffic(), "0=40 0=40 1=00 2=00 3=C4");
  rig.alert.Error_label_Click();  // not red: nothing
  EXPECT_THAT(rig.log(), ElementsAre("Error Alert was Turned Off"));
}

}  // namespace
}  // namespace kestrel::test
