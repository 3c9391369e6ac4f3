#pragma once

#include <array>

#include "app/state/controls.h"
#include "app/state/programmer_state.h"

namespace kestrel {

/// The four operation buttons that an error alert locks: Program, Verify, Read, Display.
///
/// While they are locked they stay disabled: whoever enables or disables one of them changes what
/// will be restored instead.
class OperationButtons {
 public:
  OperationButtons(ProgrammerState& state, Controls& controls);

  /// Enables or disables a button, one of the four or any other.
  void setEnabled(Button& button, bool enabled);
  void enable(Button& button) { setEnabled(button, true); }

  /// Records the state of the four in SavedButtonState and disables them; locked ones stay as
  /// they were recorded.
  void lock();

  /// Gives the four the recorded state back; nothing happens when they are not locked.
  void unlock();

  [[nodiscard]] bool areLocked() const { return locked_; }

 private:
  ProgrammerState& state_;
  std::array<Button*, 4> buttons_;
  bool locked_ = false;
};

}  // namespace kestrel
