// What the controls do by themselves, and the state in which the form starts.

#include "app/state/controls.h"

#include <gtest/gtest.h>

#include "hardware/error_alert.h"
#include "platform/runtime_error.h"
#include "support/control_names.h"

namespace kestrel {
namespace {

TEST(Buttons, ofAGroupGoOffBeforeTheHandlerRunsAndDisabledOnesCannotBePressed) {
  Controls c;
  int runs = 0;
  c.Voltage_button[2].onClick([&] {
    ++runs;
    EXPECT_FALSE(c.Voltage_button[1].value());
  });
  c.Voltage_button[1].setValue(true);
  for (const bool value : {true, true, false}) c.Voltage_button[2].setValue(value);
  EXPECT_FALSE(c.Voltage_button[2].value());
  EXPECT_EQ(runs, 1);
  c.HiLow_button[0].setValue(false);
  EXPECT_TRUE(c.HiLow_button[0].value()) << "one lane is always set";
  runs = 0;
  c.Read_button.onPress([&] { ++runs; });
  EXPECT_FALSE(c.Read_button.press());
  EXPECT_FALSE(c.Voltage_button[1].press());
  EXPECT_FALSE(c.Voltage_button[1].value());
  c.Read_button.setEnabled(true);
  EXPECT_TRUE(c.Read_button.press());
  EXPECT_EQ(runs, 1);
  c.VerifyAfterProgramming.setValue(2);
  EXPECT_TRUE(c.VerifyAfterProgramming.press());
  EXPECT_EQ(c.VerifyAfterProgramming.value(), 1) << "a greyed box is not ticked";
}

TEST(RangesAndList, runTheirHandlersForANewValueAloneAndAtEverySetting) {
  Controls c;
  std::vector<int> seen;
  c.VScroll1.onChange([&] { seen.push_back(c.VScroll1.value()); });
  c.VScroll1.setMaximum(127);
  for (const int value : {0, 100, 100, 999, -5, 9}) c.VScroll1.setValue(value);
  c.VScroll1.setMaximum(-1);
  EXPECT_EQ(seen, (std::vector<int>{100, 127, 0, 9, 0}));
  for (const char* const item : {"zero", "one", "two"}) c.Device.addItem(item);
  seen.clear();
  c.Device.onClick([&] {
    seen.push_back(c.Device.position());
    if (c.Device.position() == 1) c.Device.setPosition(-1);
  });
  for (const int position : {2, 2, 1, -1}) c.Device.setPosition(position);
  EXPECT_EQ(seen, (std::vector<int>{2, 2, 1, -1}));
  EXPECT_THROW(c.Device.setPosition(3), RuntimeError);
}

TEST(FormAtStart, whatAProcedureEnablesIsDisabledAndWhatOneShowsIsHidden) {
  Controls c;
  EXPECT_EQ(test::namesOf(c, [](const Control& control) { return !control.enabled(); }),
            "Voltage_button(0) Voltage_button(1) Voltage_button(2) Voltage_button(3) CheckCode "
            "CheckData Read_button Blank_button Verify_button Program_button EraseFlash_button "
            "Display_button Erase_button Show_button tbToolBar(2) tbToolBar(4) tbToolBar(5) "
            "mnuFileOpenData mnuFileSaveCode mnuFileSaveCodeAs mnuFileSaveData mnuFileSaveDataAs "
            "menuReadCode menuBlankCheck menuVerifyCode menuProgramCode menuEraseCode "
            "menuDisplayCode menuReadData menuVerifyData menuProgramData menuEraseData "
            "menuDisplayData menuEraseFlash menuFlashShowCodeID LoadSetup1 LoadSetup2 LoadSetup3 "
            "LoadSetup4");
  EXPECT_EQ(test::namesOf(c, [](const Control& control) { return !control.visible(); }),
            "Frame5 FrameVoltageSelection CheckBlankPriorProgramming VerifyAfterProgramming "
            "frmDisplay1 FileNameDataLabel FileNameDataSize FileNameDataText tbToolBar(3) "
            "tbToolBar(4) tbToolBar(5)");
  EXPECT_EQ(c.Slider1.value(), 18);
}

}  // namespace
}  // namespace kestrel
