#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "app/state/programmer_state.h"

namespace kestrel::devices {

/// How the chip is reached: by its address and data pins, or by the two wires SCL and SDA.
enum class BusKind { None, Parallel, Serial };

/// What the chip is.
enum class ChipKind { Unknown, UvEprom, Eeprom, Flash, SerialEeprom, Microcontroller };

/// Where the address lines go that do not follow the plain map of socket pins.
enum class AddressMap {
  Plain,               ///< A16 to A19 to latch 3 bits 0 to 3
  A18OnPin1,           ///< A18 to latch 3 bit 3 (socket pin 1) instead of bit 2
  A18OnPin1A14OnPin3,  ///< and A14 to latch 1 bit 7, because bit 6 is the chip's /WE
};

/// How the device display puts an address on the pins.
enum class DisplayAddress { None, Setadr, SetadrXicor, SetadrFlash };

/// Factors of the settling and pulse loops (selection/device_selection).
struct TimingFactors {
  std::int32_t settle = 5;
  std::int32_t speedB = 100;
  std::int32_t speedA = 500;
};

/// The socket pin that latch 0 puts VPP on before the first pulse. Pin 24 is switched by each
/// pulse.
enum class VppPin { None, Pin1, Pin3, Pin24 };

/// The pulses of one byte of an EPROM.
struct PulsePlan {
  std::int16_t budget = 255;      ///< the byte has failed when so many less one did not do
  std::int16_t longBelow = 200;   ///< pulses grow long when fewer than this are left
  std::int32_t milliseconds = 0;  ///< length of a pulse; 0: DelayCountB counts, long ones A more
};

/// The routine that the Program command calls, by its name in operations/.
enum class ProgramRoutine {
  None,
  P2732,
  P2764_128,
  P27256_040,
  P27080,
  P27010_020,
  ProgramX28C256,
  ProgramAT29C256,
  ProgramFlash,
  Write24CXX,
  Write24C32,
};

/// The routines that Erase Chip calls.
enum class EraseRoutine {
  EraseX28C256,
  FlashChipErase,
  FlashChipEraseAtmel,
  Write24CXX,
  Write24C32,
};

/// The command cycles that a flash takes.
enum class FlashCommands { None, Jedec, Atmel };

/// What the two-byte writer of the serial chips is told.
struct SerialWriter {
  std::string_view chip = "24C32";  ///< in the log
  std::int32_t pageBytes = 32;
};

/// What a device family can do, and how. What a row does not name it does not have.
struct Family {
  std::string_view code;  ///< FamilyLetter and FamilySubCode of the catalogue
  ChipKind kind = ChipKind::Unknown;
  BusKind bus = BusKind::None;
  AddressMap addressMap = AddressMap::A18OnPin1;
  TimingFactors timing = {};

  // Commands.
  BusKind read = BusKind::None;
  bool hasBlankCheck = false;
  BusKind verify = BusKind::Parallel;
  bool hasDisplay = false;  ///< Display draws; a page turned later is drawn in any case
  DisplayAddress display = DisplayAddress::None;
  bool offersErase = false;  ///< Erase Chip and Show Flash Code ID#
  ProgramRoutine program = ProgramRoutine::None;
  std::span<const EraseRoutine> erase = {};  ///< one after the other

  // EPROMs.
  VppPin vppPin = VppPin::None;
  bool takes21And25V = false;  ///< the routine applies 21 and 25 V to devices of VppClass 3
  PulsePlan pulses = {};

  // Others.
  int addressBytes = 0;         ///< of a serial chip
  SerialWriter serialWriter{};  ///< for Write24C32, which a 24C16's erase calls too
  FlashCommands flashCommands = FlashCommands::None;
  bool isProbedWhenSelected = false;
  bool hasDataMemory = false;
};

/// They alone take a programming voltage from the board in the classic way.
[[nodiscard]] constexpr bool isEprom(const Family& family) { return family.vppPin != VppPin::None; }

/// All families of the catalogue.
[[nodiscard]] std::span<const Family> families();

/// The family of the code; for a code that is none a family that has no command.
[[nodiscard]] const Family& familyOf(std::string_view code);

/// How many pages of a serial chip the classic Program writes: whole ones, to the one that is
/// nearest to the end of the image.
[[nodiscard]] std::int32_t wholePages(std::int32_t imageBytes, std::int32_t pageBytes);

/// How many bytes at the end of the chip Program leaves as they are; by the data sheet none.
[[nodiscard]] std::int32_t bytesKept(const Family& family, Algorithms algorithms,
                                     std::int32_t chipBytes, std::int32_t imageBytes);

}  // namespace kestrel::devices
