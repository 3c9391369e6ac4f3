#pragma once

#include <array>

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "hardware/bus_primitives.h"
#include "hardware/lamps.h"

namespace kestrel::hardware {

/// The error alert: the red lamp, with the four operation buttons (Program, Verify, Read, Display)
/// locked until it is dismissed.
///
/// While they are locked they stay disabled: whoever enables or disables one of them changes what
/// will be restored instead.
class ErrorAlert {
 public:
  ErrorAlert(ShellState& shell, Controls& controls, Reporting& reporting, Lamps& lamps,
             BusPrimitives& bus);

  void RaiseErrorAlert();

  /// Dismisses the alert; without one a click does nothing.
  void Error_label_Click();

  [[nodiscard]] bool isRaised() const { return lamps_.errorLampIsOn(); }

  /// Enables or disables a button, one of the four or any other.
  void setEnabled(Button& button, bool enabled);
  void enable(Button& button) { setEnabled(button, true); }

  /// Whether a button is enabled, or will be once the lock is off.
  [[nodiscard]] bool isEnabled(const Button& button) const;

  /// Gives the four the recorded state back; nothing happens when they are not locked.
  void unlock();

 private:
  /// Records the state of the four in SavedButtonState and disables them; locked ones stay as
  /// they were recorded.
  void lock();

  ShellState& shell_;
  Controls& controls_;
  Reporting& reporting_;
  Lamps& lamps_;
  BusPrimitives& bus_;
  std::array<Button*, 4> buttons_;
  bool locked_ = false;
};

}  // namespace kestrel::hardware
