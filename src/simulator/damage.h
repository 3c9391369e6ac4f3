#pragma once

#include <string_view>

#include "simulator/chip.h"

namespace kestrel::sim {

/// What the programming supply does to a part that lives on 5 V, or takes 12 V on one pin.
///
/// A pin that takes more (the /OE of most parallel memories, for modes that the board does not
/// use) is named, and the VPP pin if there is one. Every other pin is damaged by any VPP, the
/// former above 13.5 V, the latter above 14 V.
class Damage {
 public:
  explicit Damage(PinLevels tolerantPins, PinLevels vppPin = 0)
      : tolerantPins_(tolerantPins), vppPin_(vppPin) {}

  /// True once the part is damaged; it answers no more. The finding is reported once.
  bool suffered(const PinInput& pins, std::string_view typeName, Findings& findings);

  [[nodiscard]] bool isDamaged() const { return damaged_; }

 private:
  PinLevels tolerantPins_;
  PinLevels vppPin_;
  bool damaged_ = false;
};

}  // namespace kestrel::sim
