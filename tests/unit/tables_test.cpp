// The catalogue against the data sheets.

#include <gtest/gtest.h>

#include "app/state/text_format.h"
#include "devices/device_table.h"

namespace kestrel {
namespace {

// Name, letter, sub-code, KB, fixed bits of latch 1 and latch 3, voltage class, listed.
// clang-format off
constexpr std::array<std::string_view, 40> kRows{
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

TEST(DeviceTable, hasTheFortyRowsAndTheListThemInOrder) {
  ProgrammerState s;
  Controls c;
  devices::BuildDeviceTable(s, s);
  c.Device.addItem("of an earlier filling");
  devices::FillDeviceList(s, c.Device);
  const auto& items = c.Device.items();
  ASSERT_EQ(items.size(), 41U);
  for (std::size_t row = 1; row <= kRows.size(); ++row) {
    EXPECT_EQ(joined(s.DeviceTable[row]), kRows[row - 1]);
    EXPECT_EQ(items[row], (kRows[row - 1].ends_with('Y') ? "" : "N/A - ") + s.DeviceTable[row][0]);
  }
  EXPECT_EQ(items[2], "Eprom 2732A                   ");
  EXPECT_EQ(joined(s.DeviceTable[41]), "|||||||");
}

}  // namespace
}  // namespace kestrel
