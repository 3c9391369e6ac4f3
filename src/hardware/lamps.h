#pragma once

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "hardware/registers.h"
#include "platform/screen.h"

namespace kestrel::hardware {

/// The three indicator lamps of the form; the program lamp has a twin on the board, latch 0 bit 3.
/// Each is repainted at once.
class Lamps {
 public:
  Lamps(LatchState& latches, Controls& controls, Registers& registers, Screen& screen)
      : latches_(latches), controls_(controls), registers_(registers), screen_(screen) {}

  /// Red, and the other two off. Loads latch 0, as the program lamp goes off.
  void ErrorLampOn();
  void ErrorLampOff();
  [[nodiscard]] bool errorLampIsOn() const;

  void ProgramLampOn();
  void ProgramLampOff();

  /// The other colour on the form and the other level on the board, each for itself.
  void BlinkProgramLamp();

  void DataFlowLampOn();
  void DataFlowLampOff();

 private:
  void show(Control& lamp, Colour colour);

  LatchState& latches_;
  Controls& controls_;
  Registers& registers_;
  Screen& screen_;
};

}  // namespace kestrel::hardware
