#include "devices/remarks.h"

#include "devices/data_sheets.h"

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

std::string_view classicLimit(std::string_view device) {
  const DataSheet* const sheet = dataSheetOf(device);
  return isOffered(sheet) ? sheet->classicLimit : std::string_view();
}

std::string_view whyNoDataSheet(std::string_view device) {
  const DataSheet* const sheet = dataSheetOf(device);
  if (sheet == nullptr) return "there is no data sheet of it here";
  const auto* const notOffered = std::get_if<NotOffered>(&sheet->part);
  return notOffered == nullptr ? std::string_view() : notOffered->reason;
}

std::string usualVoltage(std::string_view device) {
  const DataSheet* const sheet = dataSheetOf(device);
  if (sheet == nullptr) return {};
  if (std::holds_alternative<TwelveVoltFlashSheet>(sheet->part)) {
    return "12 V; the 12.5 V of the board are within its limits";
  }
  const auto* const eprom = std::get_if<EpromSheet>(&sheet->part);
  if (eprom == nullptr) return {};
  constexpr int kMillivolts = 1000;
  const int volts = eprom->usualVppMillivolts / kMillivolts;
  const bool isHalf = eprom->usualVppMillivolts % kMillivolts != 0;
  std::string text = std::to_string(volts) + (isHalf ? ".5 V" : " V");
  if (sheet->markings.empty()) return text;
  return text + "; the marking on the chip decides (" + std::string(sheet->markings) + ")";
}

}  // namespace kestrel::devices
