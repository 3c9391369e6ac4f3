#include <gmock/gmock.h>

#include <QFileDialog>
#include <QLineEdit>
#include <QProgressBar>

#include "window/window_rig.h"

namespace kestrel::test {
namespace {

TEST(TypicalRun, opensAtRestWithAnEmptyLog) {
  WindowRig rig;
  rig.start();
  EXPECT_EQ(rig.logText(), "");
  EXPECT_EQ(rig.window.windowTitle(), "Kestrel");
  EXPECT_EQ(rig.find<QLabel>("KestrelHardwareFound").text(), "MODEL 5 - PC port 378h");
  EXPECT_TRUE(rig.displayText().contains("000000| 00000000 00000000"));
  for (const char* const name : {"Read_button", "Program_button", "Erase_button", "Show_button",
                                 "Voltage_button(1)", "CheckCode", "Stop"}) {
    EXPECT_FALSE(rig.find(name).isEnabled()) << name;
  }
  EXPECT_TRUE(rig.find("PleaseSelect").isVisible());
  EXPECT_FALSE(rig.find("FrameVoltageSelection").isVisible());
  EXPECT_EQ(rig.sounds.played, std::vector<std::string>{"init.wav"});
}

TEST(TypicalRun, opensSelectsProgramsVerifiesAndSaves) {
  WindowRig rig;
  rig.start();
  rig.ports.simulated()->board().blankChip();
  const auto image = countingBytes(32768);
  rig.openFile("game.bin", image);
  EXPECT_EQ(rig.window.windowTitle(), "game.bin - Kestrel");
  EXPECT_EQ(rig.find<QLabel>("FileNameCodeSize").text(), "(32768)");
  EXPECT_TRUE(rig.displayText().contains("000010| 70777E85"));

  rig.select("27c256");
  EXPECT_TRUE(rig.logged("Device Eprom 27C256 was Selected"));
  rig.click("VerifyAfterProgramming");
  const WithDialog question = answering(QMessageBox::Ok);
  rig.click("Program_button");
  EXPECT_TRUE(question.wasShown());
  EXPECT_EQ(rig.chipContents(), image);
  EXPECT_FALSE(rig.controls().Error_label.colour() == Colour::Red);

  const WithDialog save([&](QDialog& dialog) {
    dialog.findChild<QLineEdit*>("fileNameEdit")
        ->setText(QString::fromStdString((rig.folder / "copy.bin").string()));
    dialog.accept();
  });
  rig.trigger("mnuFileSaveCodeAs");
  EXPECT_EQ(readWholeFile(rig.folder / "copy.bin", 40'000), image);
}

TEST(TypicalRun, readsTheChipAndShowsItsPages) {
  WindowRig rig;
  rig.start();
  rig.ports.simulated()->board().loadChip(countingBytes(32768));
  rig.select("27C256");
  rig.click("Read_button");
  EXPECT_EQ(rig.form.state().CodeBuffer[0x1234], static_cast<std::uint8_t>(0x1234 * 7 + 0x12));
  EXPECT_TRUE(rig.logged("32768 bytes Read from Device"));
  EXPECT_TRUE(rig.displayText().contains("000000| 00070E15 1C232A31"));
  auto& page = rig.find<QPlainTextEdit>("BufferDisplay");
  QTest::keyClick(&page, Qt::Key_PageDown);
  EXPECT_EQ(rig.controls().VScroll1.value(), 1);
  rig.turn();
  EXPECT_TRUE(rig.displayText().contains("000100| 01080F16"));
  QTest::keyClick(&page, Qt::Key_End);
  EXPECT_EQ(rig.controls().VScroll1.value(), 127);
  QTest::keyClick(&page, Qt::Key_Home);
  EXPECT_EQ(rig.controls().VScroll1.value(), 0);
}

TEST(TypicalRun, anAlertIsRedStopsTheFourButtonsAndIsClickedAway) {
  WindowRig rig;
  rig.start();
  rig.ports.simulated()->board().blankChip();
  rig.ports.simulated()->board().fitWeakCell(0x40);
  rig.select("27C256");
  rig.openFile("zeros.bin", std::vector<std::uint8_t>(32768, 0));
  const WithDialog question = answering(QMessageBox::Ok);
  rig.click("Program_button");
  auto& lamp = rig.find<QAbstractButton>("Error_label");
  EXPECT_EQ(lamp.accessibleName(), "Error alert, press to dismiss");
  EXPECT_EQ(lamp.grab().toImage().pixelColor(4, lamp.height() / 2), QColor(0xD0, 0x10, 0x10));
  for (const char* const name :
       {"Program_button", "Verify_button", "Read_button", "Display_button"}) {
    EXPECT_FALSE(rig.find(name).isEnabled()) << name;
  }
  EXPECT_TRUE(rig.find<QAction>("menuProgramCode").isEnabled());
  lamp.setFocus();
  QTest::keyClick(&lamp, Qt::Key_Space);
  rig.turn();
  EXPECT_TRUE(rig.logged("Error Alert was Turned Off"));
  for (const char* const name :
       {"Program_button", "Verify_button", "Read_button", "Display_button"}) {
    EXPECT_TRUE(rig.find(name).isEnabled()) << name;
  }
  EXPECT_EQ(lamp.focusPolicy(), Qt::NoFocus);
}

TEST(TypicalRun, aCancelledQuestionLeavesTheChipAlone) {
  WindowRig rig;
  rig.start();
  rig.ports.simulated()->board().blankChip();
  rig.select("27C256");
  rig.openFile("zeros.bin", std::vector<std::uint8_t>(32768, 0));
  const WithDialog question = answering(QMessageBox::Cancel);
  rig.trigger("menuProgramCode");
  EXPECT_TRUE(question.wasShown());
  EXPECT_EQ(rig.chipContents(), std::vector<std::uint8_t>(32768, 0xFF));
}

TEST(TypicalRun, theVoltageInUseStandsBesideTheCommands) {
  WindowRig rig(simulatedOptions("2732A"));
  rig.start();
  EXPECT_FALSE(rig.find("voltageInUse").isVisible());
  rig.select("2732A");
  EXPECT_TRUE(rig.find("voltageInUse").isVisible());
  EXPECT_EQ(rig.find("voltageInUse").accessibleName(), "12.5 V");
  rig.click("Voltage_button(2)");
  EXPECT_EQ(rig.form.state().VppVolts, 21);
  EXPECT_EQ(rig.find("voltageInUse").accessibleName(), "21 V");
  EXPECT_TRUE(rig.logged("BE CAREFULL!!! You just Selected Programming Voltage as 21 Volts!!!"));
}

}  // namespace
}  // namespace kestrel::test
