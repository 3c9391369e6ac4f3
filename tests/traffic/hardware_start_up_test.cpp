// Every access from the first line of the start-up to the last of the
// shut-down.

#include <gtest/gtest.h>

#include "support/script_form.h"

namespace kestrel::test {
namespace {

/// Both probes of the port whose registers end in the digits of "378 379 37A".
std::string probes(const std::string& registers) {
  std::string line =
      "d=9F c=0E c=00 d=00 c=06 spin500 s? c=00 d=FF c=06 "
      "spin500 s? c=09 d=BF c=01 c=09 d=00 "
      "c=0F c=09 spin500 s? d=FF c=0F c=09 spin500 s? c=08 ";
  const std::string letters = "dsc";
  for (std::size_t i = 0; i < 3; ++i) {
    const std::string port = registers.substr(4 * i, 3);
    for (auto at = line.find(letters[i]); at != line.npos; at = line.find(letters[i], at + 3)) {
      if (line[at + 1] == '=' || line[at + 1] == '?') line.replace(at, 1, port);
    }
  }
  return line;
}

const std::string kNoModelLamp = "0=00 2=00 2=00 2=00 ";
const std::string kNoModelReset =
    "0=40 2=00 2=00 2=00 0=00 2=00 2=00 2=00 "
    "0=00 2=00 2=00 2=00 0=C4 2=00 2=00 2=00";
const std::string kPulse = loads5("0 08") + " sleep200 " + loads5("0 00") + " ";
const std::string kReset = loads5("0 40,1 00,2 00,3 C4");
const std::string kLampOff = loads5("0 40") + " ";

TEST(StartUp, withoutABoardAndShutDown) {
  PortScript port;
  FormRig rig(port, port);
  rig.form.Form_Load();
  EXPECT_EQ(port.taken(), "0=00 0=00 0=00 0=00 " + probes("278 279 27A") + probes("378 379 37A") +
                              probes("3BC 3BD 3BE") + kNoModelLamp + kNoModelReset);
  EXPECT_EQ(rig.controls.KestrelHardwareFound.caption(), "NO HARDWARE FOUND !!!");
  EXPECT_EQ(rig.controls.Ready_label.caption(), "NotReady");
  EXPECT_EQ(rig.controls.Ready_label.colour(), Colour::Red);
  EXPECT_EQ(rig.controls.PortSelected.text(), "None");
  EXPECT_EQ(rig.controls.SystemLog.text(), "");
  EXPECT_EQ(rig.sounds.played, std::vector<std::string>{"init.wav"});
  EXPECT_FALSE(std::filesystem::exists(rig.folder / "config/kestrel6.ini"));
  rig.form.Form_Unload();
  EXPECT_EQ(port.taken(), kNoModelReset);
}

TEST(StartUp, withAModel5BoardAt378AndShutDown) {
  PortScript port;
  port.answers = {0xFF, 0xFF, 0xFF, 0xFF, 0x0F, 0x7F};  // 278h is silent, 378h answers
  FormRig rig(port, port);
  rig.form.Form_Load();
  const std::string isSix378 =
      "378=60 37A=0E 37A=00 37A=00 379? 37A=00 379? "
      "378=40 37A=0E 37A=00 37A=00 379? 37A=00 379? ";
  const std::string isSix3BC =
      "3BC=60 3BE=0E 3BE=00 3BE=00 3BD? 3BE=00 3BD? "
      "3BC=40 3BE=0E 3BE=00 3BE=00 3BD? 3BE=00 3BD? ";
  EXPECT_EQ(port.taken(), "0=00 0=00 0=00 0=00 " + probes("278 279 27A") + probes("378 379 37A") +
                              isSix378 + probes("3BC 3BD 3BE") + isSix3BC + kPulse + kReset + " " +
                              kLampOff + kReset);
  rig.form.Form_Unload();
  EXPECT_EQ(port.taken(), kReset);
}

TEST(StartUp, withAConfigurationFileProbesNothing) {
  PortScript port;
  FormRig rig(port, port);
  std::filesystem::create_directory(rig.folder / "config");
  writeFileAtomically(rig.folder / "config/kestrel6.ini", "MODEL =  5\r\nIO_PORT = 378\r\n");
  rig.form.Form_Load();
  EXPECT_EQ(port.taken(), kPulse + kReset + " " + kLampOff + kReset);
  EXPECT_EQ(readWholeTextFile(rig.folder / "config/kestrel6.ini"),
            "[KESTREL6 SETUP]\r\nDATE = 2026-11-21 14:03\r\nIO_PORT = "
            "378\r\nMODEL =  5\r\n");
}

TEST(StartUp, aForcedModelAppliesItsCodesAndResets) {
  PortScript port;
  FormRig rig(port, port);
  rig.form.Form_Load();
  rig.controls.LPTSelection[1].press();
  (void)port.taken();
  ASSERT_TRUE(rig.press("ForceKestrel4"));
  EXPECT_EQ(port.taken(),
            "278=40 27A=0A 27A=0B 27A=0A 278=00 27A=02 27A=03 27A=02 "
            "278=00 27A=08 27A=09 27A=08 278=C4 27A=00 27A=01 27A=00");
  EXPECT_EQ(rig.controls.KestrelHardwareFound.caption(), "Operator Forced Model 4");
  EXPECT_EQ(rig.controls.KestrelHardwareFound.colour(), Colour::Red);
  EXPECT_EQ(rig.controls.Ready_label.caption(), "Ready");
  EXPECT_EQ(rig.log().back(), "KESTREL-4 Device was FORCED by Operator");
  EXPECT_FALSE(std::filesystem::exists(rig.folder / "config/kestrel6.ini"));
}

// The status bytes of a board at 278h; the other ports are silent.
TEST(HardwareTest, tellsTheModelsByTheStatusLines) {
  struct Case {
    std::deque<std::uint8_t> answers;
    const char* caption;
  };
  const std::vector<Case> cases{
      {{0x0F, 0xF0, 0xFF, 0xFF, 0x78, 0x70, 0x78, 0x78}, "MODEL 6 - PC port 278h"},
      {{0x0F, 0x70, 0xFF, 0xFF, 0x78, 0x70, 0x70, 0x78}, "MODEL 5 - PC port 278h"},  // FEh
      {{0x0F, 0x70, 0xFF, 0xFF, 0x78, 0x78, 0x78, 0x78}, "MODEL 5 - PC port 278h"},
      {{0x00, 0x70, 0x8F, 0x7F}, "MODEL 4 - PC port 278h"},  // both signatures
      {{0x10, 0x70, 0x00, 0x60}, "NO HARDWARE FOUND"},
      {{0x20, 0x70, 0x00, 0x50}, "NO HARDWARE FOUND"},
      {{0x40, 0x70, 0x00, 0x30}, "NO HARDWARE FOUND"}};
  ScriptForm f;
  f.load();
  for (const Case& each : cases) {
    f.port.answers = each.answers;
    ASSERT_TRUE(f.rig.press("menuTestHardware"));
    EXPECT_EQ(f.c.KestrelHardwareFound.caption(), each.caption);
  }
}

TEST(HardwareTest, asksForModel6WithTheNibbleCodesAppliedLastAndPulsesNoModel4) {
  ScriptForm f;
  f.load();
  f.rig.press("ForceKestrel5");
  (void)f.port.taken();
  f.port.answers = {0x0F, 0x70, 0xFF, 0xFF, 0x78, 0x70, 0x78, 0x78};
  f.rig.press("TestHardware_button");
  EXPECT_NE(f.port.taken().find(" 27A=08 278=60 27A=0E 27A=00 27A=05 279? 27A=01 279?"
                                " 278=40 27A=0E 27A=00 27A=05 279? 27A=01 279? 378=9F"),
            std::string::npos);
  f.port.answers = {0x00, 0x70, 0x8F, 0x7F};
  f.rig.press("TestHardware_button");
  EXPECT_EQ(f.port.taken().find("sleep"), std::string::npos);
}

}  // namespace
}  // namespace kestrel::test
