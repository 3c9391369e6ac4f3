// One device of every family: what the choice sets, enables, offers and says.

#include <gtest/gtest.h>

#include "support/form_rig.h"

namespace kestrel::test {
namespace {

struct Choice {
  const char* device;
  const char* code;
  int bytes;
  int reg1;
  int reg3;
  const char* voltages;  // the buttons that are offered
  const char* suggested;
  int countA;
  int countB;
  int busCount;
  bool hasBlankCheck;
  bool hasErase;
};

// clang-format off
const std::array<Choice, 13> kChoices{{
    {"Eprom 2732A",                   "P1",    4096,  32,  0, "123", "12.5V", 200002, 40002, 102, true,  false},
    {"Eprom 2764",                    "P2",    8192, 192,  2, "123", "12.5V", 200002, 40002, 102, true,  false},
    {"Eprom 27C128",                  "P3",   16384, 192,  2, "1",   "12.5V",   1002,   202,  12, true,  false},
    {"Eprom 27C256",                  "P4",   32768, 128,  2, "1",   "12.5V",   1002,   202,  12, true,  false},
    {"Eprom 27C512",                  "P5",   65536,   0,  2, "1",   "12.5V",   1002,   202,  12, true,  false},
    {"Eprom 27C010",                  "P6",  131072,   0, 12, "1",   "12.5V",   1002,   202,  12, true,  false},
    {"Eprom 27C020",                  "P7",  262144,   0, 12, "1",   "12.5V",   1002,   202,  12, true,  false},
    {"Eprom 27C040",                  "P8",  524288,   0,  8, "1",   "12.5V",   1002,   202,  12, true,  false},
    {"Eprom 27C801",                  "P9", 1048576,   0,  0, "1",   "12.5V",    502,   102,   6, true,  false},
    {"Eeprom XICOR X28C256",          "EN",   32768,  64,  2, "0",   "5V",      1002,   202,  12, true,  true},
    {"Eeprom 24C08 Serial (8 pins)",  "SA",    1024,   0,  0, "0",   "5V",      1002,   202,  12, false, true},
    {"Eeprom 24C16 Serial (8 pins)",  "SB",    2048,   0,  0, "0",   "5V",      1002,   202,  12, false, true},
    {"Eeprom 24C32 Serial (8 pins)",  "SC",    4096,   0,  0, "0",   "5V",      1002,   202,  12, false, true},
}};
// clang-format on

std::string offered(const Controls& c) {
  std::string digits;
  for (std::size_t i = 0; i < 4; ++i) {
    if (c.Voltage_button[i].enabled()) digits += std::to_string(i);
  }
  return digits;
}

class Selecting : public testing::TestWithParam<Choice> {
 protected:
  Selecting() {
    s.start();
    s.rig.sounds.played.clear();
    s.rig.select(choice.device);
  }
  const Choice& choice = GetParam();
  SimulatedForm s;
  Controls& c = s.rig.controls;
  ProgrammerState& state = s.rig.state;
};

TEST_P(Selecting, takesTheRowAndTheCounts) {
  EXPECT_EQ(state.DeviceName, choice.device);
  EXPECT_EQ(state.FamilyCode, choice.code);
  EXPECT_EQ(state.DeviceSizeBytes, choice.bytes);
  EXPECT_EQ(state.CodeLength, choice.bytes);
  EXPECT_EQ(state.Reg1Fixed, choice.reg1);
  EXPECT_EQ(state.Reg3Fixed, choice.reg3);
  EXPECT_EQ(state.DelayCountA, choice.countA);
  EXPECT_EQ(state.DelayCountB, choice.countB);
  EXPECT_EQ(state.BusDelayCount, choice.busCount);
  EXPECT_EQ(c.VScroll1.maximum(), choice.bytes / 256 - 1);
  EXPECT_EQ(state.AddrMapHigh[3], 3);
  EXPECT_EQ(state.AddrMapHigh[4], 8);
  EXPECT_EQ(state.AddrMapHigh[7], 11);
  EXPECT_EQ(state.AddrMapHigh[8], 8);
  const bool movesA14 = choice.code == std::string("EN");
  EXPECT_EQ(state.AddrMapMid[63], 63);
  EXPECT_EQ(state.AddrMapMid[64], movesA14 ? 128 : 64);
  EXPECT_EQ(state.AddrMapMid[127], movesA14 ? 191 : 127);
  EXPECT_EQ(state.AddrMapMid[128], 128);
}

TEST_P(Selecting, enablesWhatTheFamilyHas) {
  for (const char* const name :
       {"Read_button", "menuReadCode", "Display_button", "menuDisplayCode", "Show_button"}) {
    EXPECT_TRUE(c.find(name)->enabled()) << name;
  }
  for (const char* const name : {"Program_button", "menuProgramCode", "Verify_button",
                                 "Erase_button", "menuReadData", "CheckCode", "CheckData"}) {
    EXPECT_FALSE(c.find(name)->enabled()) << name;
  }
  for (const char* const name : {"Blank_button", "menuBlankCheck"}) {
    EXPECT_EQ(c.find(name)->enabled(), choice.hasBlankCheck) << name;
  }
  for (const char* const name : {"EraseFlash_button", "menuEraseFlash", "menuFlashShowCodeID"}) {
    EXPECT_EQ(c.find(name)->enabled(), choice.hasErase) << name;
  }
  for (const char* const name : {"Frame5", "CheckBlankPriorProgramming", "VerifyAfterProgramming",
                                 "FrameVoltageSelection", "Frame3", "BufferDisplay"}) {
    EXPECT_TRUE(c.find(name)->visible()) << name;
  }
  EXPECT_FALSE(c.PleaseSelect.visible());
  EXPECT_EQ(c.CheckCode.value(), 1);
  EXPECT_EQ(c.CheckData.value(), 0);
  EXPECT_EQ(c.Show_button.caption(), "Show Code");
}

TEST_P(Selecting, offersItsVoltagesSaysSoAndLeavesTheBoardSafe) {
  EXPECT_EQ(offered(c), choice.voltages);
  const bool isFiveVolt = choice.suggested == std::string("5V");
  EXPECT_TRUE(c.Voltage_button[isFiveVolt ? 0 : 1].value());
  EXPECT_EQ(state.VppVolts, isFiveVolt ? 0 : 12);
  std::vector<std::string> expected{"Device " + std::string(choice.device) + " was Selected",
                                    "Device Size is: " + std::to_string(choice.bytes) +
                                        " Bytes, Initial VPP suggested: " + choice.suggested};
  if (!isFiveVolt) {
    expected.insert(expected.begin(), "Most Common Programming Voltage Selected: 12.5 Volts!!!");
  }
  EXPECT_EQ(s.rig.log(), expected);
  EXPECT_EQ(s.rig.sounds.played, std::vector<std::string>{"done.wav"});
  const bool isSerial = choice.code[0] == 'S';
  EXPECT_EQ(s.board->latch(0), isSerial ? 0x00 : 0x40);
  EXPECT_EQ(s.board->latch(3), isSerial ? 0x44 : 0xC4);
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
    EXPECT_EQ(s.rig.state.DeviceName, "Eprom 27C256");
    EXPECT_EQ(s.rig.state.Reg1Fixed, 128);
  }
  EXPECT_TRUE(s.rig.log().empty());
  EXPECT_EQ(s.rig.sounds.played.back(), "done.wav");
  s.rig.controls.Device.setPosition(-1);
  EXPECT_EQ(s.rig.controls.Device.text(), "Please Select Device on this List");
}

TEST(Selection, voltagesStayOfferedAndTheCodeFileEnablesProgramming) {
  SimulatedForm s;
  s.start();
  Controls& c = s.rig.controls;
  s.rig.state.CodeBufferValid = 1;
  s.rig.select("Eprom 2764");
  c.Voltage_button[3].press();
  EXPECT_EQ(s.rig.state.VppVolts, 25);
  c.Voltage_button[2].press();
  EXPECT_EQ(s.rig.state.VppVolts, 21);
  s.rig.select("Eeprom XICOR X28C256");
  EXPECT_EQ(s.rig.state.VppVolts, 21);
  s.rig.clearLog();
  s.rig.select("Eprom 27C256");
  EXPECT_EQ(offered(c), "0123");
  EXPECT_EQ(s.rig.log()[0], "Most Common Programming Voltage Selected: 12.5 Volts!!!");
  c.Voltage_button[3].press();
  EXPECT_EQ(s.rig.log().back(),
            "BE CAREFULL!!! You just Selected Programming Voltage as 25 Volts!!!");
  for (const char* const name : {"Erase_button", "menuEraseCode", "Program_button",
                                 "menuProgramCode", "Verify_button", "menuVerifyCode"}) {
    EXPECT_TRUE(c.find(name)->enabled()) << name;
  }
}

TEST(Selection, theMicrocontrollerHasADataMemory) {
  SimulatedForm s;
  s.start();
  s.rig.state.DataBufferValid = 1;
  s.rig.state.DeviceTable[40][7] = "Y";
  auto& list = s.rig.controls.Device;
  list.addItem("uC Atmel AT90S2313 Micro");
  s.rig.state.DeviceTable[41] = s.rig.state.DeviceTable[40];
  list.setPosition(41);
  Controls& c = s.rig.controls;
  EXPECT_EQ(s.rig.state.FamilyCode, "MJ");
  for (const char* const name :
       {"menuEraseFlash", "menuEraseData", "menuDisplayData", "menuReadData", "tbToolBar(4)",
        "Show_button", "mnuFileOpenData", "CheckCode", "CheckData", "menuProgramData",
        "menuVerifyData", "Program_button"}) {
    EXPECT_TRUE(c.find(name)->enabled()) << name;
  }
  for (const char* const name : {"tbToolBar(3)", "tbToolBar(4)", "tbToolBar(5)",
                                 "FileNameDataLabel", "FileNameDataSize", "FileNameDataText"}) {
    EXPECT_TRUE(c.find(name)->visible()) << name;
  }
  EXPECT_EQ(c.CheckData.value(), 1);
  EXPECT_EQ(c.Show_button.caption(), "Show Data");
  EXPECT_FALSE(c.EraseFlash_button.enabled());
}

TEST(Speed, theSliderSetsTheCountsAndTheBusIsSlowBelowTen) {
  SimulatedForm s;
  s.start();
  s.rig.select("Eprom 27C256");
  s.rig.clearLog();
  s.rig.controls.Slider1.setValue(10);
  EXPECT_EQ(s.rig.state.BusDelayCount, 52);
  s.rig.controls.Slider1.setValue(9);
  EXPECT_EQ(s.rig.state.DelayCountA, 5502);
  EXPECT_EQ(s.rig.state.DelayCountB, 1102);
  EXPECT_EQ(s.rig.state.BusDelayCount, 1102);
  EXPECT_EQ(s.rig.log(), (std::vector<std::string>{"Program Speed Slider set to: 10",
                                                   "Program Speed Slider set to: 9"}));
  EXPECT_EQ(s.rig.sounds.played.back(), "slide.wav");
}

}  // namespace
}  // namespace kestrel::test
