#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "app/state/buttons.h"
#include "app/state/control.h"
#include "app/state/value_controls.h"

namespace kestrel {

/// A toolbar button, routed by its key.
class ToolButton : public Button {
 public:
  ToolButton(ControlRegistry& registry, std::string name, std::string key)
      : Button(registry, std::move(name)), key_(std::move(key)) {}
  [[nodiscard]] const std::string& key() const { return key_; }

 private:
  std::string key_;
};

/// The secondary display window. It is visible from the time it was created.
struct SecondaryDisplay {
  explicit SecondaryDisplay(ControlRegistry& registry);

  Pane window;
  Pane Frame1;
  RangeControl VScroll1;
  TextBox BufferDisplay;
  std::array<Button, 5> Command;
};

/// The form without a toolkit: every control under its declared name, in the state in which the
/// program starts. A front end mirrors the controls and reports presses; nothing else.
class Controls {
 private:
  ControlRegistry registry_;
  OptionGroup voltages_{OptionGroup::WhenAllOff::Allowed};
  OptionGroup lanes_{OptionGroup::WhenAllOff::KeepLast};
  OptionGroup ports_{OptionGroup::WhenAllOff::Allowed};
  OptionGroup algorithms_{OptionGroup::WhenAllOff::KeepLast};
  OptionGroup protections_{OptionGroup::WhenAllOff::KeepLast};

 public:
  Controls();

  void setListener(ControlListener* listener) { registry_.setListener(listener); }
  [[nodiscard]] const std::vector<Control*>& all() const { return registry_.all(); }

  /// The control of that name, such as "Read_button" or "Voltage_button(2)"; nullptr if none.
  [[nodiscard]] Control* find(std::string_view name) const { return registry_.find(name); }

  /// Toolbar button n, counted from 1.
  [[nodiscard]] ToolButton& toolbarButton(std::size_t n) { return tbToolBar.at(n - 1); }

  Pane frmMain{registry_, "frmMain"};
  Pane Frame3{registry_, "Frame3"};  ///< frame of the display; its caption says what is shown
  Pane Frame5{registry_, "Frame5"};  ///< frame of the two option boxes
  Pane FrameVoltageSelection{registry_, "FrameVoltageSelection"};
  Pane FrameProtection{registry_, "FrameProtection"};

  // Device and options.
  DropDownList Device{registry_, "Device"};
  TextBox PleaseSelect{registry_, "PleaseSelect"};
  std::array<OptionButton, 4> Voltage_button{{{registry_, "Voltage_button(0)", voltages_},
                                              {registry_, "Voltage_button(1)", voltages_},
                                              {registry_, "Voltage_button(2)", voltages_},
                                              {registry_, "Voltage_button(3)", voltages_}}};
  std::array<OptionButton, 3> HiLow_button{{{registry_, "HiLow_button(0)", lanes_},
                                            {registry_, "HiLow_button(1)", lanes_},
                                            {registry_, "HiLow_button(2)", lanes_}}};
  CheckBox CheckBlankPriorProgramming{registry_, "CheckBlankPriorProgramming"};
  CheckBox VerifyAfterProgramming{registry_, "VerifyAfterProgramming"};
  CheckBox CheckChipFirst{registry_,
                          "CheckChipFirst"};  ///< of what wants erasing, before the question
  CheckBox CheckCode{registry_, "CheckCode"};
  CheckBox CheckData{registry_, "CheckData"};
  std::array<OptionButton, 2> AlgorithmSelection{
      {{registry_, "AlgorithmSelection(0)", algorithms_},
       {registry_, "AlgorithmSelection(1)", algorithms_}}};
  std::array<OptionButton, 3> ProtectionSelection{
      {{registry_, "ProtectionSelection(0)", protections_},
       {registry_, "ProtectionSelection(1)", protections_},
       {registry_, "ProtectionSelection(2)", protections_}}};
  CheckBox AnyCode{registry_, "AnyCode"};  ///< a flash of another code is worked on too
  RangeControl ReadTimes{registry_, "ReadTimes", 1, 99, 1};  ///< that Read reads the chip
  RangeControl Slider1{registry_, "Slider1", 1, 20, 18};

  // Commands.
  Button Read_button{registry_, "Read_button"};
  Button Blank_button{registry_, "Blank_button"};
  Button Verify_button{registry_, "Verify_button"};
  Button Program_button{registry_, "Program_button"};
  Button EraseFlash_button{registry_, "EraseFlash_button"};
  Button Display_button{registry_, "Display_button"};
  Button Erase_button{registry_, "Erase_button"};
  Button Show_button{registry_, "Show_button"};
  Button Command1{registry_, "Command1"};

