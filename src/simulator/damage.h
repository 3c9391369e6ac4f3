#pragma once

#include <string_view>

#include "simulator/chip.h"

namespace kestrel::sim {

/// What the programming supply does to a part that lives on 5 V alone.
///
/// A pin that takes more (the /OE of most parallel memories, for modes that the board does not
/// use) is named; every other pin is damaged by any VPP, and these above 13.5 V.
class Damage {
 public:
  explicit Damage(PinLevels tolerantPins) : tolerantPins_(tolerantPins) {}

  /// True once the part is damaged; it answers no more. The finding is reported once.
  bool suffered(const PinInput& pins, std::string_view typeName, Findings& findings);

 private:
  PinLevels tolerantPins_;
  bool damaged_ = false;
};

}  // namespace kestrel::sim
