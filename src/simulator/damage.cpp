#include "simulator/damage.h"

#include <string>

namespace kestrel::sim {
namespace {

// Absolute maxima of the data sheets: of /OE and A9, and of the VPP pin of a 12 V flash.
constexpr int kTolerantMillivolts = 13500;
constexpr int kVppPinMillivolts = 14000;

}  // namespace

bool Damage::suffered(const PinInput& pins, std::string_view typeName, Findings& findings) {
  if (pins.vppPins == 0 || damaged_) return damaged_;
  const bool wrongPin = (pins.vppPins & ~(tolerantPins_ | vppPin_)) != 0;
  const bool onTolerantPin = (pins.vppPins & tolerantPins_) != 0;
  damaged_ =
      wrongPin || pins.vppMillivolts > (onTolerantPin ? kTolerantMillivolts : kVppPinMillivolts);
  if (damaged_) {
    findings.report(
        FindingKind::overVoltage,
        std::string(typeName) + (vppPin_ == 0 ? ": damaged: VPP on a part that lives on 5 V"
                                              : ": damaged: VPP above its maximum or elsewhere"),
        pins.now);
  }
  return damaged_;
}

}  // namespace kestrel::sim
