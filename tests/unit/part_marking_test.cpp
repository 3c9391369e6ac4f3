#include "devices/part_marking.h"

#include <gmock/gmock.h>

namespace kestrel::test {
namespace {

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
}  // namespace kestrel::test
