#include "devices/families.h"

#include <algorithm>

#include "app/state/text_format.h"

namespace kestrel::devices {
namespace {

using enum ProgramRoutine;

// The old NMOS parts need pulses of a millisecond, the 8 Mbit parts short ones.
constexpr TimingFactors kSlow{.settle = 50, .speedB = 20'000, .speedA = 100'000};
constexpr TimingFactors kFast{.settle = 2, .speedB = 50, .speedA = 250};

constexpr std::array kEraseX28C256{EraseRoutine::EraseX28C256};
constexpr std::array kFlashChipErase{EraseRoutine::FlashChipErase};
constexpr std::array kFlashChipEraseAtmel{EraseRoutine::FlashChipEraseAtmel};
constexpr std::array kWrite24CXX{EraseRoutine::Write24CXX};
constexpr std::array kWrite24C32{EraseRoutine::Write24C32};
// A 24C16 is written by both serial writers; this is intended.
constexpr std::array kWriteBoth{EraseRoutine::Write24CXX, EraseRoutine::Write24C32};

// A row of each kind; the table below says what is a family's own.
constexpr Family eprom(std::string_view code, ProgramRoutine program, VppPin vppPin,
                       TimingFactors timing = {}) {
  return {.code = code,
          .kind = ChipKind::UvEprom,
          .bus = BusKind::Parallel,
          .timing = timing,
          .read = BusKind::Parallel,
          .hasBlankCheck = true,
          .hasDisplay = true,
          .display = DisplayAddress::Setadr,
          .program = program,
          .vppPin = vppPin};
}

constexpr Family nmosEprom(std::string_view code, ProgramRoutine program, VppPin vppPin,
                           TimingFactors timing = {}) {
  Family family = eprom(code, program, vppPin, timing);
  family.takes21And25V = true;
  return family;
}

constexpr Family eprom2732() {
  Family family = nmosEprom("P1", P2732, VppPin::Pin24, kSlow);
  family.pulses.milliseconds = 5;
  return family;
}

// The per-byte write and the chip erase of these are hooks that do nothing; this is intended.
constexpr Family flash32(std::string_view code) {
  return {.code = code,
          .kind = ChipKind::Flash,
          .bus = BusKind::Parallel,
          .addressMap = AddressMap::Plain,
          .read = BusKind::Parallel,
          .hasBlankCheck = true,
          .hasDisplay = true,
          .display = DisplayAddress::SetadrFlash,
          .offersErase = true,
          .program = ProgramFlash,
          .erase = kFlashChipErase,
          .flashCommands = FlashCommands::Jedec};
}

// Read and checked like the others; nothing programs or erases it.
constexpr Family flashWithoutWriter(std::string_view code) {
  return {.code = code,
          .kind = ChipKind::Flash,
          .bus = BusKind::Parallel,
          .read = BusKind::Parallel,
          .hasBlankCheck = true,
          .display = DisplayAddress::SetadrFlash,
          .offersErase = true,
          .flashCommands = FlashCommands::Jedec};
}

constexpr Family serialFamily(std::string_view code, ProgramRoutine program,
                              std::span<const EraseRoutine> erase, int addressBytes,
                              SerialWriter writer = {}) {
  return {.code = code,
          .kind = ChipKind::SerialEeprom,
          .bus = BusKind::Serial,
          .read = BusKind::Serial,
          .verify = BusKind::Serial,
          .offersErase = true,
          .program = program,
          .erase = erase,
          .addressBytes = addressBytes,
          .serialWriter = writer};
}

// clang-format off
constexpr std::array kFamilies{
    eprom2732(),                                                           // 2716, 2732
    nmosEprom("P2", P2764_128,  VppPin::Pin3, kSlow),                      // 2764
    nmosEprom("P3", P2764_128,  VppPin::Pin3),                             // 27128
    eprom(    "P4", P27256_040, VppPin::Pin3),                             // 27256
    eprom(    "P5", P27080,     VppPin::Pin24),                            // 27512
    eprom(    "P6", P27010_020, VppPin::Pin1),                             // 1 Mbit
    eprom(    "P7", P27010_020, VppPin::Pin1),                             // 2 Mbit
    eprom(    "P8", P27256_040, VppPin::Pin1),                             // 4 Mbit
    eprom(    "P9", P27080,     VppPin::Pin24, kFast),                     // 8 Mbit
    eprom(    "PM", None,       VppPin::None),                             // 27C080 OTP
    Family{.code = "FA", .kind = ChipKind::Flash, .bus = BusKind::Parallel, .read = BusKind::Parallel,  // AT29C256
           .hasBlankCheck = true, .hasDisplay = true, .display = DisplayAddress::SetadrFlash, .offersErase = true,
           .program = ProgramAT29C256, .erase = kFlashChipEraseAtmel,
           .flashCommands = FlashCommands::Atmel, .isProbedWhenSelected = true},
    flash32("FL"),                                                         // A29040
    flash32("FS"),                                                         // AM29F010
    flash32("FR"),                                                         // AM29F020
    flash32("FM"),                                                         // AM29F040, EN29F040
    flashWithoutWriter("FN"),                                              // AT29F040
    flashWithoutWriter("FO"),                                              // CAT28F001
    flashWithoutWriter("FP"),                                              // CAT28F010
    flashWithoutWriter("FQ"),                                              // CAT28F020
    Family{.code = "EN", .kind = ChipKind::Eeprom, .bus = BusKind::Parallel,                         // 28C256
           .addressMap = AddressMap::A18OnPin1A14OnPin3, .read = BusKind::Parallel,
           .hasBlankCheck = true, .hasDisplay = true, .display = DisplayAddress::SetadrXicor, .offersErase = true,
           .program = ProgramX28C256, .erase = kEraseX28C256},
    Family{.code = "EO", .kind = ChipKind::Eeprom, .bus = BusKind::Parallel, .offersErase = true},   // CAT28C256
    Family{.code = "EP", .kind = ChipKind::Eeprom, .bus = BusKind::Parallel, .offersErase = true},   // CAT28C257
    serialFamily("SA", Write24CXX, kWrite24CXX, 1),                        // 24C08
    serialFamily("SB", Write24CXX, kWriteBoth,  1),                        // 24C16
    serialFamily("SC", Write24C32, kWrite24C32, 2),                        // 24C32
    Family{.code = "SE", .kind = ChipKind::SerialEeprom, .bus = BusKind::Serial, .read = BusKind::Serial,  // 24C256
           .offersErase = true, .addressBytes = 1},
    Family{.code = "MJ", .kind = ChipKind::Microcontroller, .hasDataMemory = true},                           // AT90S2313
};
// clang-format on

constexpr Family kNoFamily{};

}  // namespace

std::span<const Family> families() { return kFamilies; }

const Family& familyOf(std::string_view code) {
  const auto* const found = std::ranges::find(kFamilies, code, &Family::code);
  return found == kFamilies.end() ? kNoFamily : *found;
}

std::int32_t wholePages(std::int32_t imageBytes, std::int32_t pageBytes) {
  return roundedInt32(static_cast<double>(imageBytes) / pageBytes);
}

std::int32_t bytesKept(const Family& family, Algorithms algorithms, std::int32_t chipBytes,
                       std::int32_t imageBytes) {
  if (algorithms == Algorithms::DataSheet) return 0;
  if (family.program != ProgramRoutine::Write24C32) return 0;
  const std::int32_t pageBytes = family.serialWriter.pageBytes;
  return std::max(chipBytes - wholePages(imageBytes, pageBytes) * pageBytes, 0);
}

}  // namespace kestrel::devices
