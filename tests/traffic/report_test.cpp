// The failure reports and what they do to the board; the controls under an alert.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/unit_rig.h"

namespace kestrel::test {
namespace {

TEST(FailureReports, bringTheBoardToItsRestAndTellTheLastByte) {
  struct Case {
    void (operations::FailureReports::*report)();
    const char* byte;     ///< the line of the log that names it
    const char* traffic;  ///< when programming failed the voltages go first; the alert turns the
                          ///< board's lamp off, the report on again
    int programFailed, verifyFailed;
  };
  // clang-format off
  const Case cases[]{
      {&operations::FailureReports::ProgramFailureReport,
       "*** Address:1A0h, Programming BYTE:Fh, Read BYTE:AAh", "0=00 3=C0 0=40 0=40 0=48", 1, 0},
      {&operations::FailureReports::VerifyMismatchReport,
       "Address: 2A ][ Buffer Data: 55 ][ Device Data: AA", "0=40 0=40 1=00 2=00 3=C4", 0, 1},
      {&operations::FailureReports::AckErrorReport,
       "Device 24CXX DOES NOT RESPOND - ACK Error", "0=40 0=40 1=00 2=00 3=C4", 0, 0},
  };
  // clang-format on
  for (const Case& c : cases) {
    UnitRig rig;
    rig.start(0, 0);
    rig.state.LinearAddress = 0x1A0;
    rig.state.ByteToWrite = 0x0F;
    rig.state.ReadByte = 0xAA;
    rig.state.ProgramIndex = 0x2A;
    rig.state.CodeBuffer[0x2A] = 0x55;
    rig.state.ProgramBuffer[0x2A] = 0x66;
    (rig.reports.*c.report)();
    EXPECT_THAT(rig.log(), testing::Contains(c.byte));
    EXPECT_EQ(rig.traffic(), c.traffic);
    EXPECT_EQ(rig.state.ProgramFailed, c.programFailed);
    EXPECT_EQ(rig.state.VerifyFailed, c.verifyFailed);
  }
}

TEST(AlertLock, givesBackTheRecordAndWhatAProcedureEnabledMeanwhile) {
  UnitRig rig;
  Controls& c = rig.controls;
  rig.alert.enable(c.Program_button);
  rig.alert.enable(c.Read_button);
  rig.alert.RaiseErrorAlert();
  EXPECT_EQ(rig.state.SavedButtonState,
            (std::array<std::string, 4>{"True", "False", "True", "False"}));
  rig.alert.RaiseErrorAlert();
  rig.alert.enable(c.Display_button);
  rig.alert.setEnabled(c.Read_button, false);
  EXPECT_EQ(enabledOf(c, "Program_button Verify_button Read_button Display_button"), "");
  rig.alert.unlock();
  EXPECT_EQ(enabledOf(c, "Program_button Verify_button Read_button Display_button"),
            "Program_button Display_button");
}

}  // namespace
}  // namespace kestrel::test
