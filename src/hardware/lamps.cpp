#include "hardware/lamps.h"

namespace kestrel::hardware {

void Lamps::show(Control& lamp, Colour colour) {
  lamp.setColour(colour);
  screen_.repaint();
}

void Lamps::ErrorLampOn() {
  controls_.Error_label.setColour(Colour::Red);
  ProgramLampOff();
  DataFlowLampOff();
  screen_.repaint();
}

void Lamps::ErrorLampOff() { show(controls_.Error_label, Colour::ButtonFace); }

bool Lamps::errorLampIsOn() const { return controls_.Error_label.colour() == Colour::Red; }

void Lamps::ProgramLampOn() {
  show(controls_.Program_label, Colour::Green);
  setBits(latches_.RegShadow0, kBoardLamp);
  registers_.SetReg0();
}

void Lamps::ProgramLampOff() {
  show(controls_.Program_label, Colour::ButtonFace);
  clearBits(latches_.RegShadow0, kBoardLamp);
  registers_.SetReg0();
}

void Lamps::BlinkProgramLamp() {
  const bool isGreen = controls_.Program_label.colour() == Colour::Green;
  show(controls_.Program_label, isGreen ? Colour::ButtonFace : Colour::Green);
  latches_.RegShadow0 = static_cast<std::int16_t>(latches_.RegShadow0 ^ kBoardLamp);
  registers_.SetReg0();
}

void Lamps::DataFlowLampOn() { show(controls_.DataFlow_label, Colour::Green); }

void Lamps::DataFlowLampOff() { show(controls_.DataFlow_label, Colour::ButtonFace); }

}  // namespace kestrel::hardware
