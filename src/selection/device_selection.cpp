#include "selection/device_selection.h"

#include <array>
#include <string>

#include "app/state/text_format.h"
#include "devices/device_table.h"
#include "display/hex_line.h"
#include "hardware/decode_tables.h"
#include "platform/runtime_error.h"

namespace kestrel::selection {
namespace {

constexpr const char* kPrompt = "Please Select Device on this List";
constexpr const char* kMicrocontroller = "MJ";

// Below this slider value the bus delay follows the slow factor too.
constexpr std::int32_t kSlowBusBelow = 10;

std::int16_t numberIn(const std::string& cell) { return roundedInt16(leadingNumber(cell)); }

bool isAddressMappedFlash(const std::string& code) {
  return code == "FM" || code == "FL" || code == "FR" || code == "FS";
}

}  // namespace

DeviceSelection::DeviceSelection(const operations::OperationParts& parts,
                                 hardware::ErrorAlert& alert, display::MemoryDisplay& display,
                                 operations::FlashIdentification& flash)
    : p_(parts), alert_(alert), display_(display), flash_(flash) {}

void DeviceSelection::Device_Click() {
  DropDownList& list = p_.controls.Device;
  if (list.position() == -1) {
    list.setText(kPrompt);
    return;
  }
  const std::string name(trimmed(list.text()));
  if (name.starts_with("N/A")) {
    list.setPosition(-1);
    return;
  }
  p_.state.DeviceName = name;
  copyRow(list.position());
  patchAddressMaps();
  setTimingFactors();
  prepareBoard();
  showOptions();
  enableCommands();
  chooseMemories();
  offerVoltages();
  enableForLoadedBuffers();
  p_.lamps.ErrorLampOff();
  p_.lamps.DataFlowLampOff();
  alert_.unlock();
  reportSelection();
}

void DeviceSelection::copyRow(std::int32_t row) {
  ProgrammerState& s = p_.state;
  const auto& cells = at(s.DeviceTable, row);
  s.FamilyLetter = cells[devices::kLetterColumn];
  s.FamilySubCode = cells[devices::kSubCodeColumn];
  s.DeviceSizeKB = numberIn(cells[devices::kSizeKBColumn]);
  s.Reg1Fixed = numberIn(cells[devices::kReg1FixedColumn]);
  s.Reg3Fixed = numberIn(cells[devices::kReg3FixedColumn]);
  s.VppClass = numberIn(cells[devices::kVppClassColumn]);
  s.FamilyCode = s.FamilyLetter + s.FamilySubCode;
}

// A18 goes to latch 3 bit 3 (socket pin 1), but for the flash parts that have it on pin 31; A14 of
// the 28C256 goes to latch 1 bit 7, as bit 6 is its /WE.
void DeviceSelection::patchAddressMaps() {
  ProgrammerState& s = p_.state;
  hardware::resetAddressMaps(s);
  if (!isAddressMappedFlash(s.FamilyCode)) {
    for (std::size_t i = 4; i <= 7; ++i) s.AddrMapHigh[i] = static_cast<std::int16_t>(i + 4);
  }
  if (s.FamilyCode == "EN") {
    for (std::size_t i = 64; i <= 127; ++i) s.AddrMapMid[i] = static_cast<std::int16_t>(i + 64);
  }
}

// The old NMOS parts need pulses of a millisecond, the 8 Mbit parts short ones.
void DeviceSelection::setTimingFactors() {
  ProgrammerState& s = p_.state;
  const auto set = [&s](std::int32_t settle, std::int32_t b, std::int32_t a) {
    s.SettleFactor = settle;
    s.SpeedFactorB = b;
    s.SpeedFactorA = a;
  };
  set(5, 100, 500);
  if (s.FamilySubCode < "3") set(50, 20000, 100000);
  if (s.FamilySubCode == "9") set(2, 50, 250);
}

void DeviceSelection::prepareBoard() {
  ProgrammerState& s = p_.state;
  p_.bus.CEOFF();
  p_.bus.OEOFF();
  if (s.FamilyLetter == "S") {
    p_.bus.CEON();
    p_.bus.OEON();
  }
  ApplyProgramSpeed();
  s.DeviceSizeBytes = s.DeviceSizeKB * 1024;
  s.CodeLength = s.DeviceSizeBytes;
  p_.controls.VScroll1.setMaximum(s.DeviceSizeBytes / display::kPageBytes - 1);
}

void DeviceSelection::showOptions() {
  Controls& c = p_.controls;
  for (Control* const control :
       std::initializer_list<Control*>{&c.Frame5, &c.CheckBlankPriorProgramming,
                                       &c.VerifyAfterProgramming, &c.FrameVoltageSelection}) {
    control->setVisible(true);
  }
  display_.putCodeBufferOnView();
  display_.DisplayPageMemory();
}

void DeviceSelection::enableCommands() {
  Controls& c = p_.controls;
  const std::string& letter = p_.state.FamilyLetter;
  for (Button* const button : {&c.Read_button, &c.menuReadCode, &c.Display_button,
                               &c.menuDisplayCode, &c.Blank_button, &c.menuBlankCheck}) {
    alert_.enable(*button);
  }
  if (letter == "S") {
    c.Blank_button.setEnabled(false);
    c.menuBlankCheck.setEnabled(false);
  }
  if (letter == "E" || letter == "F" || letter == "S") {
    c.EraseFlash_button.setEnabled(true);
    c.menuFlashShowCodeID.setEnabled(true);
    c.menuEraseFlash.setEnabled(true);
  }
  c.PleaseSelect.setVisible(false);
  c.Frame3.setVisible(true);
  c.BufferDisplay.setVisible(true);
  if (p_.state.FamilyCode == "FA") flash_.ProbeFlashID();
}

void DeviceSelection::chooseMemories() {
  Controls& c = p_.controls;
  if (p_.state.FamilyCode == kMicrocontroller) {
    offerDataMemory();
    return;
  }
  c.CheckData.setValue(0);
  c.CheckData.setEnabled(false);
  c.CheckCode.setValue(1);
  c.CheckCode.setEnabled(false);
  p_.state.DataBufferValid = 0;
  c.Show_button.setEnabled(true);
  c.Show_button.setCaption("Show Code");
}

void DeviceSelection::offerDataMemory() {
  Controls& c = p_.controls;
  for (Control* const control : std::initializer_list<Control*>{
           &c.menuEraseFlash, &c.menuEraseData, &c.menuDisplayData, &c.menuReadData,
           &c.toolbarButton(4), &c.Show_button, &c.mnuFileOpenData, &c.CheckCode, &c.CheckData}) {
    control->setEnabled(true);
  }
  for (Control* const control : std::initializer_list<Control*>{
           &c.toolbarButton(3), &c.toolbarButton(4), &c.toolbarButton(5), &c.FileNameDataLabel,
           &c.FileNameDataSize, &c.FileNameDataText}) {
    control->setVisible(true);
  }
  c.Show_button.setCaption("Show Data");
  display_.letCaptionDecide();
}

// Buttons are only ever enabled here: after a 25 V part its voltages stay offered. That is
// intended.
void DeviceSelection::offerVoltages() {
  auto& buttons = p_.controls.Voltage_button;
  const std::int16_t vppClass = p_.state.VppClass;
  if (vppClass == 0) {
    buttons[0].setEnabled(true);
    buttons[0].setValue(true);
    return;
  }
  for (std::size_t i = 1; i < buttons.size() && std::cmp_less_equal(i, vppClass); ++i) {
    buttons[i].setEnabled(true);
  }
  buttons[1].setValue(true);
  p_.state.VppVolts = 12;
}

void DeviceSelection::enableForLoadedBuffers() {
  Controls& c = p_.controls;
  if (p_.state.CodeBufferValid == 1) {
    for (Button* const button : {&c.Erase_button, &c.menuEraseCode, &c.Program_button,
                                 &c.menuProgramCode, &c.Verify_button, &c.menuVerifyCode}) {
      alert_.enable(*button);
    }
  }
  if (p_.state.DataBufferValid == 1) {
    c.CheckData.setValue(1);
    for (Button* const button : {&c.Erase_button, &c.menuEraseData, &c.Program_button,
                                 &c.menuProgramData, &c.Verify_button, &c.menuVerifyData}) {
      alert_.enable(*button);
    }
  }
}

void DeviceSelection::reportSelection() {
  static constexpr std::array<const char*, 4> kSuggested{"5V", "12.5V", "12.5V", "12.5V"};
  ProgrammerState& s = p_.state;
  p_.reporting.LogMessage("Device " + s.DeviceName + " was Selected");
  s.LastMessage = "Device Size is: " + std::to_string(s.CodeLength) +
                  " Bytes, Initial VPP suggested: " + at(kSuggested, s.VppClass);
  p_.reporting.LogMessage(s.LastMessage);
  p_.reporting.PlaySoundEvent("DONE");
}

void DeviceSelection::Voltage_button_Click(std::size_t index) {
  struct Voltage {
    std::int16_t volts;
    const char* text;
  };
  static constexpr std::array<Voltage, 4> kVoltages{
      {{0, ""}, {12, "12.5 Volts!!!"}, {21, "21 Volts!!!"}, {25, "25 Volts!!!"}}};
  if (index == 0) return;
  const Voltage& chosen = at(kVoltages, index);
  p_.state.VppVolts = chosen.volts;
  const std::string warning = index == 1
                                  ? "Most Common Programming Voltage Selected: "
                                  : "BE CAREFULL!!! You just Selected Programming Voltage as ";
  p_.reporting.LogMessage(warning + chosen.text);
}

void DeviceSelection::Slider1_Change() {
  p_.reporting.LogMessage("Program Speed Slider set to: " +
                          std::to_string(p_.controls.Slider1.value()));
  ApplyProgramSpeed();
  p_.reporting.PlaySoundEvent("SLIDE");
}

void DeviceSelection::ApplyProgramSpeed() {
  ProgrammerState& s = p_.state;
  const RangeControl& slider = p_.controls.Slider1;
  const std::int64_t span = slider.maximum() - slider.value();
  const bool isSlow = slider.value() < kSlowBusBelow;
  s.DelayCountA = narrowed<std::int32_t>(span * s.SpeedFactorA + 2);
  s.DelayCountB = narrowed<std::int32_t>(span * s.SpeedFactorB + 2);
  s.BusDelayCount = narrowed<std::int32_t>(span * (isSlow ? s.SpeedFactorB : s.SettleFactor) + 2);
}

}  // namespace kestrel::selection
