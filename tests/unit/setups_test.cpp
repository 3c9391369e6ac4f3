// The four setup files: what is written, what is read back, and what a damaged
// file does.

#include <gtest/gtest.h>

#include "support/control_names.h"
#include "support/script_form.h"

namespace kestrel::test {
namespace {

struct Setups : ScriptForm {
  Setups() { load(); }

  /// Restores a file of slot 1 with this text.
  void restore(const std::string& text) {
    file("KSSetup1.INI", text);
    rig.press("Setup");
    ASSERT_TRUE(rig.press("LoadSetup1"));
  }
  std::string saved(const std::string& name) { return readWholeTextFile(rig.folder / name); }
};

TEST(SaveSetup, writesNineteenLines) {
  Setups f;
  const std::string code = f.file("rom.bin", "abc");
  f.open("mnuFileOpenCode", code);
  f.rig.select("Eprom 27256");
  f.c.Voltage_button[2].press();
  f.c.CheckBlankPriorProgramming.press();
  f.c.LPTSelection[1].press();
  f.c.HiLow_button[2].press();
  f.c.Slider1.setValue(7);
  f.c.VerifyAfterProgramming.setValue(2);
  f.rig.dialogs.texts = {"Lab 2"};
  ASSERT_TRUE(f.rig.press("SaveSetup2"));
  EXPECT_EQ(f.saved("KSSetup2.INI"),
            "SetupName = Lab 2\r\nsFILE = " + code +
                "\r\nDevice.Index = 10\r\n"
                "Voltage_button(0).value = False\r\nVoltage_button(1).value = False\r\n"
                "Voltage_button(2).value = True\r\nVoltage_button(3).value = False\r\n"
                "CheckBlankPriorProgramming.Value = 1\r\nVerifyAfterProgramming.Value = 2\r\n"
                "LPTSelection(0).Value = False\r\nLPTSelection(1).Value = True\r\n"
                "LPTSelection(2).Value = False\r\nPortSelected.Text = 278h\r\n"
                "HiLow_button(0).Value = False\r\nHiLow_button(1).Value = False\r\n"
                "HiLow_button(2).Value = True\r\nSlider1.Value = 7\r\n"
                "CheckCode.Value = 1\r\nCheckData.Value = 0\r\n");
}

TEST(SaveSetup, withoutANameTakesTheSlotsAndWritesTheFileThatIsThere) {
  Setups f;
  f.file("kssetup3.ini", "SetupName = old\n");
  ASSERT_TRUE(f.rig.press("SaveSetup3"));
  EXPECT_TRUE(f.saved("kssetup3.ini")
                  .starts_with("SetupName = No Name Setup 3\r\nsFILE = \r\nDevice.Index = -1\r\n"));
  EXPECT_FALSE(std::filesystem::exists(f.rig.folder / "KSSetup3.INI"));
  f.rig.press("Setup");
  EXPECT_EQ(enabledOf(f.c, "LoadSetup1 LoadSetup2 LoadSetup3 LoadSetup4"), "LoadSetup3");
  EXPECT_EQ(f.c.LoadSetup[2].caption(), "No Name Setup 3");
}

TEST(RestoreSetup, appliesAWrittenFileButForVoltagesAndBlankCheck) {
  Setups f;
  const std::string code = f.file("rom.bin", "abc");
  f.restore("SetupName = Lab\r\nsFILE = " + code +
            "\r\nDevice.Index = 10\r\n"
            "Voltage_button(0).value = False\r\nVoltage_button(3).value = True\r\n"
            "CheckBlankPriorProgramming.Value = 1\r\nVerifyAfterProgramming.Value = 1\r\n"
            "LPTSelection(0).Value = False\r\nLPTSelection(2).Value = True\r\n"
            "PortSelected.Text = by hand\r\nHiLow_button(1).Value = True\r\n"
            "Slider1.Value = 12\r\nCheckCode.Value = 0\r\nCheckData.Value = 1\r\n");
  EXPECT_FALSE(f.c.Voltage_button[3].value());
  EXPECT_TRUE(f.c.Voltage_button[1].value());
  EXPECT_EQ(f.c.CheckBlankPriorProgramming.value(), 0);
  EXPECT_EQ(f.c.VerifyAfterProgramming.value(), 1);
  EXPECT_EQ(f.s.PortBase, 0x3BC);
  EXPECT_EQ(f.c.PortSelected.text(), "by hand");
  EXPECT_TRUE(f.c.HiLow_button[1].value());
  EXPECT_EQ(f.c.Slider1.value(), 12);
  EXPECT_EQ(f.c.CheckCode.value(), 1);  // the code file that is loaded last ticks it again
  EXPECT_EQ(f.rig.log(),
            (std::vector<std::string>{
                ">>>>>>>>>>>>", "RESTORING SETUP FROM KSSetup1.INI",
                "Most Common Programming Voltage Selected: 12.5 Volts!!!",
                "Device Eprom 27256 was Selected",
                "Device Size is: 32768 Bytes, Initial VPP suggested: 12.5V",
                "Port Selection changed to 3BCh", "Program Speed Slider set to: 12",
                "File " + code + " - was read into Buffer. 3 bytes long.", "Read File CRC = $0126",
                "You can Install a Blank Eprom for Programming", "SETUP RESTORED FROM KSSetup1.INI",
                ">>>>>>>>>>>>"}));
}

TEST(RestoreSetup, readsValuesAsFarAsTheyGoAndSkipsWhatIsNoLineOfItsOwn) {
  Setups f;
  f.restore(
      "Device.Index = 7x\nSlider1.Value = 1e99\nVerifyAfterProgramming.Value = 7\n"
      "Voltage_button(2).Value = True\n");
  EXPECT_EQ(f.s.VppVolts, 21) << "a hand-written capital restores a voltage";
  EXPECT_EQ(f.s.DeviceName, "Eprom 27C64");
  EXPECT_EQ(f.c.Slider1.value(), 20);
  EXPECT_EQ(f.c.VerifyAfterProgramming.value(), 2);
  f.restore("Device.Index = 81\nSlider1.Value = none\nVerifyAfterProgramming.Value = -1\n");
  EXPECT_EQ(f.c.Device.position(), 7);
  EXPECT_EQ(f.c.Slider1.value(), 1);
  f.restore("Device.Index = -99999999999999999999\nCheckData.Value = 1\n");
  EXPECT_EQ(f.c.CheckData.value(), 1);
  EXPECT_EQ(f.c.Device.position(), -1);
  for (const std::string value : {"maybe", "", "5-3", "inf", "0", "false"}) {
    f.restore("HiLow_button(2).Value = " + value + "\n");
    EXPECT_TRUE(f.c.HiLow_button[0].value()) << value;
  }
  for (const std::string value : {"tRUE", " true ", "-1", "1E2"}) {
    f.restore("HiLow_button(0).Value = True\nHiLow_button(2).Value = " + value + "\n");
    EXPECT_TRUE(f.c.HiLow_button[2].value()) << value;
  }
  const auto bytes = randomBytes(5000, 3);
  f.restore("Slider1.Value =\nslider1.Value = 3\n Slider1.Value = 3\nSlider1.Val" +
            std::string(bytes.begin(), bytes.end()) + "\nDevice.Ind");
  EXPECT_EQ(f.c.Slider1.value(), 1);
}

// The new name would otherwise stand for the old contents, and the next save destroy the file.
TEST(RestoreSetup, aCodeFileThatIsNotLoadedKeepsTheNameOfTheEarlierOne) {
  Setups f;
  const std::string code = f.file("rom.bin", "abc");
  f.open("mnuFileOpenCode", code);
  f.restore("sFILE = " + (f.rig.folder / "gone.bin").string() + "\nSlider1.Value = 9\n");
  EXPECT_EQ(f.s.CodeFileName, code);
  EXPECT_EQ(f.c.Slider1.value(), 9);
  EXPECT_EQ(f.rig.dialogs.boxes.size(), 1U);
  f.s.CtlIdle[3] = 0x100;
  f.restore("sFILE = " + f.file("other.bin", "xyz") + "\nDevice.Index = 11\n");
  EXPECT_EQ(f.rig.result.ending, Ending::RunTimeError);
  EXPECT_EQ(f.s.CodeFileName, code);
}

}  // namespace
}  // namespace kestrel::test
