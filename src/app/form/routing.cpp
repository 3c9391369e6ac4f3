#include "app/form/units.h"

namespace kestrel {

void frmMain::Units::connectAll() {
  connectButtons();
  connectMenus();
  connectHardwareMenu();
  connectValues();
  connectToolbar();
}

void frmMain::Units::connectButtons() {
  Controls& c = controls;
  onPress(c.Read_button, read, &ReadDevice::Read_button_Click);
  onPress(c.Blank_button, blank, &BlankCheck::Blank_button_Click);
  onPress(c.Verify_button, verify, &Verify::Verify_button_Click);
  onPress(c.Program_button, program, &ProgramCommand::Program_button_Click);
  onPress(c.EraseFlash_button, erase, &EraseChip::EraseFlash_button_Click);
  onPress(c.Display_button, deviceDisplay, &DeviceDisplay::Display_button_Click);
  onPress(c.Erase_button, files, &BufferFiles::Erase_button_Click);
  onPress(c.Show_button, memoryDisplay, &MemoryDisplay::Show_button_Click);
  onPress(c.Command1, memoryDisplay, &MemoryDisplay::Command1_Click);
  onPress(c.Error_label, alert, &ErrorAlert::Error_label_Click);
  onPress(c.BufferDisplay_DblClick, exports, &Exports::BufferDisplay_DblClick);
  onPress(c.SystemLog_DblClick, exports, &Exports::SystemLog_DblClick);
}

// A menu entry carries no logic of its own: it runs its button's handler.
void frmMain::Units::connectMenus() {
  Controls& c = controls;
  onPress(c.mnuFileOpenCode, files, &BufferFiles::mnuFileOpenCode_Click);
  onPress(c.mnuFileOpenData, files, &BufferFiles::mnuFileOpenData_Click);
  onPress(c.mnuFileSaveCode, files, &BufferFiles::mnuFileSaveCode_Click);
  onPress(c.mnuFileSaveCodeAs, files, &BufferFiles::mnuFileSaveCodeAs_Click);
  onPress(c.mnuFileSaveData, files, &BufferFiles::mnuFileSaveData_Click);
  onPress(c.mnuFileSaveDataAs, files, &BufferFiles::mnuFileSaveDataAs_Click);
  onPress(c.mnuFileClose, files, &BufferFiles::mnuFileClose_Click);
  // No command: the window closes when no command runs.
  c.mnuFileExit.onPress([this] { machine.screen.closeMainWindow(); });
  for (Button* const entry : {&c.menuReadCode, &c.menuReadData}) {
    onPress(*entry, read, &ReadDevice::Read_button_Click);
  }
  for (Button* const entry : {&c.menuVerifyCode, &c.menuVerifyData}) {
    onPress(*entry, verify, &Verify::Verify_button_Click);
  }
  for (Button* const entry : {&c.menuProgramCode, &c.menuProgramData}) {
    onPress(*entry, program, &ProgramCommand::Program_button_Click);
  }
  for (Button* const entry : {&c.menuEraseCode, &c.menuEraseData}) {
    onPress(*entry, files, &BufferFiles::Erase_button_Click);
  }
  for (Button* const entry : {&c.menuDisplayCode, &c.menuDisplayData}) {
    onPress(*entry, deviceDisplay, &DeviceDisplay::Display_button_Click);
  }
  onPress(c.menuBlankCheck, blank, &BlankCheck::Blank_button_Click);
  onPress(c.menuEraseFlash, erase, &EraseChip::EraseFlash_button_Click);
  onPress(c.mnuHelpContents, help, &HelpCommands::mnuHelpContents_Click);
  onPress(c.mnuHelpSearchForHelpOn, help, &HelpCommands::mnuHelpSearchForHelpOn_Click);
  onPress(c.mnuHelpAbout, help, &HelpCommands::mnuHelpAbout_Click);
  onPress(c.mnuToolsOptions, help, &HelpCommands::mnuToolsOptions_Click);
}

void frmMain::Units::connectHardwareMenu() {
  Controls& c = controls;
  for (Button* const test : {&c.TestHardware_button, &c.menuTestHardware}) {
    test->onPress([this] { boundary.run([this] { testHardware(); }); });
  }
  onPress(c.ForceKestrel4, detection, &BoardDetection::ForceKestrel4);
  onPress(c.ForceKestrel5, detection, &BoardDetection::ForceKestrel5);
  onPress(c.ForceKestrel6, detection, &BoardDetection::ForceKestrel6);
  onPress(c.menuFlashShowCodeID, flashIdentification,
          &FlashIdentification::menuFlashShowCodeID_Click);
  onPress(c.ResetFlash, flashIdentification, &FlashIdentification::ResetFlash_Click);
  onPress(c.LoopFlashTest, flashProgrammer, &FlashProgrammer::LoopFlashTest_Click);
  onPress(c.Setup, setups, &NamedSetups::Setup_Click);
  for (std::size_t slot = 1; slot <= c.LoadSetup.size(); ++slot) {
    c.LoadSetup[slot - 1].onPress(
        [this, slot] { boundary.run([&] { setups.LoadSetup_Click(slot); }); });
    c.SaveSetup[slot - 1].onPress(
        [this, slot] { boundary.run([&] { setups.SaveSetup_Click(slot); }); });
  }
}

void frmMain::Units::connectValues() {
  Controls& c = controls;
  c.Device.onClick([this] { boundary.run([this] { devices.Device_Click(); }); });
  c.Slider1.onChange([this] { boundary.run([this] { devices.Slider1_Change(); }); });
  c.VScroll1.onChange([this] { boundary.run([this] { VScroll1_Change(); }); });
  for (std::size_t i = 0; i < c.Voltage_button.size(); ++i) {
    c.Voltage_button[i].onClick(
        [this, i] { boundary.run([&] { devices.Voltage_button_Click(i); }); });
  }
  for (OptionButton& button : c.LPTSelection) {
    button.onClick([this] { boundary.run([this] { detection.LPTSelection_Click(); }); });
  }
}

void frmMain::Units::testHardware() {
  care().takeMissing();
  detection.TestHardware_button_Click();
  tellDiagnosis();
}

void frmMain::Units::VScroll1_Change() {
  if (state.DisplayMode == "Read") memoryDisplay.DisplayPageMemory();
  if (state.DisplayMode == "DisplayEprom") deviceDisplay.DisplayEprom();
}

void frmMain::Units::connectToolbar() {
  for (ToolButton& button : controls.tbToolBar) {
    button.onPress([this, &button] { tbToolBar_ButtonClick(button.key()); });
  }
}

void frmMain::Units::tbToolBar_ButtonClick(const std::string& key) {
  const auto run = [this](void (BufferFiles::*handler)()) {
    boundary.run([&] { (files.*handler)(); });
  };
  if (key == "OpenCode") run(&BufferFiles::mnuFileOpenCode_Click);
  if (key == "OpenData") run(&BufferFiles::mnuFileOpenData_Click);
  if (key == "SaveCode") run(&BufferFiles::mnuFileSaveCode_Click);
  if (key == "SaveData") run(&BufferFiles::mnuFileSaveData_Click);
}

}  // namespace kestrel
