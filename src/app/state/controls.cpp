#include "app/state/controls.h"

namespace kestrel {

SecondaryDisplay::SecondaryDisplay(ControlRegistry& registry)
    : window(registry, "frmDisplay1"),
      Frame1(registry, "frmDisplay1.Frame1"),
      VScroll1(registry, "frmDisplay1.VScroll1", 0, 0, 0),
      BufferDisplay(registry, "frmDisplay1.BufferDisplay"),
      Command{{{registry, "frmDisplay1.Command1"},
               {registry, "frmDisplay1.Command2"},
               {registry, "frmDisplay1.Command3"},
               {registry, "frmDisplay1.Command4"},
               {registry, "frmDisplay1.Command5"}}} {
  window.setVisible(false);
}

Controls::Controls() {
  setCaptions();
  setMenuCaptions();
  disableWhatAProcedureEnables();
  hideWhatAProcedureShows();
  HiLow_button[0].setValue(true);
  AlgorithmSelection[0].setValue(true);
  ProtectionSelection[0].setValue(true);
}

// An ampersand stands before the letter that works as the keyboard mnemonic.
void Controls::setCaptions() {
  frmMain.setCaption("Kestrel");
  Frame3.setCaption("Code Buffer Hex/Ascii Display");
  Frame5.setCaption("Options");
  FrameVoltageSelection.setCaption("Programming voltage");
  PleaseSelect.setText("Please select a device");
  Voltage_button[0].setCaption("5 V");
  Voltage_button[1].setCaption("12.5 V");
  Voltage_button[2].setCaption("21 V");
  Voltage_button[3].setCaption("25 V");
  HiLow_button[0].setCaption("All");
  HiLow_button[1].setCaption("Odd");
  HiLow_button[2].setCaption("Even");
  AlgorithmSelection[0].setCaption("Classic");
  AlgorithmSelection[1].setCaption("Data sheet");
  FrameProtection.setCaption("Protection");
  ProtectionSelection[0].setCaption("Keep");
  ProtectionSelection[1].setCaption("On");
  ProtectionSelection[2].setCaption("Off");
  AnyCode.setCaption("Any code");
  ReadTimes.setCaption("Reads");
  CheckBlankPriorProgramming.setCaption("Blank check before programming");
  VerifyAfterProgramming.setCaption("Verify after programming");
  CheckChipFirst.setCaption("Check image against chip first");
  CheckCode.setCaption("Code memory");
  CheckData.setCaption("Data memory");
  Slider1.setCaption("Program Speed");
  Read_button.setCaption("&Read");
  Blank_button.setCaption("&Blank Check");
  Verify_button.setCaption("&Verify");
  Program_button.setCaption("&Program");
  EraseFlash_button.setCaption("Erase &Chip");
  Display_button.setCaption("&Display");
  Erase_button.setCaption("Erase B&uffer");
  Show_button.setCaption("Show Data");
  Command1.setCaption("Second &Window");
  FileNameCodeSize.setCaption("(0 Bytes)");
  FileNameDataLabel.setCaption("Data file");
  FileNameDataSize.setCaption("(0 Bytes)");
  Error_label.setCaption("ERROR");
  Program_label.setCaption("Program");
  DataFlow_label.setCaption("Activity");
  LPTSelection[0].setCaption("378h");
  LPTSelection[1].setCaption("278h");
  LPTSelection[2].setCaption("3BCh");
  TestHardware_button.setCaption("&Test Hardware");
}

void Controls::setMenuCaptions() {
  mnuFileOpenCode.setCaption("&Open Code File...");
  mnuFileOpenData.setCaption("Open &Data File...");
  mnuFileSaveCode.setCaption("&Save Code");
  mnuFileSaveCodeAs.setCaption("Save Code &As...");
  mnuFileSaveData.setCaption("Sa&ve Data");
  mnuFileSaveDataAs.setCaption("Save Da&ta As...");
  mnuFileClose.setCaption("&Close");
  mnuFileExit.setCaption("E&xit");
  menuReadCode.setCaption("&Read");
  menuBlankCheck.setCaption("&Blank Check");
  menuVerifyCode.setCaption("&Verify");
  menuProgramCode.setCaption("&Program...");
  menuEraseCode.setCaption("&Erase Buffer");
  menuDisplayCode.setCaption("&Display");
  menuReadData.setCaption("R&ead Data Memory");
  menuVerifyData.setCaption("Ver&ify Data Memory");
  menuProgramData.setCaption("Pr&ogram Data Memory...");
  menuEraseData.setCaption("Erase Data &Buffer");
  menuDisplayData.setCaption("Display Data &Memory");
  menuEraseFlash.setCaption("Erase &Chip");
  menuFlashShowCodeID.setCaption("Show Flash Code ID#");
  ResetFlash.setCaption("ResetFlash");
  LoopFlashTest.setCaption("LoopFlashTest");
  Setup.setCaption("&Setup");
  for (std::size_t slot = 0; slot < LoadSetup.size(); ++slot) {
    const std::string digit = std::to_string(slot + 1);
    LoadSetup[slot].setCaption("Load Setup #&" + digit);
    SaveSetup[slot].setCaption("Save Setup #&" + digit);
  }
  menuTestHardware.setCaption("&Test Hardware");
  ForceKestrel4.setCaption("Force Model &4");
  ForceKestrel5.setCaption("Force Model &5");
  ForceKestrel6.setCaption("Force Model &6");
  mnuToolsOptions.setCaption("&Options...");
  mnuHelpContents.setCaption("&Contents");
  mnuHelpSearchForHelpOn.setCaption("&Search for Help On...");
  mnuHelpAbout.setCaption("&About Kestrel");
}

void Controls::disableWhatAProcedureEnables() {
  for (Control* const control : std::initializer_list<Control*>{
           &Read_button,      &Blank_button,      &Verify_button,       &Program_button,
           &Display_button,   &Erase_button,      &EraseFlash_button,   &Show_button,
           &CheckCode,        &CheckData,         &menuReadCode,        &menuBlankCheck,
           &menuVerifyCode,   &menuProgramCode,   &menuEraseCode,       &menuDisplayCode,
           &menuReadData,     &menuVerifyData,    &menuProgramData,     &menuEraseData,
           &menuDisplayData,  &menuEraseFlash,    &menuFlashShowCodeID, &mnuFileOpenData,
           &mnuFileSaveCode,  &mnuFileSaveCodeAs, &mnuFileSaveData,     &mnuFileSaveDataAs,
           &toolbarButton(2), &toolbarButton(4),  &toolbarButton(5)}) {
    control->setEnabled(false);
  }
  for (OptionButton& button : Voltage_button) button.setEnabled(false);
  for (Button& entry : LoadSetup) entry.setEnabled(false);
}

void Controls::hideWhatAProcedureShows() {
  for (Control* const control : std::initializer_list<Control*>{
           &Frame5, &CheckBlankPriorProgramming, &VerifyAfterProgramming, &CheckChipFirst,
           &FrameVoltageSelection, &FrameProtection, &AnyCode, &FileNameDataLabel,
           &FileNameDataSize, &FileNameDataText, &toolbarButton(3), &toolbarButton(4),
           &toolbarButton(5)}) {
    control->setVisible(false);
  }
}

}  // namespace kestrel
