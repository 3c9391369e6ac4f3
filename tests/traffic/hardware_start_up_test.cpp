// Every access from the first line of the start-up to the last of the shut-down.

#include <gtest/gtest.h>

#include "platform/atomic_file.h"
#include "support/form_rig.h"
#include "support/port_script.h"

namespace kestrel::test {
namespace {

std::string probes(const std::string& base, const std::string& status, const std::string& control) {
  const auto out = [](const std::string& port, const char* value) { return port + value; };
  return out(base, "=9F ") + out(control, "=0E ") + out(control, "=00 ") + out(base, "=00 ") +
         out(control, "=06 ") + "spin500 " + status + "? " + out(control, "=00 ") +
         out(base, "=FF ") + out(control, "=06 ") + "spin500 " + status + "? " +
         out(control, "=09 ") + out(base, "=BF ") + out(control, "=01 ") + out(control, "=09 ") +
         out(base, "=00 ") + out(control, "=0F ") + out(control, "=09 ") + "spin500 " + status +
         "? " + out(base, "=FF ") + out(control, "=0F ") + out(control, "=09 ") + "spin500 " +
         status + "? " + out(control, "=08 ");
}

const std::string kNoModelLamp = "0=00 2=00 2=00 2=00 ";
const std::string kNoModelReset =
    "0=40 2=00 2=00 2=00 0=00 2=00 2=00 2=00 0=00 2=00 2=00 2=00 0=C4 2=00 2=00 2=00";
const std::string kPulse = "378=08 37A=05 37A=04 37A=05 sleep200 378=00 37A=05 37A=04 37A=05 ";
const std::string kReset =
    "378=40 37A=05 37A=04 37A=05 378=00 37A=0D 37A=0C 37A=0D "
    "378=00 37A=07 37A=06 37A=07 378=C4 37A=0F 37A=0E 37A=0F";
const std::string kLampOff = "378=40 37A=05 37A=04 37A=05 ";

TEST(StartUp, withoutABoardAndShutDown) {
  PortScript port;
  FormRig rig(port, port);
  rig.form.Form_Load();
  EXPECT_EQ(port.taken(), "0=00 0=00 0=00 0=00 " + probes("278", "279", "27A") +
                              probes("378", "379", "37A") + probes("3BC", "3BD", "3BE") +
                              kNoModelLamp + kNoModelReset);
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
      "378=60 37A=0E 37A=00 37A=00 379? 37A=00 379? 378=40 37A=0E 37A=00 37A=00 379? 37A=00 379? ";
  const std::string isSix3BC =
      "3BC=60 3BE=0E 3BE=00 3BE=00 3BD? 3BE=00 3BD? 3BC=40 3BE=0E 3BE=00 3BE=00 3BD? 3BE=00 3BD? ";
  EXPECT_EQ(port.taken(), "0=00 0=00 0=00 0=00 " + probes("278", "279", "27A") +
                              probes("378", "379", "37A") + isSix378 + probes("3BC", "3BD", "3BE") +
                              isSix3BC + kPulse + kReset + " " + kLampOff + kReset);
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
            "[KESTREL6 SETUP]\r\nDATE = 2026-11-21 14:03\r\nIO_PORT = 378\r\nMODEL =  5\r\n");
}

TEST(StartUp, forcedModelsApplyTheirCodesAndReset) {
  PortScript port;
  FormRig rig(port, port);
  rig.form.Form_Load();
  rig.controls.LPTSelection[1].press();
  (void)port.taken();
  ASSERT_TRUE(rig.press("ForceKestrel4"));
  EXPECT_EQ(port.taken(),
            "278=40 27A=0A 27A=0B 27A=0A 278=00 27A=02 27A=03 27A=02 "
            "278=00 27A=08 27A=09 27A=08 278=C4 27A=00 27A=01 27A=00");
  ASSERT_TRUE(rig.press("ForceKestrel6"));
  EXPECT_EQ(port.taken(),
            "278=40 27A=05 27A=04 27A=05 278=00 27A=0D 27A=0C 27A=0D "
            "278=00 27A=07 27A=06 27A=07 278=C4 27A=0F 27A=0E 27A=0F");
  EXPECT_EQ(rig.controls.KestrelHardwareFound.caption(), "Operator Forced Model 6");
  EXPECT_EQ(rig.controls.KestrelHardwareFound.colour(), Colour::Red);
  EXPECT_EQ(rig.controls.Ready_label.caption(), "Ready");
  EXPECT_EQ(rig.log(), (std::vector<std::string>{"Port Selection changed to 278h",
                                                 "KESTREL-4 Device was FORCED by Operator",
                                                 "KESTREL-6 Device was FORCED by Operator"}));
  EXPECT_FALSE(std::filesystem::exists(rig.folder / "config/kestrel6.ini"));
}

}  // namespace
}  // namespace kestrel::test
