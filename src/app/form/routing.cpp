#include "app/form/units.h"
#include "devices/families.h"

namespace kestrel::form {

void Units::connectAll() {
  connectButtons();
  connectMenus();
  connectHardwareMenu();
  connectValues();
  connectToolbar();
  runner.setRest([this] { takeSupplyFromSerialChip(); });
}

// By its data sheet a serial chip has its supply, which is the /OE line, while a command runs
// alone.
void Units::takeSupplyFromSerialChip() {
  const bool isSerial = devices::familyOf(state.FamilyCode).bus == devices::BusKind::Serial;
  const bool hasSupply = (state.RegShadow0 & hardware::kOutputDisable) != 0;
  if (isSerial && hasSupply && drivers.areChosen()) board.leaveSerialChip();
}

void Units::connectButtons() {
  Controls& c = controls;
  c.Read_button.onPress([this] { read.Read_button_Click(); });
  c.Blank_button.onPress([this] { blank.Blank_button_Click(); });
  c.Verify_button.onPress([this] { verify.Verify_button_Click(); });
  c.Program_button.onPress([this] { program.Program_button_Click(); });
  c.EraseFlash_button.onPress([this] { erase.EraseFlash_button_Click(); });
  c.Display_button.onPress([this] { deviceDisplay.Display_button_Click(); });
  c.Erase_button.onPress([this] { files.Erase_button_Click(); });
  c.Show_button.onPress([this] { memoryDisplay.Show_button_Click(); });
  c.Command1.onPress([this] { memoryDisplay.Command1_Click(); });
  c.Error_label.onPress([this] { alert.Error_label_Click(); });
  c.BufferDisplay_DblClick.onPress([this] { exports.BufferDisplay_DblClick(); });
  c.SystemLog_DblClick.onPress([this] { exports.SystemLog_DblClick(); });
}

// A menu entry carries no logic of its own: it runs its button's handler.
void Units::connectMenus() {
  Controls& c = controls;
  c.mnuFileOpenCode.onPress([this] { files.mnuFileOpenCode_Click(); });
  c.mnuFileOpenData.onPress([this] { files.mnuFileOpenData_Click(); });
  c.mnuFileSaveCode.onPress([this] { files.mnuFileSaveCode_Click(); });
  c.mnuFileSaveCodeAs.onPress([this] { files.mnuFileSaveCodeAs_Click(); });
  c.mnuFileSaveData.onPress([this] { files.mnuFileSaveData_Click(); });
  c.mnuFileSaveDataAs.onPress([this] { files.mnuFileSaveDataAs_Click(); });
  c.mnuFileClose.onPress([this] { files.mnuFileClose_Click(); });
  // No command: the window closes when no command runs.
  c.mnuFileExit.onPress([this] { machine.screen.closeMainWindow(); });
  for (Button* const entry : {&c.menuReadCode, &c.menuReadData}) {
    entry->onPress([this] { read.Read_button_Click(); });
  }
  for (Button* const entry : {&c.menuVerifyCode, &c.menuVerifyData}) {
    entry->onPress([this] { verify.Verify_button_Click(); });
  }
  for (Button* const entry : {&c.menuProgramCode, &c.menuProgramData}) {
    entry->onPress([this] { program.Program_button_Click(); });
  }
  for (Button* const entry : {&c.menuEraseCode, &c.menuEraseData}) {
    entry->onPress([this] { files.Erase_button_Click(); });
  }
  for (Button* const entry : {&c.menuDisplayCode, &c.menuDisplayData}) {
    entry->onPress([this] { deviceDisplay.Display_button_Click(); });
  }
  c.menuBlankCheck.onPress([this] { blank.Blank_button_Click(); });
  c.menuEraseFlash.onPress([this] { erase.EraseFlash_button_Click(); });
  c.mnuHelpContents.onPress([this] { help.mnuHelpContents_Click(); });
  c.mnuHelpSearchForHelpOn.onPress([this] { help.mnuHelpSearchForHelpOn_Click(); });
  c.mnuHelpAbout.onPress([this] { help.mnuHelpAbout_Click(); });
  c.mnuToolsOptions.onPress([this] { help.mnuToolsOptions_Click(); });
}

void Units::connectHardwareMenu() {
  Controls& c = controls;
  for (Button* const test : {&c.TestHardware_button, &c.menuTestHardware}) {
    test->onPress([this] { testHardware(); });
  }
  c.ForceKestrel4.onPress([this] { detection.ForceKestrel4(); });
  c.ForceKestrel5.onPress([this] { detection.ForceKestrel5(); });
  c.ForceKestrel6.onPress([this] { detection.ForceKestrel6(); });
  c.menuFlashShowCodeID.onPress([this] { flashIdentification.menuFlashShowCodeID_Click(); });
  c.ResetFlash.onPress([this] { flashIdentification.ResetFlash_Click(); });
  c.LoopFlashTest.onPress([this] { flashProgrammer.LoopFlashTest_Click(); });
  c.Setup.onPress([this] { setups.Setup_Click(); });
  for (std::size_t slot = 1; slot <= c.LoadSetup.size(); ++slot) {
    c.LoadSetup[slot - 1].onPress([this, slot] { setups.LoadSetup_Click(slot); });
    c.SaveSetup[slot - 1].onPress([this, slot] { setups.SaveSetup_Click(slot); });
  }
}

void Units::connectValues() {
  Controls& c = controls;
  c.Device.onClick([this] { devices.Device_Click(); });
  c.Slider1.onChange([this] { devices.Slider1_Change(); });
  c.VScroll1.onChange([this] { VScroll1_Change(); });
  for (std::size_t i = 0; i < c.Voltage_button.size(); ++i) {
    c.Voltage_button[i].onClick([this, i] { devices.Voltage_button_Click(i); });
  }
  for (std::size_t i = 0; i < c.AlgorithmSelection.size(); ++i) {
    c.AlgorithmSelection[i].onClick([this, i] { devices.AlgorithmSelection_Click(i); });
  }
  for (std::size_t i = 0; i < c.ProtectionSelection.size(); ++i) {
    c.ProtectionSelection[i].onClick([this, i] { devices.ProtectionSelection_Click(i); });
  }
  for (OptionButton& button : c.LPTSelection) {
    button.onClick([this] {
      detection.LPTSelection_Click();
      reportPortNotHeld();
    });
  }
}

// Beside the choice, which stays the person's: only a real port can be missing.
void Units::reportPortNotHeld() {
  if (machine.portService.holdsPort(state.PortBase)) return;
  reporting.noteRemark(whyNoBoard());
  logDiagnosis();
}

void Units::testHardware() {
  machine.portService.takeMissing();
  detection.TestHardware_button_Click();
  reportDiagnosis();
}

void Units::VScroll1_Change() {
  if (state.DisplayMode == "Read") memoryDisplay.DisplayPageMemory();
  if (state.DisplayMode == "DisplayEprom") deviceDisplay.DisplayEprom();
}

void Units::connectToolbar() {
  for (ToolButton& button : controls.tbToolBar) {
    button.onPress([this, &button] { tbToolBar_ButtonClick(button.key()); });
  }
}

void Units::tbToolBar_ButtonClick(const std::string& key) {
  if (key == "OpenCode") files.mnuFileOpenCode_Click();
  if (key == "OpenData") files.mnuFileOpenData_Click();
  if (key == "SaveCode") files.mnuFileSaveCode_Click();
  if (key == "SaveData") files.mnuFileSaveData_Click();
}

}  // namespace kestrel::form
