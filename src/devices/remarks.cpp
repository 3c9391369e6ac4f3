#include "devices/remarks.h"

namespace kestrel::devices {

std::string_view whyNoBlankCheck(const Family& family) {
  if (family.hasBlankCheck) return {};
  return family.bus == BusKind::Serial ? "a serial EEPROM has no blank check"
                                       : "there is no routine that blank-checks this device";
}

std::string_view whyNoErase(const Family& family) {
  if (family.offersErase) return {};
  return "an EPROM is erased under the lamp, not by the board";
}

std::string_view whyNoDisplay(const Family& family) {
  if (family.hasDisplay) return {};
  return family.bus == BusKind::Serial ? "there is no device display for a serial EEPROM"
                                       : "there is no device display for this device";
}

}  // namespace kestrel::devices
