#include <QRadioButton>
#include <QSpinBox>

#include "window/window_rig.h"

namespace kestrel::test {
namespace {

TEST(TypicalRun, opensAtRestThenSelectsProgramsVerifiesAndSaves) {
  StartedRig rig;
  EXPECT_EQ(rig.logText(), "");
  EXPECT_EQ(rig.find<QLabel>("KestrelHardwareFound").text(), "MODEL 5 - PC port 378h");
  EXPECT_TRUE(rig.displayed("000000| 00000000 00000000"));
  for (const char* const name : {"Read_button", "Program_button", "Erase_button", "Stop"}) {
    EXPECT_FALSE(rig.find(name).isEnabled()) << name;
  }
  EXPECT_TRUE(rig.find("PleaseSelect").isVisible());
  EXPECT_FALSE(rig.find("FrameVoltageSelection").isVisible());

  const auto image = countingBytes(32768);
  rig.openFile("game.bin", image);
  EXPECT_EQ(rig.window.windowTitle(), "game.bin - Kestrel");
  EXPECT_TRUE(rig.displayed("000010| 70777E85"));

  rig.select("27c256");
  EXPECT_TRUE(rig.logged("Device Eprom 27C256 was Selected"));
  rig.click("VerifyAfterProgramming");
  const WithDialog question = answering(QMessageBox::Ok);
  rig.click("Program_button");
  EXPECT_EQ(question.said(), "Program the Device?");
  EXPECT_EQ(rig.chipContents(), image);
  EXPECT_FALSE(rig.controls().Error_label.colour() == Colour::Red);

  const WithDialog save = choosing((rig.folder / "copy.bin").string());
  rig.trigger("mnuFileSaveCodeAs");
  EXPECT_EQ(readWholeFile(rig.folder / "copy.bin", 40'000), image);
}

TEST(TypicalRun, readsTheChipAndShowsItsPages) {
  StartedRig rig("27C256");
  rig.board().loadChip(countingBytes(32768));
  rig.click("Read_button");
  EXPECT_TRUE(rig.logged("32768 bytes Read from Device"));
  EXPECT_TRUE(rig.displayed("000000| 00070E15 1C232A31"));
  auto& page = rig.find<QPlainTextEdit>("BufferDisplay");
  QTest::keyClick(&page, Qt::Key_PageDown);
  rig.turn();
  EXPECT_TRUE(rig.displayed("000100| 01080F16"));
  QTest::keyClick(&page, Qt::Key_End);
  EXPECT_EQ(rig.controls().VScroll1.value(), 127);
}

TEST(TypicalRun, anAlertIsRedStopsTheFourButtonsAndIsClickedAway) {
  StartedRig rig("27C256");
  rig.board().fitWeakCell(0x40);
  rig.openFile("zeros.bin", std::vector<std::uint8_t>(32768, 0));
  const WithDialog question = answering(QMessageBox::Ok);
  rig.click("Program_button");
  const auto expectFourButtons = [&](bool enabled) {
    for (const char* const name :
         {"Program_button", "Verify_button", "Read_button", "Display_button"}) {
      EXPECT_EQ(rig.find(name).isEnabled(), enabled) << name;
    }
  };
  auto& lamp = rig.find<QAbstractButton>("Error_label");
  EXPECT_EQ(lamp.grab().toImage().pixelColor(4, lamp.height() / 2), QColor(0xD0, 0x10, 0x10));
  expectFourButtons(false);
  EXPECT_TRUE(rig.find<QAction>("menuProgramCode").isEnabled());
  rig.click("Error_label");
  EXPECT_TRUE(rig.logged("Error Alert was Turned Off"));
  expectFourButtons(true);
}

TEST(TypicalRun, theVoltageInUseStandsBesideTheCommands) {
  StartedRig rig("2732A");
  auto& shown = rig.find("voltageInUse");
  EXPECT_TRUE(shown.isVisible());
  EXPECT_EQ(shown.accessibleName(), "12.5 V");
  rig.click("Voltage_button(2)");
  EXPECT_EQ(rig.form.state().VppVolts, 21);
  EXPECT_EQ(shown.accessibleName(), "21 V");
  rig.select("X28C256");
  EXPECT_FALSE(shown.isVisible()) << "no voltage for an EEPROM";
  rig.select("2732");
  rig.click("Voltage_button(3)");
  rig.click("Voltage_button(0)");
  EXPECT_EQ(shown.accessibleName(), "25 V") << "5 V chosen changes nothing of what is applied";
  rig.select("27C256");
  rig.click("Voltage_button(3)");
  EXPECT_EQ(shown.accessibleName(), "12.5 V") << "its routine knows no other";
}

// The classic way sees the lower half of a 27C040 twice; one click, and the whole chip is there.
TEST(TypicalRun, aLimitOfTheClassicWayIsShownWithItsCure) {
  StartedRig rig("27C040");
  EXPECT_TRUE(rig.find("notice-limit").accessibleName().contains("A18"));
  rig.program.simulated()->bench().findings().clear();
  rig.click("useDataSheet");
  EXPECT_EQ(rig.shown("notice-limit"), nullptr);
  EXPECT_TRUE(rig.find<QRadioButton>("AlgorithmSelection(1)").isChecked());
  std::vector<std::uint8_t> image(0x80000, 0xFF);
  image.front() = 0x11;
  image[0x40000] = 0x22;
  rig.openFile("halves.bin", image);
  rig.click("VerifyAfterProgramming");
  const WithDialog question = answering(QMessageBox::Ok);
  rig.click("Program_button");
  EXPECT_TRUE(rig.logged("Device Contents MATCHES with Buffer Contents"));
  EXPECT_EQ(rig.chipContents(), image);
  EXPECT_TRUE(rig.program.simulated()->bench().findings().empty());
  rig.select("27C080 OTP");
  EXPECT_EQ(rig.form.state().DeviceName, "Eprom 27C080 OTP");
  rig.click("AlgorithmSelection(0)");
  EXPECT_TRUE(rig.controls().AlgorithmSelection[1].value()) << "the OTP is not offered there";
  EXPECT_EQ(rig.shown("FrameProtection"), nullptr);
  rig.select("X28C256");
  rig.click("ProtectionSelection(1)");
  EXPECT_EQ(rig.form.state().protection, Protection::On);
  EXPECT_EQ(rig.shown("AnyCode"), nullptr);
  rig.find<QSpinBox>("ReadTimes").setValue(3);
  EXPECT_EQ(rig.controls().ReadTimes.value(), 3);
}

}  // namespace
}  // namespace kestrel::test
