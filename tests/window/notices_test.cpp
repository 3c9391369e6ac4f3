#include "window/window_rig.h"

namespace kestrel::test {
namespace {

struct NoticeRig : StartedRig {
  using StartedRig::StartedRig;
  std::string text(const char* notice) {
    QWidget* const widget = shown(notice);
    return widget == nullptr ? "" : widget->accessibleName().toStdString();
  }
  void press(const char* button) {
    QWidget* const widget = shown(button);
    ASSERT_NE(widget, nullptr) << button;
    QTest::mouseClick(widget, Qt::LeftButton);
    activate();
  }
};

TEST(Notices, aMissingBoardIsToldUntilItAnswers) {
  NoticeRig rig("27C256");
  bool isSimulated = false;
  rig.window.offerSimulation([&] { isSimulated = true; });
  EXPECT_EQ(rig.text("notice-board"), "");
  rig.program.simulated()->bench().unplug(0x378);
  rig.click("TestHardware_button");
  EXPECT_EQ(
      rig.text("notice-board"),
      "Notice: No board answers.\nCheck its cable and its supply, and that the socket is empty.");
  EXPECT_TRUE(rig.find<QLabel>("outcome").text().contains("no board answers"));
  rig.press("useSimulated");
  EXPECT_TRUE(isSimulated);
  rig.press("close-board");
  rig.press("TestHardware_button");
  EXPECT_EQ(rig.text("notice-board"), "") << "it was put away";
  EXPECT_FALSE(rig.find("notices").isVisible());
  rig.program.simulated()->plug(sim::Model::kestrel6, 0x378);
  rig.press("TestHardware_button");
  rig.program.simulated()->bench().unplug(0x378);
  rig.press("TestHardware_button");
  EXPECT_NE(rig.text("notice-board"), "") << "a new case";
  rig.program.simulated()->plug(sim::Model::kestrel6, 0x378);
  rig.shown("testAgain")->setFocus();
  QTest::keyClick(rig.shown("testAgain"), Qt::Key_Space);
  rig.activate();
  EXPECT_EQ(rig.text("notice-board"), "");
  EXPECT_TRUE(rig.find("BufferDisplay").hasFocus())
      << "not on a button that a second Space presses";
}

TEST(Notices, bytesThatAreAllTheSameAreToldUntilOthersAreRead) {
  NoticeRig rig("27C256");
  rig.click("Read_button");
  EXPECT_NE(rig.text("notice-same").find("an empty socket"), std::string::npos);
  rig.board().loadChip(countingBytes(32'768));
  rig.click("Read_button");
  EXPECT_EQ(rig.text("notice-same"), "");
}

TEST(Waveform, isOfTheDeviceThatIsWorkedOnAndEndsWithTheChoiceOfAnother) {
  launch::LaunchOptions options = simulatedOptions("24C16");
  options.mayRecord = true;
  WindowRig rig(options);
  rig.start();
  launch::WaveFile& waves = *rig.program.waves();
  rig.window.offerWaves(waves);
  rig.select("27C256");
  waves.begin(rig.folder / "w.vcd");
  rig.select("24C16");
  rig.click("Read_button");
  EXPECT_TRUE(waves.isOpen());
  rig.select("27C256");
  EXPECT_FALSE(waves.isOpen());
  EXPECT_TRUE(rig.find<QLabel>("outcome").text().contains("w.vcd: "));
  const std::vector<std::uint8_t> file = readWholeFile(rig.folder / "w.vcd", 1'000'000);
  EXPECT_EQ(std::string(file.begin(), file.begin() + 21), "$comment Eeprom 24C16");
}

}  // namespace
}  // namespace kestrel::test
