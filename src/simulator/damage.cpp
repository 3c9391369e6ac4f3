#include "simulator/damage.h"

#include <string>

namespace kestrel::sim {
namespace {

constexpr int kTolerantMillivolts = 13500;  // absolute maximum of /OE and A9 in the data sheets

}  // namespace

bool Damage::suffered(const PinInput& pins, std::string_view typeName, Findings& findings) {
  if (pins.vppPins == 0 || damaged_) return damaged_;
  const bool wrongPin = (pins.vppPins & ~tolerantPins_) != 0;
  damaged_ = wrongPin || pins.vppMillivolts > kTolerantMillivolts;
  if (damaged_) {
    findings.report(FindingKind::overVoltage,
                    std::string(typeName) + ": damaged: VPP on a part that lives on 5 V", pins.now);
  }
  return damaged_;
}

}  // namespace kestrel::sim