  // Display and log.
  TextBox BufferDisplay{registry_, "BufferDisplay"};
  RangeControl VScroll1{registry_, "VScroll1", 0, 0, 0};
  TextBox SystemLog{registry_, "SystemLog"};
  SecondaryDisplay frmDisplay1{registry_};
  Control FileNameCodeText{registry_, "FileNameCodeText"};
  Control FileNameCodeSize{registry_, "FileNameCodeSize"};
  Control FileNameDataLabel{registry_, "FileNameDataLabel"};
  Control FileNameDataSize{registry_, "FileNameDataSize"};
  Control FileNameDataText{registry_, "FileNameDataText"};

  // Lamps, hardware, status bar. The labels can be clicked; only Error_label does something.
  Button Error_label{registry_, "Error_label"};
  Control Program_label{registry_, "Program_label"};
  Control DataFlow_label{registry_, "DataFlow_label"};
  Control Ready_label{registry_, "Ready_label"};
  Control KestrelHardwareFound{registry_, "KestrelHardwareFound"};
  TextBox PortSelected{registry_, "PortSelected"};
  std::array<OptionButton, 3> LPTSelection{{{registry_, "LPTSelection(0)", ports_},
                                            {registry_, "LPTSelection(1)", ports_},
                                            {registry_, "LPTSelection(2)", ports_}}};
  Button TestHardware_button{registry_, "TestHardware_button"};
  ProgressBar ProgressBar1{registry_, "ProgressBar1"};
  TextBox StatusBar{registry_, "StatusBar"};

  // Toolbar and menus.
  std::array<ToolButton, 5> tbToolBar{{{registry_, "tbToolBar(1)", "OpenCode"},
                                       {registry_, "tbToolBar(2)", "SaveCode"},
                                       {registry_, "tbToolBar(3)", ""},
                                       {registry_, "tbToolBar(4)", "OpenData"},
                                       {registry_, "tbToolBar(5)", "SaveData"}}};
  Button mnuFileOpenCode{registry_, "mnuFileOpenCode"};
  Button mnuFileOpenData{registry_, "mnuFileOpenData"};
  Button mnuFileSaveCode{registry_, "mnuFileSaveCode"};
  Button mnuFileSaveCodeAs{registry_, "mnuFileSaveCodeAs"};
  Button mnuFileSaveData{registry_, "mnuFileSaveData"};
  Button mnuFileSaveDataAs{registry_, "mnuFileSaveDataAs"};
  Button mnuFileClose{registry_, "mnuFileClose"};
  Button mnuFileExit{registry_, "mnuFileExit"};
  Button menuReadCode{registry_, "menuReadCode"};
  Button menuBlankCheck{registry_, "menuBlankCheck"};
  Button menuVerifyCode{registry_, "menuVerifyCode"};
  Button menuProgramCode{registry_, "menuProgramCode"};
  Button menuEraseCode{registry_, "menuEraseCode"};
  Button menuDisplayCode{registry_, "menuDisplayCode"};
  Button menuReadData{registry_, "menuReadData"};
  Button menuVerifyData{registry_, "menuVerifyData"};
  Button menuProgramData{registry_, "menuProgramData"};
  Button menuEraseData{registry_, "menuEraseData"};
  Button menuDisplayData{registry_, "menuDisplayData"};
  Button menuEraseFlash{registry_, "menuEraseFlash"};
  Button menuFlashShowCodeID{registry_, "menuFlashShowCodeID"};
  Button ResetFlash{registry_, "ResetFlash"};
  Button LoopFlashTest{registry_, "LoopFlashTest"};
  Button Setup{registry_, "Setup"};  ///< the top menu; pressed each time it opens
  std::array<Button, 4> LoadSetup{{{registry_, "LoadSetup1"},
                                   {registry_, "LoadSetup2"},
                                   {registry_, "LoadSetup3"},
                                   {registry_, "LoadSetup4"}}};
  std::array<Button, 4> SaveSetup{{{registry_, "SaveSetup1"},
                                   {registry_, "SaveSetup2"},
                                   {registry_, "SaveSetup3"},
                                   {registry_, "SaveSetup4"}}};
  Button menuTestHardware{registry_, "menuTestHardware"};
  Button ForceKestrel4{registry_, "ForceKestrel4"};
  Button ForceKestrel5{registry_, "ForceKestrel5"};
  Button ForceKestrel6{registry_, "ForceKestrel6"};
  Button mnuToolsOptions{registry_, "mnuToolsOptions"};
  Button mnuHelpContents{registry_, "mnuHelpContents"};
  Button mnuHelpSearchForHelpOn{registry_, "mnuHelpSearchForHelpOn"};
  Button mnuHelpAbout{registry_, "mnuHelpAbout"};

  // Texts that export themselves when double-clicked.
  Button BufferDisplay_DblClick{registry_, "BufferDisplay_DblClick"};
  Button SystemLog_DblClick{registry_, "SystemLog_DblClick"};

 private:
  void setCaptions();
  void setMenuCaptions();
  void disableWhatAProcedureEnables();
  void hideWhatAProcedureShows();
};

}  // namespace kestrel
