// Every access from the first line of the start-up to the last of the
// shut-down.

#include <gtest/gtest.h>

#include "support/script_form.h"

namespace kestrel::test {
namespace {

/// The line with d, s and c for the port's registers, such as "278 279 27A".
std::string at(const std::string& registers, const std::string& line) {
  std::string text;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const bool isRegister = line[i + 1] == '=' || line[i + 1] == '?';
    text +=
        isRegister ? registers.substr(4 * std::string("dsc").find(line[i]), 3) : line.substr(i, 1);
  }
  return text;
}
/// Both probes of a port, and the question for a model 6 before any codes are applied.
std::string probes(const std::string& registers) {
  return at(registers,
            "d=9F c=0E c=00 d=00 c=06 spin500 s? c=00 d=FF c=06 spin500 s? c=09 d=BF c=01 c=09 "
            "d=00 c=0F c=09 spin500 s? d=FF c=0F c=09 spin500 s? c=08 ");
}
std::string isSix(const std::string& registers) {
  return at(registers, "d=60 c=0E c=00 c=00 s? c=00 s? d=40 c=0E c=00 c=00 s? c=00 s? ");
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
  port.joinsSleeps = true;
  FormRig rig(port, port);
  rig.form.Form_Load();
  EXPECT_EQ(port.taken(), "0=00 0=00 0=00 0=00 " + probes("278 279 27A") + probes("378 379 37A") +
                              probes("3BC 3BD 3BE") + kNoModelLamp + kNoModelReset);
  EXPECT_EQ(rig.controls.KestrelHardwareFound.caption(), "NO HARDWARE FOUND !!!");
  EXPECT_EQ(rig.sounds.played, std::vector<std::string>{"init.wav"});
  EXPECT_FALSE(std::filesystem::exists(rig.folder / "config/kestrel6.ini"));
  rig.form.Form_Unload();
  EXPECT_EQ(port.taken(), kNoModelReset);
}

TEST(StartUp, withAModel5BoardAt378AndShutDown) {
  PortScript port;
  port.joinsSleeps = true;
  port.answers = {0xFF, 0xFF, 0xFF, 0xFF, 0x0F, 0x7F};  // 278h is silent, 378h answers
  FormRig rig(port, port);
  rig.form.Form_Load();
  EXPECT_EQ(port.taken(), "0=00 0=00 0=00 0=00 " + probes("278 279 27A") + probes("378 379 37A") +
                              isSix("378 379 37A") + probes("3BC 3BD 3BE") + isSix("3BC 3BD 3BE") +
                              kPulse + kReset + " " + kLampOff + kReset);
  rig.form.Form_Unload();
  EXPECT_EQ(port.taken(), kReset);
}

TEST(StartUp, withAConfigurationFileProbesNothing) {
  PortScript port;
  port.joinsSleeps = true;
  FormRig rig(port, port);
  std::filesystem::create_directory(rig.folder / "config");
  writeFileAtomically(rig.folder / "config/kestrel6.ini", "MODEL =  5\r\nIO_PORT = 378\r\n");
  rig.form.Form_Load();
  EXPECT_EQ(port.taken(), kPulse + kReset + " " + kLampOff + kReset);
  EXPECT_EQ(readWholeTextFile(rig.folder / "config/kestrel6.ini"),
            "[KESTREL6 SETUP]\r\nDATE = 2026-11-21 14:03\r\nIO_PORT = 378\r\nMODEL =  5\r\n");
}

TEST(StartUp, aForcedModelAppliesItsCodesAndResets) {
  ScriptForm f;
  f.load();
  f.c.LPTSelection[1].press();
  (void)f.port.taken();
  ASSERT_TRUE(f.rig.press("ForceKestrel4"));
  EXPECT_EQ(f.port.taken(),
            "278=40 27A=0A 27A=0B 27A=0A 278=00 27A=02 27A=03 27A=02 "
            "278=00 27A=08 27A=09 27A=08 278=C4 27A=00 27A=01 27A=00");
  EXPECT_EQ(f.c.KestrelHardwareFound.caption(), "Operator Forced Model 4");
  EXPECT_EQ(f.rig.log().back(), "KESTREL-4 Device was FORCED by Operator");
}

// The status bytes of a board at 278h; the other ports are silent.
TEST(HardwareTest, tellsTheModelsByTheStatusLines) {
  const std::vector<std::pair<std::deque<std::uint8_t>, const char*>> cases{
      {{0x0F, 0xF0, 0xFF, 0xFF, 0x78, 0x70, 0x78, 0x78}, "MODEL 6 - PC port 278h"},
      {{0x0F, 0x70, 0xFF, 0xFF, 0x78, 0x70, 0x70, 0x78}, "MODEL 5 - PC port 278h"},  // FEh
      {{0x0F, 0x70, 0xFF, 0xFF, 0x78, 0x78, 0x78, 0x78}, "MODEL 5 - PC port 278h"},
      {{0x00, 0x70, 0x8F, 0x7F}, "MODEL 4 - PC port 278h"},  // both signatures
      {{0x10, 0x70, 0x00, 0x60}, "NO HARDWARE FOUND"},
      {{0x40, 0x70, 0x00, 0x30}, "NO HARDWARE FOUND"}};
  ScriptForm f;
  f.load();
  for (const auto& [answers, caption] : cases) {
    f.port.answers = answers;
    ASSERT_TRUE(f.rig.press("menuTestHardware"));
    EXPECT_EQ(f.c.KestrelHardwareFound.caption(), caption);
  }
}

}  // namespace
}  // namespace kestrel::test
