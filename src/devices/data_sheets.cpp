#include "devices/data_sheets.h"

#include <algorithm>
#include <array>

namespace kestrel::devices {
namespace {

// Supplies and levels at rest. Bits of latch 1: pin 28 (supply of 24 pins), 29 and 3; of latch 3:
// pin 30 (supply of 28 pins), 31 and 1. A VPP pin of its own is held at 5 V.
constexpr std::uint8_t kPin28 = 0x20;
constexpr std::uint8_t kPin29 = 0x40;
constexpr std::uint8_t kPin3 = 0x80;
constexpr std::uint8_t kPin30 = 0x02;
constexpr std::uint8_t kPin31 = 0x04;
constexpr std::uint8_t kPin1 = 0x08;

// clang-format off
constexpr Wiring k2732   {.vpp = VppPin::Pin24, .latch1High = kPin28};
constexpr Wiring k2764   {.strobe = Strobe::Pin29, .vpp = VppPin::Pin3, .latch1High = kPin3 | kPin29, .latch3High = kPin30};
constexpr Wiring k27256  {.vpp = VppPin::Pin3, .latch1High = kPin3, .latch3High = kPin30};
constexpr Wiring k27512  {.vpp = VppPin::Pin24, .latch3High = kPin30};
constexpr Wiring k27010  {.strobe = Strobe::Pin31, .vpp = VppPin::Pin1, .latch3High = kPin1 | kPin31};
constexpr Wiring k27040  {.vpp = VppPin::Pin1, .latch3High = kPin1};
constexpr Wiring k27080  {.vpp = VppPin::Pin24};
constexpr Wiring k28C256 {.lines = AddressLines::A14OnPin3, .strobe = Strobe::Pin29, .latch1High = kPin29, .latch3High = kPin30};
constexpr Wiring k29C256 {.strobe = Strobe::Pin3, .latch1High = kPin3, .latch3High = kPin30};
constexpr Wiring k29F    {.lines = AddressLines::A18OnPin1, .strobe = Strobe::Pin31, .latch3High = kPin31};
constexpr Wiring k28F    {.strobe = Strobe::Pin31, .vpp = VppPin::Pin1, .latch3High = kPin1 | kPin31};
constexpr Wiring k24C    {.isSerial = true};

// One pulse a byte. The sheets of the old NMOS parts give no limit but this.
constexpr EpromSheet k50ms25V{.pulseUs = 50'000, .mostPulses = 1, .usualVppMillivolts = 25'000};
constexpr EpromSheet k50ms21V{.pulseUs = 50'000, .mostPulses = 1, .usualVppMillivolts = 21'000};
// Pulses of 1 ms until the byte is right, then one that is so many times as long as they were.
constexpr EpromSheet k1msOver4{.pulseUs = 1'000, .mostPulses = 15, .overprogramPerPulseUs = 4'000, .longestOverprogramUs = 63'000, .usualVppMillivolts = 21'000};
constexpr EpromSheet k1msOver3{.pulseUs = 1'000, .mostPulses = 25, .overprogramPerPulseUs = 3'000, .longestOverprogramUs = 78'750};
// CMOS: short pulses, no overprogramming.
constexpr EpromSheet k100us{.pulseUs = 100, .mostPulses = 25};
constexpr EpromSheet k100usOnOe{.pulseUs = 100, .mostPulses = 25, .order = VerifyOrder::WholeChip};
constexpr EpromSheet k50usOnOe{.pulseUs = 50, .mostPulses = 25, .order = VerifyOrder::WholeChip};

// Write cycles of 10 ms at most.
constexpr PageSheet kPage64{.pageBytes = 64, .longestCycleMs = 10};
constexpr PageSheet kPage128{.pageBytes = 128, .longestCycleMs = 10};
constexpr PageSheet kAT29C256{.pageBytes = 64, .longestCycleMs = 10, .codes = ChipCodes{0x1F, 0xDC}};
// The times of the AM29F020 are taken between those of 1 and 4 Mbit.
constexpr FlashSheet kAM29F010{.codes = {0x01, 0x20}, .typicalEraseMs = 1'000, .longestEraseMs = 14'000};
constexpr FlashSheet kAM29F020{.codes = {0x01, 0xB0}, .typicalEraseMs = 2'000, .longestEraseMs = 28'000};
constexpr FlashSheet kAM29F040{.codes = {0x01, 0xA4}, .typicalEraseMs = 8'000, .longestEraseMs = 64'000};
constexpr FlashSheet kA29040  {.codes = {0x37, 0x86}, .typicalEraseMs = 8'000, .longestEraseMs = 64'000};
constexpr FlashSheet kEN29F040{.codes = {0x1C, 0x04}, .typicalEraseMs = 8'000, .longestEraseMs = 64'000};
constexpr TwelveVoltFlashSheet kCAT28F010{.codes = {0x31, 0xB4}};
constexpr TwelveVoltFlashSheet kCAT28F020{.codes = {0x31, 0xBD}};
constexpr SerialSheet k24C08and16{.pageBytes = 16, .addressBytes = 1, .longestCycleMs = 10};
constexpr SerialSheet k24C32{.pageBytes = 32, .addressBytes = 2, .longestCycleMs = 10};
constexpr SerialSheet k24C256{.pageBytes = 64, .addressBytes = 2, .longestCycleMs = 10};

// What the classic procedures do to a true chip; told where they are chosen.
constexpr std::string_view kShortPulses = "pulses of 5 ms where the data sheet has one of 50 ms";
constexpr std::string_view kFades = "no overprogram pulse, without which the bytes may fade";
constexpr std::string_view kHalf = "A18 does not reach the chip: its upper half shows the lower one";
constexpr std::string_view kThreeQuarters = "A18 does not reach the chip: a quarter of it stays out of reach";
constexpr std::string_view kSlowChip = "a chip that writes a page in 5 ms or more fails at the usual speed: slider to 12";
constexpr std::string_view kFrom300h = "writing begins at 300h and ends with an error";
constexpr std::string_view kWrongErase = "writing begins at 300h and ends with an error; erasing leaves most bytes";

constexpr std::array kDataSheets{
    DataSheet{"Eprom 2716", {}, NotOffered{"pin 21 of a 2716 takes the programming voltage, and the board has no switch there"}},
    DataSheet{"Eprom 2732A",                   k2732,   k50ms21V, kShortPulses, "2732: 25 V, 2732B: 12.5 V"},
    DataSheet{"Eprom 2732B",                   k2732,   k1msOver3, kFades, "2732: 25 V, 2732A: 21 V"},
    DataSheet{"Eprom 2732",                    k2732,   k50ms25V, kShortPulses, "2732A: 21 V, 2732B: 12.5 V"},
    DataSheet{"Eprom 27C32",                   k2732,   k50ms25V, kShortPulses, "some makers' parts: 12.5 V"},
    DataSheet{"Eprom 2764",                    k2764,   k1msOver4, kFades, "2764A: 12.5 V"},
    DataSheet{"Eprom 27C64",                   k2764,   k100us},
    DataSheet{"Eprom 27128",                   k2764,   k1msOver4, kFades, "27128A: 12.5 V"},
    DataSheet{"Eprom 27C128",                  k2764,   k100us},
    DataSheet{"Eprom 27256",                   k27256,  k1msOver3, kFades},
    DataSheet{"Eprom 27C256",                  k27256,  k100us},
    DataSheet{"Eprom 27C259",                  k27256,  k100us},
    DataSheet{"Eprom 27C512",                  k27512,  k100usOnOe},
    DataSheet{"Eprom 27C1001",                 k27010,  k100us},
    DataSheet{"Eprom 27C010",                  k27010,  k100us},
    DataSheet{"Eprom 27C2001",                 k27010,  k100us},
    DataSheet{"Eprom 27C020",                  k27010,  k100us},
    DataSheet{"Eprom 27C4001",                 k27040,  k100us, kHalf},
    DataSheet{"Eprom 27C040",                  k27040,  k100us, kHalf},
    DataSheet{"Eprom 27C801",                  k27080,  k50usOnOe, kThreeQuarters},
    DataSheet{"Eprom 27C080",                  k27080,  k50usOnOe, kThreeQuarters},
    DataSheet{"Eprom 27C080 OTP",              k27080,  k50usOnOe},
    DataSheet{"Flash Atmel AT29C256",          k29C256, kAT29C256},
    DataSheet{"Flash AMIC A29040",             k29F,    kA29040},
    DataSheet{"Flash AMD AM29F010",            k29F,    kAM29F010},
    DataSheet{"Flash AMD AM29F020",            k29F,    kAM29F020},
    DataSheet{"Flash AMD AM29F040",            k29F,    kAM29F040},
    DataSheet{"Flash EON EN29F040",            k29F,    kEN29F040},
    DataSheet{"Flash Catalyst CAT28F010",      k28F,    kCAT28F010},
    DataSheet{"Flash Catalyst CAT28F020",      k28F,    kCAT28F020},
    DataSheet{"Eeprom XICOR X28C256",          k28C256, kPage64, kSlowChip},
    DataSheet{"Eeprom Catalyst CAT28C256",     k28C256, kPage64},
    DataSheet{"Eeprom Catalyst CAT28C257",     k28C256, kPage128},
    DataSheet{"Eeprom 24C08 Serial (8 pins)",  k24C,    k24C08and16, kFrom300h},
    DataSheet{"Eeprom 24C16 Serial (8 pins)",  k24C,    k24C08and16, kWrongErase},
    DataSheet{"Eeprom 24C32 Serial (8 pins)",  k24C,    k24C32},
    DataSheet{"Eeprom 24C256 Serial (8 pins)", k24C,    k24C256},
    DataSheet{"Flash Atmel AT29F040", {}, NotOffered{"its commands are neither written nor proved here"}},
    DataSheet{"Flash Catalyst CAT28F001", {}, NotOffered{"its commands are neither written nor proved here"}},
    DataSheet{"uC Atmel AT90S2313 Micro", {}, NotOffered{"it is programmed over pins that the socket does not reach"}},
};
// clang-format on

std::optional<ChipCodes> codesOf(const DataSheet& sheet) {
  if (const auto* const flash = std::get_if<FlashSheet>(&sheet.part)) return flash->codes;
  if (const auto* const flash = std::get_if<TwelveVoltFlashSheet>(&sheet.part)) return flash->codes;
  const auto* const page = std::get_if<PageSheet>(&sheet.part);
  return page == nullptr ? std::nullopt : page->codes;
}

}  // namespace

std::span<const DataSheet> dataSheets() { return kDataSheets; }

const DataSheet* dataSheetOf(std::string_view device) {
  const auto* const found = std::ranges::find(kDataSheets, device, &DataSheet::device);
  return found == kDataSheets.end() ? nullptr : found;
}

const DataSheet* dataSheetOf(ChipCodes codes) {
  const auto* const found = std::ranges::find(kDataSheets, std::optional(codes), codesOf);
  return found == kDataSheets.end() ? nullptr : found;
}

std::optional<double> usualVpp(std::string_view device) {
  constexpr double kMillivoltsPerVolt = 1000.0;
  const DataSheet* const sheet = dataSheetOf(device);
  const auto* const eprom = sheet == nullptr ? nullptr : std::get_if<EpromSheet>(&sheet->part);
  if (eprom == nullptr) return std::nullopt;
  return eprom->usualVppMillivolts / kMillivoltsPerVolt;
}

}  // namespace kestrel::devices
