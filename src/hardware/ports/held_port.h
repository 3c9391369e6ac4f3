#pragma once

#include <string>

#include "platform/port_access.h"

namespace kestrel::ports {

/// A way to one board, behind one of the three bases. Made, it is open but not yet taken; its
/// destructor gives it back. A read of what is no status register gives FFh.
class HeldPort : public PortAccess {
 public:
  /// Takes it for this program alone and switches the board's voltages off. Throws PortError or
  /// RuntimeError.
  virtual void take() = 0;

  /// Switches off and gives it back; true for a port that is not taken. False when the voltages
  /// could not be switched off.
  virtual bool giveBack() noexcept = 0;

  /// Takes every voltage off; false when it did not work.
  virtual bool switchOff() noexcept = 0;

  /// True after it was lost: to be taken anew.
  [[nodiscard]] virtual bool isGone() const noexcept = 0;

  /// Why it is gone, with the cure.
  [[nodiscard]] virtual std::string lossText() const = 0;

  /// True when a voltage was on and could not be switched off.
  [[nodiscard]] virtual bool mayVoltageBeOn() const noexcept = 0;
};

}  // namespace kestrel::ports
