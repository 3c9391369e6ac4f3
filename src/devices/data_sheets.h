#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <variant>

#include "devices/wiring.h"

namespace kestrel::devices {

// What the data sheets want, a row a part. Where the makers of a part differ, the row is the
// sheet that the others' parts are compatible with.

/// When a programmed byte is read back.
enum class VerifyOrder {
  EachByte,  ///< after each pulse
  WholeChip  ///< after a pass with one pulse a byte, for parts whose /OE is the VPP pin
};

/// A UV EPROM or its one-time sister.
struct EpromSheet {
  std::int32_t pulseUs = 0;
  int mostPulses = 0;                      ///< a byte that is not right then has failed
  std::int32_t overprogramPerPulseUs = 0;  ///< one pulse of so long times the pulses given; 0: none
  std::int32_t longestOverprogramUs = 0;
  VerifyOrder order = VerifyOrder::EachByte;
  std::int32_t usualVppMillivolts = 12'500;
};

/// What a flash says that it is (JEDEC maker and device code).
struct ChipCodes {
  std::uint8_t maker = 0;
  std::uint8_t device = 0;

  bool operator==(const ChipCodes&) const = default;
};

/// An EEPROM or flash that writes a page by itself.
struct PageSheet {
  std::int32_t pageBytes = 64;
  std::int32_t longestCycleMs = 10;
  std::optional<ChipCodes> codes = {};
};

/// A 24Cxx.
struct SerialSheet {
  std::int32_t pageBytes = 16;
  int addressBytes = 1;  ///< with one, address bits 8 to 10 are in the select byte
  std::int32_t longestCycleMs = 10;
};

/// A 5 V flash with the JEDEC command set.
struct FlashSheet {
  ChipCodes codes = {};
  std::int32_t typicalEraseMs = 0;
  std::int32_t longestEraseMs = 0;
  std::int32_t longestByteUs = 200;
};

/// A flash that is programmed and erased by pulses of its command register, with 12 V.
struct TwelveVoltFlashSheet {
  ChipCodes codes = {};
};

/// What the board or the program cannot do, in words.
struct NotOffered {
  std::string_view reason;
};

struct DataSheet {
  std::string_view device;  ///< its name in the catalogue
  Wiring wiring = {};
  std::variant<NotOffered, EpromSheet, PageSheet, SerialSheet, FlashSheet, TwelveVoltFlashSheet>
      part;
  std::string_view classicLimit = {};  ///< what the classic procedures do not do right
  std::string_view markings = {};      ///< which markings mean another programming voltage
};

[[nodiscard]] std::span<const DataSheet> dataSheets();

/// The row of a device by its name in the catalogue; nullptr if there is none.
[[nodiscard]] const DataSheet* dataSheetOf(std::string_view device);

/// The row of the flash that has these codes; nullptr if there is none.
[[nodiscard]] const DataSheet* dataSheetOf(ChipCodes codes);

/// The programming voltage that the sheet of an EPROM asks for, in volts; the marking on a chip
/// decides where it differs. Nothing for other devices.
[[nodiscard]] std::optional<double> usualVpp(std::string_view device);

/// Whether it can be had with the algorithms of the data sheets.
[[nodiscard]] inline bool isOffered(const DataSheet* sheet) {
  return sheet != nullptr && !std::holds_alternative<NotOffered>(sheet->part);
}

/// Whether it has the software protection of EEPROMs that write pages.
[[nodiscard]] inline bool hasProtection(const DataSheet& sheet) {
  return std::holds_alternative<PageSheet>(sheet.part);
}

/// Whether it is asked for its code before it is programmed or erased.
[[nodiscard]] inline bool isAskedForCode(const DataSheet& sheet) {
  return std::holds_alternative<FlashSheet>(sheet.part) ||
         std::holds_alternative<TwelveVoltFlashSheet>(sheet.part);
}

}  // namespace kestrel::devices
