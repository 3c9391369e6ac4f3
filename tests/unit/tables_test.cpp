// The start-up tables against what stands in the data sheets and on the drawing.

#include <gtest/gtest.h>

#include <algorithm>

#include "app/state/text_format.h"
#include "devices/device_table.h"
#include "hardware/decode_tables.h"

namespace kestrel {
namespace {

TEST(DecodeTables, model4PermutesTheLinesAndInvertsTwo) {
  ProgrammerState s;
  BuildDecodeTables(s);
  const std::vector<std::pair<int, int>> expected{
      {0x00, 0x22}, {0x01, 0x2A}, {0x02, 0x26}, {0x04, 0x23}, {0x08, 0x20}, {0x10, 0xA2},
      {0x20, 0x62}, {0x40, 0x32}, {0x80, 0x02}, {0x77, 0xFF}, {0x88, 0x00}, {0xFF, 0xDD}};
  for (const auto& [index, value] : expected) {
    EXPECT_EQ(s.StatusDecode4.at(static_cast<std::size_t>(index)), value) << index;
  }
}

TEST(DecodeTables, models5And6TakeStatusBits3To6AndTheMapsAreStraight) {
  ProgrammerState s;
  BuildDecodeTables(s);
  EXPECT_EQ(s.StatusDecodeLow[0x87], 0x00);
  EXPECT_EQ(s.StatusDecodeLow[0x48], 0x09);
  EXPECT_EQ(s.StatusDecodeLow[0xFF], 0x0F);
  EXPECT_EQ(s.StatusDecodeHigh[0x70], 0xE0);
  EXPECT_EQ(s.StatusDecodeHigh[0xFF], 0xF0);
  EXPECT_EQ(s.AddrMapMid[255], 255);
  EXPECT_EQ(s.AddrMapHigh[16], 16);
}

// Name, letter, sub-code, KB, fixed bits of latch 1 and latch 3, voltage class, listed.
// clang-format off
constexpr std::array<const char*, 40> kRows{
    "Eprom 2716|P|1|4|32|0|3|N", "Eprom 2732A|P|1|4|32|0|3|Y",
    "Eprom 2732B|P|1|4|32|0|1|Y", "Eprom 2732|P|1|4|32|0|3|Y",
    "Eprom 27C32|P|1|4|32|0|3|Y", "Eprom 2764|P|2|8|192|2|3|Y",
    "Eprom 27C64|P|2|8|192|2|1|Y", "Eprom 27128|P|3|16|192|2|3|Y",
    "Eprom 27C128|P|3|16|192|2|1|Y", "Eprom 27256|P|4|32|128|2|3|Y",
    "Eprom 27C256|P|4|32|128|2|1|Y", "Eprom 27C259|P|4|32|0|2|1|Y",
    "Eprom 27C512|P|5|64|0|2|1|Y", "Eprom 27C1001|P|6|128|0|12|1|Y",
    "Eprom 27C010|P|6|128|0|12|1|Y", "Eprom 27C2001|P|7|256|0|12|1|Y",
    "Eprom 27C020|P|7|256|0|12|1|Y", "Eprom 27C4001|P|8|512|0|8|1|Y",
    "Eprom 27C040|P|8|512|0|8|1|Y", "Eprom 27C801|P|9|1024|0|0|1|Y",
    "Eprom 27C080|P|9|1024|0|0|1|Y", "Eprom 27C080 OTP|P|M|1024|0|0|1|N",
    "Flash Atmel AT29C256|F|A|32|128|2|0|N", "Flash AMIC A29040|F|L|512|0|4|0|N",
    "Flash AMD AM29F010|F|S|128|0|4|0|N", "Flash AMD AM29F020|F|R|256|0|4|0|N",
    "Flash AMD AM29F040|F|M|512|0|4|0|N", "Flash EON EN29F040|F|M|512|0|4|0|N",
    "Flash Atmel AT29F040|F|N|512|0|4|0|N", "Flash Catalyst CAT28F001|F|O|128|0|12|0|N",
    "Flash Catalyst CAT28F010|F|P|128|0|12|0|N", "Flash Catalyst CAT28F020|F|Q|256|0|12|0|N",
    "Eeprom XICOR X28C256|E|N|32|64|2|0|Y", "Eeprom Catalyst CAT28C256|E|O|32|64|2|0|N",
    "Eeprom Catalyst CAT28C257|E|P|32|64|2|0|N", "Eeprom 24C08 Serial (8 pins)|S|A|1|0|0|0|Y",
    "Eeprom 24C16 Serial (8 pins)|S|B|2|0|0|0|Y", "Eeprom 24C32 Serial (8 pins)|S|C|4|0|0|0|Y",
    "Eeprom 24C256 Serial (8 pins)|S|E|32|0|0|0|N", "uC Atmel AT90S2313 Micro|M|J|1024|0|0|0|N",
};
// clang-format on

std::string joined(const std::array<std::string, kDeviceTableColumns>& row) {
  std::string text(trimmed(row[0]));
  for (std::size_t column = 1; column < row.size(); ++column) text += "|" + row[column];
  return text;
}

TEST(DeviceTable, hasTheFortyRowsAndNothingElse) {
  ProgrammerState s;
  BuildDeviceTable(s);
  for (std::size_t row = 1; row <= kRows.size(); ++row) {
    EXPECT_EQ(joined(s.DeviceTable[row]), kRows[row - 1]);
    EXPECT_EQ(s.DeviceTable[row][0].size(), 30U);
  }
  EXPECT_EQ(joined(s.DeviceTable[0]), "|||||||");
  EXPECT_EQ(joined(s.DeviceTable[41]), "|||||||");
}

TEST(DeviceTable, theListHas41EntriesInTheRowsOrder) {
  ProgrammerState s;
  Controls c;
  BuildDeviceTable(s);
  c.Device.addItem("of an earlier filling");
  FillDeviceList(s, c.Device);
  const auto& items = c.Device.items();
  ASSERT_EQ(items.size(), 41U);
  EXPECT_EQ(items[0], "N/A - ");
  EXPECT_EQ(items[1], "N/A - Eprom 2716                    ");
  EXPECT_EQ(items[2], "Eprom 2732A                   ");
  EXPECT_EQ(items[23], "N/A - Flash Atmel AT29C256          ");
  EXPECT_EQ(items[33], "Eeprom XICOR X28C256          ");
  EXPECT_EQ(items[40], "N/A - uC Atmel AT90S2313 Micro      ");
  const auto isOffered = [](const std::string& item) { return !item.starts_with("N/A - "); };
  EXPECT_EQ(std::ranges::count_if(items, isOffered), 24);
}

}  // namespace
}  // namespace kestrel
