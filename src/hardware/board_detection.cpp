#include "hardware/board_detection.h"

#include <array>
#include <optional>
#include <string>

#include "app/state/text_format.h"
#include "hardware/hardware_config.h"
#include "platform/atomic_file.h"
#include "platform/runtime_error.h"

namespace kestrel::hardware {
namespace {

// In the order of the option buttons, and in the order of the probes.
struct LptButton {
  std::int16_t base;
  const char* text;
};
constexpr std::array<LptButton, 3> kLptButtons{{{0x378, "378h"}, {0x278, "278h"}, {0x3BC, "3BCh"}}};
constexpr std::array<std::int16_t, 3> kProbeOrder{0x278, 0x378, 0x3BC};

// The probes look at status bits 4 to 6 alone: first all low, then all high.
constexpr int kProbeLines = 0x70;
constexpr int kBoardAnswers = 0x0070;

// Latch 3 with data bit 4 pulled down, which a model 6 alone can do, and without.
constexpr std::uint8_t kPullDownD4 = 0x60;
constexpr std::uint8_t kNoPullDown = 0x40;

constexpr std::int32_t kLampPulseMs = 200;

}  // namespace

void BoardDetection::data(std::uint8_t value) { p_.port.PortOut(p_.state.PortBase, value); }

void BoardDetection::control(std::uint8_t value) { p_.port.PortOut(p_.state.ControlPort, value); }

int BoardDetection::settledStatusLines() {
  p_.bus.WaitSettlingTime();
  return p_.port.PortIn(p_.state.StatusPort) & kProbeLines;
}

// Loads latch 3 so that the data latch drives the bus, then changes the data under the standing
// strobe of latch 4, which is transparent as long; control 06h shows the low half of the bus.
BoardDetection::Signature BoardDetection::probeModel5or6() {
  data(0x9F);
  control(0x0E);
  control(0x00);
  data(0x00);
  control(0x06);
  const int first = settledStatusLines();
  control(0x00);
  data(0xFF);
  control(0x06);
  const int second = settledStatusLines();
  return first * 256 + second;
}

// The same with the model 4 codes: strobes of latches 2, 3, 4 and at the end latch 2 idle.
BoardDetection::Signature BoardDetection::probeModel4() {
  control(0x09);
  data(0xBF);
  control(0x01);
  control(0x09);
  data(0x00);
  control(0x0F);
  control(0x09);
  const int first = settledStatusLines();
  data(0xFF);
  control(0x0F);
  control(0x09);
  const int second = settledStatusLines();
  control(0x08);
  return first * 256 + second;
}

std::uint8_t BoardDetection::readWithLatch3(std::uint8_t value) {
  data(value);
  control(0x0E);
  control(0x00);
  p_.bus.GetNibbles();
  return p_.state.ReadByte;
}

// GetNibbles decodes for the new model but selects the nibbles with the codes applied last: before
// the first detection both are 0, and a model 6 is then taken for a model 5. That is intended.
bool BoardDetection::answersAsModel6() {
  const std::uint8_t pulledDown = readWithLatch3(kPullDownD4);
  const std::uint8_t released = readWithLatch3(kNoPullDown);
  return pulledDown == 0xEF && released == 0xFF;
}

void BoardDetection::setPort(std::int16_t base) {
  p_.state.PortBase = base;
  p_.registers.derivePorts();
}

void BoardDetection::CheckHardware() {
  ProgrammerState& s = p_.state;
  p_.registers.derivePorts();
  p_.lamps.DataFlowLampOn();
  const Signature a = probeModel5or6();
  const Signature b = probeModel4();
  p_.lamps.DataFlowLampOff();
  if (a == kBoardAnswers) {
    s.KestrelModel = 5;
    s.DetectedPort = s.PortBase;
  }
  if (b == kBoardAnswers) {
    s.KestrelModel = 4;
    s.DetectedPort = s.PortBase;
  }
  if (s.KestrelModel == 5 && answersAsModel6()) s.KestrelModel = 6;
  if (a != kBoardAnswers && b != kBoardAnswers) {
    p_.reporting.LogMessage("Port " + hexText(s.PortBase) + " Not Responding");
  }
}

void BoardDetection::showNoHardware() {
  p_.controls.KestrelHardwareFound.setColour(Colour::Red);
  p_.controls.KestrelHardwareFound.setCaption("NO HARDWARE FOUND");
  p_.controls.PortSelected.setText("None");
  for (OptionButton& button : p_.controls.LPTSelection) button.setValue(false);
  p_.controls.Ready_label.setCaption("NotReady");
  p_.controls.Ready_label.setColour(Colour::Red);
}

void BoardDetection::TestHardware_button_Click() {
  p_.lamps.ErrorLampOff();
  p_.lamps.ProgramLampOff();
  p_.lamps.DataFlowLampOff();
  p_.alert.unlock();
  p_.state.DetectedPort = 0;
  p_.state.KestrelModel = 0;
  showNoHardware();
  const std::int16_t remembered = p_.state.PortBase;
  for (const std::int16_t base : kProbeOrder) {
    p_.state.PortBase = base;
    CheckHardware();
  }
  setPort(remembered);
  if (p_.state.KestrelModel == 0) {
    p_.reporting.LogMessage("Can't Locate Kestrel Board at Any LPT port.");
    p_.reporting.LogMessage(
        "Kestrel should be connected to a LPT port, with power and socket empty.");
  }
  ReportDetection();
}

void BoardDetection::pulseBoardLamp() {
  setBits(p_.state.RegShadow0, kBoardLamp);
  p_.registers.SetReg0();
  p_.bus.sleepMs(kLampPulseMs);
  clearBits(p_.state.RegShadow0, kBoardLamp);
  p_.registers.SetReg0();
}

void BoardDetection::announceModel() {
  const std::string model = std::to_string(p_.state.KestrelModel);
  const std::string port = hexText(p_.state.PortBase);
  p_.reporting.LogMessage("KESTREL-" + model + " Device was FOUND at Port: " + port);
  p_.controls.KestrelHardwareFound.setCaption("MODEL " + model + " - PC port " + port + "h");
  p_.controls.KestrelHardwareFound.setColour(Colour::ButtonText);
  SaveHardwareConfig();
  p_.registers.ApplyPortAndModel();
  if (p_.state.KestrelModel != 4) pulseBoardLamp();
}

void BoardDetection::ReportDetection() {
  if (p_.state.DetectedPort < 1) return;
  p_.controls.Ready_label.setColour(Colour::Green);
  p_.controls.Ready_label.setCaption("Ready");
  setPort(p_.state.DetectedPort);
  for (std::size_t i = 0; i < kLptButtons.size(); ++i) {
    if (p_.state.PortBase == kLptButtons[i].base) p_.controls.LPTSelection[i].setValue(true);
  }
  const std::int16_t model = p_.state.KestrelModel;
  std::optional<FileError> unsaved;
  try {
    if (model == 6 || model == 5 || model == 4) announceModel();
  } catch (const FileError& error) {
    unsaved = error;
    p_.registers.ApplyPortAndModel();
  }
  p_.bus.Reset();
  if (unsaved) p_.errors.tell(*unsaved);
}

void BoardDetection::SaveHardwareConfig() {
  const std::string now = p_.time.shortDate() + " " + p_.time.shortTime();
  std::error_code ignored;  // a folder that cannot be made fails at the write, which names it
  std::filesystem::create_directories(p_.folders.configuration, ignored);
  writeFileAtomically(p_.folders.configuration / kConfigFileName,
                      hardwareConfigText(now, p_.state.PortBase, p_.state.KestrelModel));
}

void BoardDetection::readConfigLine() {
  const std::string_view line = p_.state.ConfigLine;
  if (line.starts_with(kPortKey)) {
    p_.state.PortBase = leadingHex16(line.substr(kPortKey.size()));
    p_.state.ConfigSeen += "PORT";
  } else if (line.starts_with(kModelKey)) {
    p_.state.KestrelModel = roundedInt16(leadingNumber(line.substr(kModelKey.size())));
    p_.state.ConfigSeen += "MODEL";
  }
}

void BoardDetection::LoadHardwareConfig() {
  p_.state.PortBase = 0;
  p_.state.ConfigSeen.clear();
  const std::filesystem::path path = p_.folders.configuration / kConfigFileName;
  p_.state.ConfigPath = path.string();
  std::error_code ignored;
  if (!std::filesystem::exists(path, ignored)) return;
  for (std::string& line : linesOf(readWholeTextFile(path))) {
    p_.state.ConfigLine = std::move(line);
    readConfigLine();
  }
  if (p_.state.ConfigSeen == "MODELPORT" || p_.state.ConfigSeen == "PORTMODEL") {
    p_.state.DetectedPort = p_.state.PortBase;
  }
  ReportDetection();
}

void BoardDetection::LPTSelection_Click() {
  for (std::size_t i = 0; i < kLptButtons.size(); ++i) {
    if (!p_.controls.LPTSelection[i].value()) continue;
    const std::string text = kLptButtons[i].text;
    p_.controls.PortSelected.setText(text);
    p_.reporting.LogMessage("Port Selection changed to " + text);
    setPort(kLptButtons[i].base);
  }
}

void BoardDetection::forceModel(std::int16_t model) {
  const std::string digit = std::to_string(model);
  p_.state.KestrelModel = model;
  p_.reporting.LogMessage("KESTREL-" + digit + " Device was FORCED by Operator");
  p_.controls.KestrelHardwareFound.setCaption("Operator Forced Model " + digit);
  p_.controls.KestrelHardwareFound.setColour(Colour::Red);
  p_.controls.Ready_label.setColour(Colour::Green);
  p_.controls.Ready_label.setCaption("Ready");
  p_.registers.ApplyPortAndModel();
  p_.bus.Reset();
}

}  // namespace kestrel::hardware
