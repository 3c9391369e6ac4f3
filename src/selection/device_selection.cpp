#include "selection/device_selection.h"

#include <array>
#include <string>

#include "app/state/text_format.h"
#include "devices/data_sheets.h"
#include "devices/device_table.h"
#include "display/hex_line.h"
#include "hardware/decode_tables.h"
#include "platform/runtime_error.h"

namespace kestrel::selection {
namespace {

constexpr const char* kPrompt = "Please Select Device on this List";

// Below this slider value the bus delay follows the slow factor too.
constexpr std::int32_t kSlowBusBelow = 10;

std::int16_t numberIn(const std::string& cell) { return roundedInt16(leadingNumber(cell)); }

}  // namespace

void DeviceSelection::Device_Click() {
  DropDownList& list = controls_.Device;
  if (list.position() == -1) {
    list.setText(kPrompt);
    return;
  }
  const std::string name(trimmed(list.text()));
  if (name.starts_with("N/A")) {
    list.setPosition(-1);
    return;
  }
  device_.DeviceName = name;
  copyRow(list.position());
  const devices::Family& family = devices::familyOf(device_.FamilyCode);
  patchAddressMaps(family.addressMap);
  setTimingFactors(family.timing);
  prepareBoard(family);
  showOptions();
  controls_.CheckChipFirst.setVisible(devices::isEprom(family));
  enableCommands(family);
  chooseMemories(family);
  offerVoltages();
  enableForLoadedBuffers();
  board_.lamps.ErrorLampOff();
  board_.lamps.DataFlowLampOff();
  alert_.unlock();
  showSheetOptions();
  reportSelection();
}

void DeviceSelection::copyRow(std::int32_t row) {
  const auto& cells = at(catalogue_.DeviceTable, row);
  device_.FamilyLetter = cells[devices::kLetterColumn];
  device_.FamilySubCode = cells[devices::kSubCodeColumn];
  device_.DeviceSizeKB = numberIn(cells[devices::kSizeKBColumn]);
  device_.Reg1Fixed = numberIn(cells[devices::kReg1FixedColumn]);
  device_.Reg3Fixed = numberIn(cells[devices::kReg3FixedColumn]);
  device_.VppClass = numberIn(cells[devices::kVppClassColumn]);
  device_.FamilyCode = device_.FamilyLetter + device_.FamilySubCode;
}

void DeviceSelection::patchAddressMaps(devices::AddressMap map) {
  hardware::resetAddressMaps(device_);
  if (map == devices::AddressMap::Plain) return;
  for (std::size_t i = 4; i <= 7; ++i) device_.AddrMapHigh[i] = static_cast<std::int16_t>(i + 4);
  if (map == devices::AddressMap::A18OnPin1) return;
  for (std::size_t i = 64; i <= 127; ++i) {
    device_.AddrMapMid[i] = static_cast<std::int16_t>(i + 64);
  }
}

void DeviceSelection::setTimingFactors(const devices::TimingFactors& factors) {
  timing_.SettleFactor = factors.settle;
  timing_.SpeedFactorB = factors.speedB;
  timing_.SpeedFactorA = factors.speedA;
}

void DeviceSelection::prepareBoard(const devices::Family& family) {
  board_.bus.CEOFF();
  board_.bus.OEOFF();
  if (family.bus == devices::BusKind::Serial) {
    board_.bus.CEON();
    board_.bus.OEON();
  }
  ApplyProgramSpeed();
  device_.DeviceSizeBytes = device_.DeviceSizeKB * 1024;
  buffers_.CodeLength = device_.DeviceSizeBytes;
  controls_.VScroll1.setMaximum(device_.DeviceSizeBytes / display::kPageBytes - 1);
}

void DeviceSelection::showOptions() {
  Controls& c = controls_;
  for (Control* const control :
       std::initializer_list<Control*>{&c.Frame5, &c.CheckBlankPriorProgramming,
                                       &c.VerifyAfterProgramming, &c.FrameVoltageSelection}) {
    control->setVisible(true);
  }
  display_.putCodeBufferOnView();
  display_.DisplayPageMemory();
}

// What the data sheet of a kind lets choose; another code is passed over for one chip alone.
void DeviceSelection::showSheetOptions() {
  const devices::DataSheet* const sheet =
      drivers_.areChosen() ? devices::dataSheetOf(device_.DeviceName) : nullptr;
  controls_.FrameProtection.setVisible(sheet != nullptr && devices::hasProtection(*sheet));
  controls_.AnyCode.setVisible(sheet != nullptr && devices::isAskedForCode(*sheet));
  controls_.AnyCode.setValue(0);
}

void DeviceSelection::enableCommands(const devices::Family& family) {
  Controls& c = controls_;
  for (Button* const button : {&c.Read_button, &c.menuReadCode, &c.Display_button,
                               &c.menuDisplayCode, &c.Blank_button, &c.menuBlankCheck}) {
    alert_.enable(*button);
  }
  if (family.bus == devices::BusKind::Serial && !drivers_.areChosen()) {
    c.Blank_button.setEnabled(false);
    c.menuBlankCheck.setEnabled(false);
  }
  if (family.offersErase) {
    c.EraseFlash_button.setEnabled(true);
    c.menuFlashShowCodeID.setEnabled(true);
    c.menuEraseFlash.setEnabled(true);
  }
  c.PleaseSelect.setVisible(false);
  c.Frame3.setVisible(true);
  c.BufferDisplay.setVisible(true);
  if (family.isProbedWhenSelected && !drivers_.areChosen()) flash_.ProbeFlashID();
}

void DeviceSelection::chooseMemories(const devices::Family& family) {
  Controls& c = controls_;
  if (family.hasDataMemory) {
    offerDataMemory();
    return;
  }
  c.CheckData.setValue(0);
  c.CheckData.setEnabled(false);
  c.CheckCode.setValue(1);
  c.CheckCode.setEnabled(false);
  buffers_.DataBufferValid = 0;
  c.Show_button.setEnabled(true);
  c.Show_button.setCaption("Show Code");
}

void DeviceSelection::offerDataMemory() {
  Controls& c = controls_;
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
  auto& buttons = controls_.Voltage_button;
  const std::int16_t vppClass = device_.VppClass;
  if (vppClass == 0) {
    buttons[0].setEnabled(true);
    buttons[0].setValue(true);
    return;
  }
  for (std::size_t i = 1; i < buttons.size() && std::cmp_less_equal(i, vppClass); ++i) {
    buttons[i].setEnabled(true);
  }
  buttons[1].setValue(true);
  device_.VppVolts = 12;
}

void DeviceSelection::enableForLoadedBuffers() {
  Controls& c = controls_;
  if (buffers_.CodeBufferValid == 1) {
    for (Button* const button : {&c.Erase_button, &c.menuEraseCode, &c.Program_button,
                                 &c.menuProgramCode, &c.Verify_button, &c.menuVerifyCode}) {
      alert_.enable(*button);
    }
  }
  if (buffers_.DataBufferValid == 1) {
    c.CheckData.setValue(1);
    for (Button* const button : {&c.Erase_button, &c.menuEraseData, &c.Program_button,
                                 &c.menuProgramData, &c.Verify_button, &c.menuVerifyData}) {
      alert_.enable(*button);
    }
  }
}

void DeviceSelection::reportSelection() {
  static constexpr std::array<const char*, 4> kSuggested{"5V", "12.5V", "12.5V", "12.5V"};
  reporting_.LogMessage("Device " + device_.DeviceName + " was Selected");
  shell_.LastMessage = "Device Size is: " + std::to_string(buffers_.CodeLength) +
                       " Bytes, Initial VPP suggested: " + at(kSuggested, device_.VppClass);
  reporting_.LogMessage(shell_.LastMessage);
  reporting_.PlaySoundEvent("DONE");
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
  device_.VppVolts = chosen.volts;
  const std::string warning = index == 1
                                  ? "Most Common Programming Voltage Selected: "
                                  : "BE CAREFULL!!! You just Selected Programming Voltage as ";
  reporting_.LogMessage(warning + chosen.text);
}

void DeviceSelection::AlgorithmSelection_Click(std::size_t index) {
  struct Choice {
    Algorithms algorithms;
    const char* name;
  };
  static constexpr std::array<Choice, 2> kChoices{
      {{Algorithms::Classic, "Classic"}, {Algorithms::DataSheet, "Data Sheet"}}};
  const Choice& choice = at(kChoices, index);
  const Algorithms before = std::exchange(chosen_.algorithms, choice.algorithms);
  fillList();
  const bool isOffered = controls_.Device.position() == -1 ||
                         !controls_.Device.text().starts_with(devices::kNotAvailable);
  if (!isOffered) {
    chosen_.algorithms = before;
    fillList();
    controls_.AlgorithmSelection[index].putBack(false);
    controls_.AlgorithmSelection[1 - index].putBack(true);
    reporting_.LogMessage("Algorithms Unchanged: the Device is Offered with these alone");
    reporting_.noteEnding(Ending::Refused, device_.DeviceName +
                                               " is not offered with these algorithms: choose "
                                               "another device first");
    return;
  }
  reporting_.LogMessage(std::string("Algorithms Selected: ") + choice.name);
  if (before != choice.algorithms) exchangeCheck();
  if (controls_.Device.position() != -1) enableCommands(devices::familyOf(device_.FamilyCode));
  showSheetOptions();
}

void DeviceSelection::ProtectionSelection_Click(std::size_t index) {
  static constexpr std::array<Protection, 3> kChoices{Protection::Keep, Protection::On,
                                                      Protection::Off};
  chosen_.protection = at(kChoices, index);
}

// It reads the chip, so the classic way has it only when it was asked for there.
void DeviceSelection::exchangeCheck() {
  CheckBox& box = controls_.CheckChipFirst;
  const bool isTicked = box.isTicked();
  box.setValue(std::exchange(isCheckedOtherwise_, isTicked) ? 1 : 0);
}

// The selection stays at its place.
void DeviceSelection::fillList() {
  DropDownList& list = controls_.Device;
  const std::int32_t position = list.position();
  devices::FillDeviceList(catalogue_, chosen_.algorithms, list);
  if (position != -1) list.putBack(position, at(list.items(), position));
}

void DeviceSelection::Slider1_Change() {
  reporting_.LogMessage("Program Speed Slider set to: " +
                        std::to_string(controls_.Slider1.value()));
  ApplyProgramSpeed();
  reporting_.PlaySoundEvent("SLIDE");
}

void DeviceSelection::ApplyProgramSpeed() {
  const RangeControl& slider = controls_.Slider1;
  const std::int64_t span = slider.maximum() - slider.value();
  const bool isSlow = slider.value() < kSlowBusBelow;
  timing_.DelayCountA = narrowed<std::int32_t>(span * timing_.SpeedFactorA + 2);
  timing_.DelayCountB = narrowed<std::int32_t>(span * timing_.SpeedFactorB + 2);
  timing_.BusDelayCount =
      narrowed<std::int32_t>(span * (isSlow ? timing_.SpeedFactorB : timing_.SettleFactor) + 2);
}

}  // namespace kestrel::selection
