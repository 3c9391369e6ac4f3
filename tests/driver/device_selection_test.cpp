// Devices of every kind: what the choice sets, enables, offers and says.

#include <gtest/gtest.h>

#include "support/control_names.h"
#include "support/form_rig.h"

namespace kestrel::test {
namespace {

struct Choice {
  const char* device;
  const char* code;
  int bytes;
  std::array<int, 3> counts;  // A, B, bus
  const char* voltages;
  std::array<int, 2> latches;  // 0 and 3
};

const std::string kAlways = "Read_button menuReadCode Display_button menuDisplayCode Show_button";
const std::string kBlankCheck = " Blank_button menuBlankCheck";
const std::string kErase = " EraseFlash_button menuEraseFlash menuFlashShowCodeID";
const std::string kWithCode =
    "Erase_button menuEraseCode Program_button menuProgramCode Verify_button menuVerifyCode";
const std::string kVoltages =
    "Voltage_button(0) Voltage_button(1) Voltage_button(2) Voltage_button(3)";

// clang-format off
const std::initializer_list<Choice> kChoices{
    {"Eprom 2732A", "P1", 4096, {200002, 40002, 102},
     "Voltage_button(1) Voltage_button(2) Voltage_button(3)", {0x40, 0xC4}},
    {"Eprom 27C256", "P4", 32768, {1002, 202, 12}, "Voltage_button(1)", {0x40, 0xC4}},
    {"Eprom 27C801", "P9", 1048576, {502, 102, 6}, "Voltage_button(1)", {0x40, 0xC4}},
    {"Eeprom XICOR X28C256", "EN", 32768, {1002, 202, 12}, "Voltage_button(0)", {0x40, 0xC4}},
    {"Eeprom 24C16 Serial (8 pins)", "SB", 2048, {1002, 202, 12}, "Voltage_button(0)",
     {0x00, 0x44}}};
// clang-format on

TEST(Selection, setsEnablesOffersAndSaysWhatTheFamilyHas) {
  for (const auto& [device, code, bytes, counts, voltages, latches] : kChoices) {
    SimulatedForm s;
    s.start();
    s.rig.select(device);
    const char letter = code[0];
    const Controls& c = s.rig.controls;
    const ProgrammerState& state = s.rig.state;
    EXPECT_EQ(state.FamilyCode, code);
    EXPECT_EQ((std::array{state.DelayCountA, state.DelayCountB, state.BusDelayCount}), counts);
    EXPECT_EQ(c.VScroll1.maximum(), bytes / 256 - 1);
    EXPECT_EQ(state.AddrMapHigh[7], 11);
    EXPECT_EQ(state.AddrMapMid[64], letter == 'E' ? 128 : 64);
    EXPECT_EQ(enabledOf(c, kAlways + kBlankCheck + kErase + " CheckCode CheckData " + kWithCode),
              kAlways + (letter == 'S' ? "" : kBlankCheck) + (letter == 'P' ? "" : kErase));
    EXPECT_EQ(enabledOf(c, kVoltages), voltages);
    EXPECT_TRUE(c.FrameVoltageSelection.visible());
    std::vector<std::string> log{
        "Device " + std::string(device) + " was Selected",
        "Device Size is: " + std::to_string(bytes) +
            " Bytes, Initial VPP suggested: " + (letter == 'P' ? "12.5V" : "5V")};
    if (letter == 'P')
      log.insert(log.begin(), "Most Common Programming Voltage Selected: 12.5 Volts!!!");
    EXPECT_EQ(s.rig.log(), log);
    EXPECT_EQ((std::array<int, 2>{s.board->latch(0), s.board->latch(3)}), latches);
  }
}

TEST(Selection, anEntryThatIsNotOfferedKeepsTheDevice) {
  SimulatedForm s;
  s.start();
  s.rig.select("Eprom 27C256");
  s.rig.clearLog();
  for (const std::int32_t position : {0, 23, 40}) {
    s.rig.controls.Device.setPosition(position);
    EXPECT_EQ(s.rig.controls.Device.position(), -1);
  }
  EXPECT_EQ(s.rig.state.DeviceName, "Eprom 27C256");
  EXPECT_TRUE(s.rig.log().empty());
}

TEST(Selection, voltagesStayOfferedTheCodeFileEnablesProgrammingTheSliderSetsTheCounts) {
  SimulatedForm s;
  s.start();
  Controls& c = s.rig.controls;
  s.rig.state.CodeBufferValid = 1;
  s.rig.select("Eprom 2764");
  c.Voltage_button[2].press();
  s.rig.select("Eeprom XICOR X28C256");
  EXPECT_EQ(s.rig.state.VppVolts, 21);
  s.rig.select("Eprom 27C256");
  EXPECT_EQ(s.rig.state.VppVolts, 12);
  EXPECT_EQ(disabledOf(c, kVoltages + " " + kWithCode), "");
  c.Voltage_button[3].press();
  EXPECT_EQ(s.rig.log().back(),
            "BE CAREFULL!!! You just Selected Programming Voltage as 25 Volts!!!");
  c.Slider1.setValue(10);
  EXPECT_EQ(s.rig.state.BusDelayCount, 52);
  c.Slider1.setValue(9);  // below ten the bus is slow too
  EXPECT_EQ(s.rig.state.DelayCountA, 5502);
  EXPECT_EQ(s.rig.state.BusDelayCount, 1102);
}

}  // namespace
}  // namespace kestrel::test
