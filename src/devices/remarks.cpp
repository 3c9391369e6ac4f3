#include "devices/remarks.h"

#include "devices/data_sheets.h"

namespace kestrel::devices {

std::string_view kindOf(const Family& family) {
  switch (family.kind) {
    case ChipKind::UvEprom:
      return "UV EPROM";
    case ChipKind::Eeprom:
      return "EEPROM";
    case ChipKind::Flash:
      return "parallel flash";
    case ChipKind::SerialEeprom:
      return "serial EEPROM";
    case ChipKind::Microcontroller:
      return "microcontroller";
    case ChipKind::Unknown:
      break;
  }
  return "not known";
}

std::string_view voltageLimit(const Family& family, std::int16_t vppClass) {
  constexpr std::int16_t kTo21Volts = 2;
  if (vppClass < kTo21Volts || family.takes21And25V) return {};
  return "always programmed at 12.5 V on models 5 and 6";
}

std::string_view whyNoBlankCheck(const Family& family) {
  if (family.hasBlankCheck) return {};
  return family.bus == BusKind::Serial ? "a serial EEPROM has no blank check"
                                       : "there is no routine that blank-checks this device";
}

std::string_view whyNoErase(const Family& family) {
  if (family.offersErase) return {};
  return family.kind == ChipKind::UvEprom ? "an EPROM is erased under the lamp, not by the board"
                                          : "there is no routine that erases this device";
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
