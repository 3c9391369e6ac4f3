// Flash identification by true chips, and the chip's pages on the display.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "devices/device_table.h"
#include "support/form_rig.h"

namespace kestrel::test {
namespace {

using testing::ElementsAre;

// Opens a row of the list that is marked as not available, and selects it.
void selectUnlisted(SimulatedForm& s, std::size_t row) {
  s.rig.state.DeviceTable[row][kListedColumn] = "Y";
  FillDeviceList(s.rig.state, s.rig.controls.Device);
  s.rig.controls.Device.setPosition(static_cast<std::int32_t>(row));
  s.rig.clearLog();
}

TEST(FlashIdentification, namesTrueChipsInTheSocket) {
  struct Case {
    const char* chip;
    std::size_t row;
    const char* name;
    const char* rawCode;
  };
  constexpr Case kCases[]{
      {"AM29F010", 25, "Device ID# 0120 - AMD am29F010 Flash Memory", "FFFF"},
      {"AM29F040", 27, "Device ID# 01A4 - AMD am29F040 Flash Memory", "FFFF"},
      {"A29040", 24, "Device ID# 3786 - AMIC A29040 Flash Memory", "FFFF"},
      // Answers 1C04h only with A8 high, which identification leaves low: the continuation code.
      {"EN29F040", 28, "Device ID# 7F7F -  Not Valid!!!", "FFFF"},
      // Its command leaves the data latch on the bus, so that F0h stands there in the second read.
      {"AT29C256", 23, "Device ID# 1FDC - ATMEL 29C256 Flash Memory", "F0F0"},
  };
  for (const Case& c : kCases) {
    for (const sim::Model model : {sim::Model::kestrel4, sim::Model::kestrel5}) {
      SimulatedForm s(model);
      s.start();
      s.insert(c.chip);
      selectUnlisted(s, c.row);
      ASSERT_TRUE(s.rig.press("menuFlashShowCodeID"));
      EXPECT_THAT(s.rig.log(), ElementsAre("Reading Flash Code ID_________________ wait", c.name));
      EXPECT_EQ(s.rig.state.FlashRawCode, c.rawCode);
    }
  }
}

TEST(DeviceDisplay, drawsTheBytesThatAReadGives) {
  struct Case {
    const char* chip;
    const char* device;
    std::size_t bytes;
  };
  for (const Case c : {Case{"27C256", "Eprom 27C256", 32768},
                       {"2732A", "Eprom 2732A", 4096},
                       {"27C020", "Eprom 27C020", 262144},
                       {"28C256", "Eeprom XICOR X28C256", 32768}}) {
    SimulatedForm s;
    s.start();
    const auto contents = randomBytes(c.bytes, 71);
    s.insert(c.chip, contents);
    s.rig.select(c.device);
    s.rig.press("Display_button");
    for (const std::size_t page : {c.bytes / 256 - 1, c.bytes / 512 + 3}) {
      s.rig.controls.VScroll1.setValue(static_cast<std::int32_t>(page));
      std::string hex;
      std::istringstream lines(s.rig.controls.BufferDisplay.text());
      for (std::string line; std::getline(lines, line);) {
        if (line.size() > 44) hex += line.substr(8, 36);
      }
      std::erase(hex, ' ');
      ASSERT_EQ(hex.size(), 512U);
      for (std::size_t i = 0; i < 256; ++i) {
        ASSERT_EQ(std::stoul(hex.substr(2 * i, 2), nullptr, 16), contents[page * 256 + i])
            << c.chip << " page " << page << " byte " << i;
      }
    }
  }
}

TEST(DeviceDisplay, hasItsOwnCharactersAndDrawsPage0) {
  SimulatedForm s;
  s.start();
  std::vector<std::uint8_t> contents(8192, 0xFF);
  const std::string text =
      "A \"`z{~\x1F"
      "01234567";
  std::copy(text.begin(), text.end(), contents.begin() + 0x10);
  s.insert("27C64", contents);
  s.rig.select("Eprom 27C64");
  s.rig.clearLog();
  s.rig.controls.VScroll1.setValue(3);
  s.trace.str("");
  s.rig.press("Display_button");
  EXPECT_EQ(s.rig.controls.VScroll1.value(), 0);
  EXPECT_NE(s.rig.controls.BufferDisplay.text().find(
                "\r\n000010| 41202260 7A7B7E1F 30313233 34353637 | A \"`z...01234567\r\n000020| "),
            std::string::npos);
  EXPECT_EQ(s.rig.controls.Frame3.caption(), "Device Memory Hex/Ascii Display");
  EXPECT_THAT(s.rig.log(), ElementsAre("Fetching Device Binary Contents to Screen"));
  // Drawn twice, once by the scroll bar that went to 0; chip and outputs are off afterwards.
  const std::string trace = s.trace.str();
  const std::size_t first = trace.find("sleep 500");
  EXPECT_NE(trace.find("sleep 500", first + 1), std::string::npos);
  EXPECT_EQ(s.board->latch(0), 0x40);
  EXPECT_EQ(s.board->latch(3) & 0xC0, 0xC0);
  EXPECT_EQ(s.board->latch(2), 0xFF);
}

TEST(DeviceDisplay, drawsNothingOfASerialChip) {
  SimulatedForm s;
  s.start();
  s.insert("24C16", randomBytes(2048, 5));
  s.rig.select("Eeprom 24C16");
  const std::string before = s.rig.controls.BufferDisplay.text();
  s.rig.clearLog();
  s.trace.str("");
  s.rig.press("Display_button");
  EXPECT_EQ(s.rig.controls.BufferDisplay.text(), before);
  EXPECT_THAT(s.rig.log(), ElementsAre("Fetching Device Binary Contents to Screen"));
  EXPECT_EQ(s.trace.str(), "");
}

}  // namespace
}  // namespace kestrel::test
