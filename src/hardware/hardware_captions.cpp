#include "hardware/hardware_captions.h"

namespace kestrel::hardware {

void HardwareCaptions::showNoBoardYet() {
  controls_.KestrelHardwareFound.setCaption("NO HARDWARE FOUND !!!");
  showNotReady();
  showNoPort();
}

void HardwareCaptions::showNoHardware() {
  controls_.KestrelHardwareFound.setColour(Colour::Red);
  controls_.KestrelHardwareFound.setCaption("NO HARDWARE FOUND");
  showNoPort();
  port_.BoardReady = false;
  controls_.Ready_label.setCaption("NotReady");
  controls_.Ready_label.setColour(Colour::Red);
}

void HardwareCaptions::showNoPort() {
  controls_.PortSelected.setText("None");
  for (OptionButton& button : controls_.LPTSelection) button.setValue(false);
}

void HardwareCaptions::showNotReady() {
  port_.BoardReady = false;
  controls_.Ready_label.setColour(Colour::Red);
  controls_.Ready_label.setCaption("NotReady");
}

void HardwareCaptions::showReady() {
  port_.BoardReady = true;
  controls_.Ready_label.setColour(Colour::Green);
  controls_.Ready_label.setCaption("Ready");
}

void HardwareCaptions::showModel(const std::string& model, const std::string& port) {
  controls_.KestrelHardwareFound.setCaption("MODEL " + model + " - PC port " + port + "h");
  controls_.KestrelHardwareFound.setColour(Colour::ButtonText);
}

void HardwareCaptions::showForcedModel(const std::string& model) {
  controls_.KestrelHardwareFound.setCaption("Operator Forced Model " + model);
  controls_.KestrelHardwareFound.setColour(Colour::Red);
}

}  // namespace kestrel::hardware
