// One device of every family: what the choice sets, enables, offers and says.

#include <gtest/gtest.h>

#include "support/control_names.h"
#include "support/form_rig.h"

namespace kestrel::test {
namespace {

struct Choice {
  const char* device;
  const char* code;
  int bytes;
  int reg1;
  int reg3;
  int vppClass;
  int countA;
  int countB;
  int busCount;
};

// clang-format off
const std::array<Choice, 13> kChoices{{
    {"Eprom 2732A",                  "P1",    4096,  32,  0, 3, 200002, 40002, 102},
    {"Eprom 2764",                   "P2",    8192, 192,  2, 3, 200002, 40002, 102},
    {"Eprom 27C128",                 "P3",   16384, 192,  2, 1,   1002,   202,  12},
    {"Eprom 27C256",                 "P4",   32768, 128,  2, 1,   1002,   202,  12},
    {"Eprom 27C512",                 "P5",   65536,   0,  2, 1,   1002,   202,  12},
    {"Eprom 27C010",                 "P6",  131072,   0, 12, 1,   1002,   202,  12},
    {"Eprom 27C020",                 "P7",  262144,   0, 12, 1,   1002,   202,  12},
    {"Eprom 27C040",                 "P8",  524288,   0,  8, 1,   1002,   202,  12},
    {"Eprom 27C801",                 "P9", 1048576,   0,  0, 1,    502,   102,   6},
    {"Eeprom XICOR X28C256",         "EN",   32768,  64,  2, 0,   1002,   202,  12},
    {"Eeprom 24C08 Serial (8 pins)", "SA",    1024,   0,  0, 0,   1002,   202,  12},
    {"Eeprom 24C16 Serial (8 pins)", "SB",    2048,   0,  0, 0,   1002,   202,  12},
    {"Eeprom 24C32 Serial (8 pins)", "SC",    4096,   0,  0, 0,   1002,   202,  12},
}};
// clang-format on

const std::string kVoltages =
    "Voltage_button(0) Voltage_button(1) Voltage_button(2) "
    "Voltage_button(3)";
const std::string kAlways = "Read_button menuReadCode Display_button menuDisplayCode Show_button";
const std::string kBlankCheck = " Blank_button menuBlankCheck";
const std::string kErase = " EraseFlash_button menuEraseFlash menuFlashShowCodeID";
const std::string kWithCode =
    "Erase_button menuEraseCode Program_button menuProgramCode "
    "Verify_button menuVerifyCode";

class Selecting : public testing::TestWithParam<Choice> {
 protected:
  Selecting() {
    s.start();
    s.rig.sounds.played.clear();
    s.rig.select(choice.device);
  }
  const Choice& choice = GetParam();
  const char letter = choice.code[0];
  SimulatedForm s;
  Controls& c = s.rig.controls;
  ProgrammerState& state = s.rig.state;
};

TEST_P(Selecting, takesTheRowTheCountsAndTheAddressMaps) {
  EXPECT_EQ(state.FamilyCode, choice.code);
  EXPECT_EQ(state.CodeLength, choice.bytes);
  EXPECT_EQ(state.Reg1Fixed, choice.reg1);
  EXPECT_EQ(state.Reg3Fixed, choice.reg3);
  EXPECT_EQ(state.DelayCountA, choice.countA);
  EXPECT_EQ(state.DelayCountB, choice.countB);
  EXPECT_EQ(state.BusDelayCount, choice.busCount);
  EXPECT_EQ(c.VScroll1.maximum(), choice.bytes / 256 - 1);
  const auto& high = state.AddrMapHigh;
  EXPECT_EQ((std::array{high[3], high[4], high[7], high[8]}),
            (std::array<std::int16_t, 4>{3, 8, 11, 8}));
  const auto& mid = state.AddrMapMid;
  EXPECT_EQ((std::array{mid[63], mid[64], mid[127], mid[128]}),
            letter == 'E' ? (std::array<std::int16_t, 4>{63, 128, 191, 128})
                          : (std::array<std::int16_t, 4>{63, 64, 127, 128}));
}

TEST_P(Selecting, enablesAndOffersWhatTheFamilyHas) {
  EXPECT_EQ(enabledOf(c, kAlways + kBlankCheck + kErase + " CheckCode CheckData " + kWithCode),
            kAlways + (letter == 'S' ? "" : kBlankCheck) + (letter == 'P' ? "" : kErase));
  const std::array<std::string, 4> offered{"Voltage_button(0)", "Voltage_button(1)", "",
                                           kVoltages.substr(18)};
  EXPECT_EQ(enabledOf(c, kVoltages), offered.at(static_cast<std::size_t>(choice.vppClass)));
  EXPECT_TRUE(c.Voltage_button[choice.vppClass == 0 ? 0 : 1].value());
  EXPECT_EQ(namesOf(c, [](const Control& control) { return !control.visible(); }),
            "PleaseSelect frmDisplay1 FileNameDataLabel FileNameDataSize FileNameDataText "
            "tbToolBar(3) tbToolBar(4) tbToolBar(5)");
  EXPECT_EQ(c.CheckCode.value(), 1);
  EXPECT_EQ(c.Show_button.caption(), "Show Code");
}

TEST_P(Selecting, saysSoAndLeavesTheBoardSafe) {
  const bool isFiveVolt = choice.vppClass == 0;
  std::vector<std::string> expected{
      "Device " + std::string(choice.device) + " was Selected",
      "Device Size is: " + std::to_string(choice.bytes) +
          " Bytes, Initial VPP suggested: " + (isFiveVolt ? "5V" : "12.5V")};
  if (!isFiveVolt) {
    expected.insert(expected.begin(), "Most Common Programming Voltage Selected: 12.5 Volts!!!");
  }
  EXPECT_EQ(s.rig.log(), expected);
  EXPECT_EQ(state.VppVolts, isFiveVolt ? 0 : 12);
  EXPECT_EQ(s.rig.sounds.played, std::vector<std::string>{"done.wav"});
  EXPECT_EQ(s.board->latch(0), letter == 'S' ? 0x00 : 0x40);
  EXPECT_EQ(s.board->latch(3), letter == 'S' ? 0x44 : 0xC4);
}

INSTANTIATE_TEST_SUITE_P(EveryFamily, Selecting, testing::ValuesIn(kChoices));

TEST(Selection, anEntryThatIsNotOfferedKeepsTheDevice) {
  SimulatedForm s;
  s.start();
  s.rig.select("Eprom 27C256");
  s.rig.clearLog();
  for (const std::int32_t position : {0, 1, 23, 40}) {
    s.rig.controls.Device.setPosition(position);
    EXPECT_EQ(s.rig.controls.Device.position(), -1);
  }
  EXPECT_EQ(s.rig.state.DeviceName, "Eprom 27C256");
  EXPECT_EQ(s.rig.state.Reg1Fixed, 128);
  EXPECT_TRUE(s.rig.log().empty());
}

TEST(Selection, voltagesStayOfferedAndTheCodeFileEnablesProgramming) {
  SimulatedForm s;
  s.start();
  Controls& c = s.rig.controls;
  s.rig.state.CodeBufferValid = 1;
  s.rig.select("Eprom 2764");
  c.Voltage_button[2].press();
  EXPECT_EQ(s.rig.state.VppVolts, 21);
  s.rig.select("Eeprom XICOR X28C256");
  EXPECT_EQ(s.rig.state.VppVolts, 21);
  s.rig.select("Eprom 27C256");
  EXPECT_EQ(s.rig.state.VppVolts, 12);
  EXPECT_EQ(disabledOf(c, kVoltages + " " + kWithCode), "");
  c.Voltage_button[3].press();
  EXPECT_EQ(s.rig.log().back(),
            "BE CAREFULL!!! You just Selected Programming Voltage as 25 Volts!!!");
}

// The row is not offered; a list entry without the prefix stands in for the day it is.
TEST(Selection, theMicrocontrollerHasADataMemory) {
  SimulatedForm s;
  s.start();
  Controls& c = s.rig.controls;
  s.rig.state.DataBufferValid = 1;
  s.rig.state.DeviceTable[41] = s.rig.state.DeviceTable[40];
  c.Device.addItem("uC Atmel AT90S2313 Micro");
  c.Device.setPosition(41);
  EXPECT_EQ(disabledOf(c,
                       "menuEraseFlash menuEraseData menuDisplayData menuReadData tbToolBar(4) "
                       "Show_button mnuFileOpenData CheckCode CheckData menuProgramData "
                       "menuVerifyData Program_button"),
            "");
  EXPECT_EQ(namesOf(c, [](const Control& control) { return !control.visible(); }),
            "PleaseSelect frmDisplay1");
  EXPECT_EQ(c.CheckData.value(), 1);
  EXPECT_EQ(c.Show_button.caption(), "Show Data");
}

TEST(Speed, theSliderSetsTheCountsAndTheBusIsSlowBelowTen) {
  SimulatedForm s;
  s.start();
  s.rig.select("Eprom 27C256");
  s.rig.controls.Slider1.setValue(10);
  EXPECT_EQ(s.rig.state.BusDelayCount, 52);
  s.rig.controls.Slider1.setValue(9);
  EXPECT_EQ(s.rig.state.DelayCountA, 5502);
  EXPECT_EQ(s.rig.state.BusDelayCount, 1102);
  EXPECT_EQ(s.rig.log().back(), "Program Speed Slider set to: 9");
  EXPECT_EQ(s.rig.sounds.played.back(), "slide.wav");
}

}  // namespace
}  // namespace kestrel::test
