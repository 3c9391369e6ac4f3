#include "hardware/board_detection.h"

#include <array>
#include <optional>
#include <string>

#include "app/state/text_format.h"
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

constexpr std::int32_t kLampPulseMs = 200;

}  // namespace

void BoardDetection::TestHardware_button_Click() {
  board_.lamps.ErrorLampOff();
  board_.lamps.ProgramLampOff();
  board_.lamps.DataFlowLampOff();
  alert_.unlock();
  portState_.DetectedPort = 0;
  portState_.KestrelModel = 0;
  captions_.showNoHardware();
  probeAllPorts();
  board_.registers.setPort(portState_.PortBase);
  if (portState_.KestrelModel == 0) {
    reporting_.LogMessage("Can't Locate Kestrel Board at Any LPT port.");
    reporting_.LogMessage(
        "Kestrel should be connected to a LPT port, with power and socket empty.");
  }
  ReportDetection();
}

void BoardDetection::probeAllPorts() {
  const DeviceOperation operation = board_.operation();
  // The ports that were in force come back on every way out.
  struct GivenBack {
    PortState& state;
    std::int16_t base = state.PortBase;
    std::int16_t status = state.StatusPort;
    std::int16_t control = state.ControlPort;
    ~GivenBack() {
      state.PortBase = base;
      state.StatusPort = status;
      state.ControlPort = control;
    }
  } const givenBack{portState_};
  for (const std::int16_t base : kProbeOrder) {
    board_.registers.setPort(base);
    probe_.CheckHardware();
  }
}

void BoardDetection::pulseBoardLamp() {
  setBits(latches_.RegShadow0, kBoardLamp);
  board_.registers.SetReg0();
  board_.bus.sleepMs(kLampPulseMs);
  clearBits(latches_.RegShadow0, kBoardLamp);
  board_.registers.SetReg0();
}

void BoardDetection::announceModel() {
  const std::string model = std::to_string(portState_.KestrelModel);
  const std::string port = hexText(portState_.PortBase);
  reporting_.LogMessage("KESTREL-" + model + " Device was FOUND at Port: " + port);
  captions_.showModel(model, port);
  SaveHardwareConfig();
  board_.registers.ApplyPortAndModel();
  if (portState_.KestrelModel != 4) pulseBoardLamp();
}

void BoardDetection::ReportDetection() {
  if (portState_.DetectedPort < 1) return;
  captions_.showReady();
  board_.registers.setPort(portState_.DetectedPort);
  for (std::size_t i = 0; i < kLptButtons.size(); ++i) {
    if (portState_.PortBase == kLptButtons[i].base) controls_.LPTSelection[i].setValue(true);
  }
  const std::int16_t model = portState_.KestrelModel;
  std::optional<FileError> unsaved;
  try {
    if (model == 6 || model == 5 || model == 4) announceModel();
  } catch (const FileError& error) {
    unsaved = error;
    board_.registers.ApplyPortAndModel();
  }
  board_.bus.Reset();
  if (unsaved) errors_.report(*unsaved);
}

void BoardDetection::SaveHardwareConfig() {
  config_.save(portState_, time_.shortDate() + " " + time_.shortTime());
}

void BoardDetection::LoadHardwareConfig() {
  config_.load(portState_);
  if (portState_.ConfigSeen == "MODELPORT" || portState_.ConfigSeen == "PORTMODEL") {
    portState_.DetectedPort = portState_.PortBase;
  }
  if (!portState_.ConfigSeen.empty()) ReportDetection();
}

void BoardDetection::LPTSelection_Click() {
  for (std::size_t i = 0; i < kLptButtons.size(); ++i) {
    if (!controls_.LPTSelection[i].value()) continue;
    const std::string text = kLptButtons[i].text;
    controls_.PortSelected.setText(text);
    reporting_.LogMessage("Port Selection changed to " + text);
    board_.registers.setPort(kLptButtons[i].base);
  }
}

void BoardDetection::forceModel(std::int16_t model) {
  const std::string digit = std::to_string(model);
  portState_.KestrelModel = model;
  reporting_.LogMessage("KESTREL-" + digit + " Device was FORCED by Operator");
  captions_.showForcedModel(digit);
  captions_.showReady();
  board_.registers.ApplyPortAndModel();
  board_.bus.Reset();
}

}  // namespace kestrel::hardware
