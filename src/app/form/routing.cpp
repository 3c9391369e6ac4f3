#include "app/form/units.h"

namespace kestrel::form {

void frmMain::Units::connectAll() {
  connectButtons();
  connectMenus();
  connectHardwareMenu();
  connectValues();
  connectToolbar();
}

void frmMain::Units::connectButtons() {
  Controls& c = controls;
  onPress(c.Read_button, read, &operations::ReadDevice::Read_button_Click);
  onPress(c.Blank_button, blank, &operations::BlankCheck::Blank_button_Click);
  onPress(c.Verify_button, verify, &operations::Verify::Verify_button_Click);
  onPress(c.Program_button, program, &operations::ProgramCommand::Program_button_Click);
  onPress(c.EraseFlash_button, erase, &operations::EraseChip::EraseFlash_button_Click);
  onPress(c.Display_button, deviceDisplay, &display::DeviceDisplay::Display_button_Click);
  onPress(c.Erase_button, files, &buffers::BufferFiles::Erase_button_Click);
  onPress(c.Show_button, memoryDisplay, &display::MemoryDisplay::Show_button_Click);
  onPress(c.Command1, memoryDisplay, &display::MemoryDisplay::Command1_Click);
  onPress(c.Error_label, alert, &hardware::ErrorAlert::Error_label_Click);
  onPress(c.BufferDisplay_DblClick, exports, &display::Exports::BufferDisplay_DblClick);
  onPress(c.SystemLog_DblClick, exports, &display::Exports::SystemLog_DblClick);
}

// A menu entry carries no logic of its own: it runs its button's handler.
void frmMain::Units::connectMenus() {
  Controls& c = controls;
  onPress(c.mnuFileOpenCode, files, &buffers::BufferFiles::mnuFileOpenCode_Click);
  onPress(c.mnuFileOpenData, files, &buffers::BufferFiles::mnuFileOpenData_Click);
  onPress(c.mnuFileSaveCode, files, &buffers::BufferFiles::mnuFileSaveCode_Click);
  onPress(c.mnuFileSaveCodeAs, files, &buffers::BufferFiles::mnuFileSaveCodeAs_Click);
  onPress(c.mnuFileSaveData, files, &buffers::BufferFiles::mnuFileSaveData_Click);
  onPress(c.mnuFileSaveDataAs, files, &buffers::BufferFiles::mnuFileSaveDataAs_Click);
  onPress(c.mnuFileClose, files, &buffers::BufferFiles::mnuFileClose_Click);
  // No command: the window closes when no command runs.
  c.mnuFileExit.onPress([this] { machine.screen.closeMainWindow(); });
  for (Button* const entry : {&c.menuReadCode, &c.menuReadData}) {
    onPress(*entry, read, &operations::ReadDevice::Read_button_Click);
  }
  for (Button* const entry : {&c.menuVerifyCode, &c.menuVerifyData}) {
    onPress(*entry, verify, &operations::Verify::Verify_button_Click);
  }
  for (Button* const entry : {&c.menuProgramCode, &c.menuProgramData}) {
    onPress(*entry, program, &operations::ProgramCommand::Program_button_Click);
  }
  for (Button* const entry : {&c.menuEraseCode, &c.menuEraseData}) {
    onPress(*entry, files, &buffers::BufferFiles::Erase_button_Click);
  }
  for (Button* const entry : {&c.menuDisplayCode, &c.menuDisplayData}) {
    onPress(*entry, deviceDisplay, &display::DeviceDisplay::Display_button_Click);
  }
  onPress(c.menuBlankCheck, blank, &operations::BlankCheck::Blank_button_Click);
  onPress(c.menuEraseFlash, erase, &operations::EraseChip::EraseFlash_button_Click);
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
  onPress(c.ForceKestrel4, detection, &hardware::BoardDetection::ForceKestrel4);
  onPress(c.ForceKestrel5, detection, &hardware::BoardDetection::ForceKestrel5);
  onPress(c.ForceKestrel6, detection, &hardware::BoardDetection::ForceKestrel6);
  onPress(c.menuFlashShowCodeID, flashIdentification,
          &operations::FlashIdentification::menuFlashShowCodeID_Click);
  onPress(c.ResetFlash, flashIdentification, &operations::FlashIdentification::ResetFlash_Click);
  onPress(c.LoopFlashTest, flashProgrammer, &operations::FlashProgrammer::LoopFlashTest_Click);
  onPress(c.Setup, setups, &setups::NamedSetups::Setup_Click);
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
  machine.portService.takeMissing();
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
  const auto run = [this](void (buffers::BufferFiles::*handler)()) {
    boundary.run([&] { (files.*handler)(); });
  };
  if (key == "OpenCode") run(&buffers::BufferFiles::mnuFileOpenCode_Click);
  if (key == "OpenData") run(&buffers::BufferFiles::mnuFileOpenData_Click);
  if (key == "SaveCode") run(&buffers::BufferFiles::mnuFileSaveCode_Click);
  if (key == "SaveData") run(&buffers::BufferFiles::mnuFileSaveData_Click);
}

}  // namespace kestrel::form
