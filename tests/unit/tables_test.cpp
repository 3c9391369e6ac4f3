// The catalogue against the pinouts and voltages of the data sheets; what a chip's marking names.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "app/state/text_format.h"
#include "devices/device_table.h"
#include "devices/families.h"
#include "devices/part_marking.h"

namespace kestrel {
namespace {

// Socket pins as bits: those of latch 1, and eight places above those of latch 3.
constexpr int kPin28 = 0x20, kPin29 = 0x40, kPin3 = 0x80;
constexpr int kPin30 = 0x200, kPin31 = 0x400, kPin1 = 0x800;

/// What a chip at rest needs at 5 V: supply, VPP, /PGM or /WE.
struct Pinout {
  std::string_view family;  ///< code, or the letter for all others of it
  int sizeKB;               ///< 0: the device's own
  int high;
};

// clang-format off
constexpr Pinout kPinouts[]{
    {"P1", 4, kPin28},                                                             // 24 pins: supply
    {"P2", 8, kPin30 | kPin3 | kPin29}, {"P3", 16, kPin30 | kPin3 | kPin29},       // 28: supply, VPP, /PGM
    {"P4", 32, kPin30 | kPin3}, {"P5", 64, kPin30},                                // 28: supply, VPP
    {"E", 32, kPin30 | kPin29}, {"FA", 32, kPin30 | kPin3},                        // 28: supply, /WE
    {"P6", 128, kPin1 | kPin31}, {"P7", 256, kPin1 | kPin31}, {"P8", 512, kPin1},  // 32: VPP, /PGM
    {"P9", 1024, 0}, {"PM", 1024, 0},                                              // 32: VPP is /OE
    {"FO", 128, kPin1 | kPin31}, {"FP", 128, kPin1 | kPin31}, {"FQ", 256, kPin1 | kPin31},
    {"FS", 128, kPin31}, {"FR", 256, kPin31}, {"F", 512, kPin31},                  // 32: /WE
    {"S", 0, 0}, {"M", 0, 0}};
// clang-format on

const Pinout* pinoutOf(std::string_view code) {
  const auto* const found = std::ranges::find(kPinouts, code, &Pinout::family);
  if (found != std::end(kPinouts) || code.size() < 2) return found;
  return pinoutOf(code.substr(0, 1));
}

// More than 14 V destroys every other part.
constexpr std::string_view kTake21Or25V[]{"Eprom 2716", "Eprom 2732A", "Eprom 2732", "Eprom 27C32",
                                          "Eprom 2764", "Eprom 27128", "Eprom 27256"};

TEST(Catalogue, givesEachChipSupplyIdleLevelsAndVoltagesOfItsDataSheet) {
  ProgrammerState s;
  devices::BuildDeviceTable(s, s);
  for (const auto& [name, letter, subCode, sizeKB, latch1, latch3, vppClass, listed] :
       s.DeviceTable) {
    if (name.empty()) continue;
    const Pinout* const pinout = pinoutOf(letter + subCode);
    ASSERT_NE(pinout, std::end(kPinouts)) << name;
    const int low = name.starts_with("Eprom 27C259 ") ? kPin3 : 0;  // read with VPP at 0 V
    EXPECT_EQ(std::stoi(latch1) | std::stoi(latch3) << 8, pinout->high & ~low) << name;
    EXPECT_TRUE(pinout->sizeKB == 0 || std::stoi(sizeKB) == pinout->sizeKB) << name;
    const bool isOld = std::ranges::count(kTake21Or25V, trimmed(name)) != 0;
    EXPECT_EQ(vppClass, letter != "P" ? "0" : isOld ? "3" : "1") << name;
    const bool hasWriter =
        devices::familyOf(letter + subCode).program != devices::ProgramRoutine::None;
    EXPECT_TRUE(listed == "N" || hasWriter) << name;
    EXPECT_FALSE(hasWriter && name.find(" OTP") != std::string::npos) << "programmed once at most";
    if (const std::size_t at = name.find(" 24C"); at != std::string::npos) {  // 24C32: 32 Kbit
      const int kilobits = std::stoi(name.substr(at + 4));
      EXPECT_EQ(std::stoi(sizeKB), kilobits / 8) << name;
      const int addressBytes = devices::familyOf(letter + subCode).addressBytes;
      EXPECT_TRUE(listed == "N" || addressBytes == (kilobits > 16 ? 2 : 1)) << name;
    }
  }
}

using devices::hasPart;
using devices::partNames;
using testing::ElementsAre;

TEST(PartMarking, losesMakerRevisionPackageAndSpeedInThisOrder) {
  EXPECT_THAT(partNames("m27c256b-12f1"), ElementsAre("27C256B", "27C256"));
  EXPECT_THAT(partNames("AM27C010"), ElementsAre("27C010"));
  EXPECT_THAT(partNames(" TMS2732A JL"), ElementsAre("2732A", "2732")) << "its own part first";
  EXPECT_THAT(partNames("24C16/P"), ElementsAre("24C16"));
  EXPECT_THAT(partNames("bootloader"), ElementsAre());
}

TEST(PartMarking, aDeviceHasThePartOfAnyOfItsWordsAndNoShorterOne) {
  EXPECT_TRUE(hasPart("Eprom 27C256             ", "27C256"));
  EXPECT_TRUE(hasPart("Eeprom XICOR X28C256", "28C256")) << "the maker's letter aside";
  EXPECT_FALSE(hasPart("Eprom 2732A", "2732")) << "21 V and 25 V";
  EXPECT_FALSE(hasPart("Eprom 27C256", "27C25"));
}

}  // namespace
}  // namespace kestrel
