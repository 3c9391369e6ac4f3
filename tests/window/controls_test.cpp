#include <gmock/gmock.h>

#include <QCompleter>
#include <QRadioButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSlider>
#include <QWheelEvent>

#include "window/window_rig.h"

namespace kestrel::test {
namespace {

void turnWheel(QWidget& widget, int angle) {
  const QPointF place(widget.rect().center());
  QWheelEvent event(place, widget.mapToGlobal(place), {}, {0, angle}, Qt::NoButton, Qt::NoModifier,
                    Qt::NoScrollPhase, false);
  QApplication::sendEvent(&widget, &event);
}

TEST(DeviceList, findsWhatIsTypedAnywhereInAName) {
  StartedRig rig;
  auto& device = rig.find<QComboBox>("Device");
  ASSERT_EQ(device.count(), 41);
  turnWheel(device, -120);
  QTest::keyClick(&device, Qt::Key_Down);
  rig.turn();
  device.hidePopup();
  EXPECT_EQ(rig.logText(), "") << "wheel and arrows select nothing";
  QTest::keyClicks(device.lineEdit(), "c51");
  EXPECT_EQ(device.completer()->completionCount(), 1);
  QTest::keyClick(&device, Qt::Key_Return);
  rig.turn();
  EXPECT_EQ(rig.form.state().DeviceName, "Eprom 27C512");
  EXPECT_EQ(device.currentIndex(), 13);
  rig.select("AT90S2313");
  EXPECT_EQ(device.currentIndex(), -1) << "the form rejects what is not available";
  rig.select("nothing like it");
  EXPECT_EQ(device.currentText(), "");
  EXPECT_EQ(rig.form.state().DeviceName, "Eprom 27C512");
}

TEST(Menus, anEntryDoesWhatItsButtonDoes) {
  const auto logOf = [](const std::function<void(WindowRig&)>& press) {
    StartedRig rig("27C256");
    press(rig);
    const QRegularExpression time("\\d\\d:\\d\\d:\\d\\d");
    return rig.logText().replace(time, "T").toStdString();
  };
  const std::vector<std::pair<const char*, const char*>> pairs{
      {"Read_button", "menuReadCode"},
      {"Blank_button", "menuBlankCheck"},
      {"Display_button", "menuDisplayCode"},
      {"TestHardware_button", "menuTestHardware"}};
  for (const auto& [button, entry] : pairs) {
    const std::string byButton = logOf([&](WindowRig& rig) { rig.click(button); });
    EXPECT_EQ(byButton, logOf([&](WindowRig& rig) { rig.trigger(entry); })) << entry;
    EXPECT_GT(std::ranges::count(byButton, '\n'), 3) << button;
  }
}

TEST(Menus, everyEntryIsThereWithItsOwnEnabledState) {
  StartedRig rig;
  for (const Control* const control : rig.controls().all()) {
    const QString name = QString::fromStdString(control->name());
    if (!name.startsWith("menu") && !name.startsWith("mnu") && !name.startsWith("Force")) continue;
    const auto& action = rig.find<QAction>(control->name().c_str());
    EXPECT_EQ(action.isEnabled(), control->enabled()) << control->name();
    EXPECT_FALSE(action.text().isEmpty()) << control->name();
  }
}

TEST(Menus, theSetupMenuReadsTheSlotsWhenItOpens) {
  StartedRig rig;
  const auto& slot2 = rig.find<QAction>("LoadSetup2");
  EXPECT_FALSE(slot2.isEnabled());
  writeFileAtomically(rig.folder / "KSSetup2.INI", std::string_view("SetupName = Bench & lab\r\n"));
  emit rig.find<QMenu>("Setup").aboutToShow();
  EXPECT_TRUE(slot2.isEnabled());
  EXPECT_EQ(slot2.text(), "Bench && lab") << "shown with one ampersand";
  EXPECT_FALSE(rig.find<QAction>("LoadSetup1").isEnabled());
}

TEST(Options, theGroupsShowWhatTheControlsAreAndKeepTheirWidth) {
  StartedRig rig;
  const int width = rig.window.minimumSizeHint().width();
  rig.click("LPTSelection(1)");
  EXPECT_FALSE(rig.find<QRadioButton>("LPTSelection(0)").isChecked());
  EXPECT_EQ(rig.form.state().PortBase, 0x278);
  rig.click("HiLow_button(2)");
  EXPECT_TRUE(rig.controls().HiLow_button[2].value());
  rig.controls().PortSelected.setText(std::string(500, 'W'));
  rig.turn();
  EXPECT_LT(rig.window.minimumSizeHint().width(), width + 100);
}

TEST(Speed, dragAndWheelAreOneChangeEach) {
  StartedRig rig;
  auto& slider = rig.find<QSlider>("Slider1");
  for (int notch = 0; notch < 3; ++notch) turnWheel(slider, -120);
  ASSERT_TRUE(QTest::qWaitFor([&] { return rig.controls().Slider1.value() == 15; }, 2000));
  rig.turn();
  EXPECT_EQ(rig.logText().count("Program Speed Slider"), 1);
  slider.setSliderDown(true);
  for (const int place : {14, 10, 5}) slider.setSliderPosition(place);
  EXPECT_EQ(rig.logText().count("Program Speed Slider"), 1);
  slider.setSliderDown(false);
  rig.turn();
  EXPECT_EQ(rig.logText().count("Program Speed Slider"), 2);
  EXPECT_TRUE(rig.logged("Program Speed Slider set to: 5"));
}

TEST(Display, opensASecondWindowAndADoubleClickWritesTheFiles) {
  StartedRig rig("27C256");
  rig.click("Command1");
  EXPECT_TRUE(rig.find("frmDisplay1").isVisible());
  EXPECT_TRUE(rig.find<QPlainTextEdit>("frmDisplay1.BufferDisplay")
                  .toPlainText()
                  .contains("0000F0| 00000000"));
  rig.screen.closeLastWindow();
  EXPECT_EQ(rig.screen.openWindows(), 1U);
  for (const char* const name : {"BufferDisplay", "SystemLog"}) {
    QTest::mouseDClick(rig.find<QPlainTextEdit>(name).viewport(), Qt::LeftButton);
  }
  rig.turn();
  EXPECT_THAT(readWholeTextFile(rig.folder / "KESTREL.BUF"), testing::HasSubstr("0000F0| "));
  EXPECT_THAT(readWholeTextFile(rig.folder / "KESTREL.LOG"), testing::HasSubstr("27C256"));
}

TEST(Log, followsTheNewestLineUnlessOneHasScrolledUp) {
  StartedRig rig;
  auto& bar = *rig.find<QPlainTextEdit>("SystemLog").verticalScrollBar();
  auto& box = rig.controls().SystemLog;
  const auto write = [&](int lines) {
    for (int line = 0; line < lines; ++line) box.append("\r\n12:00:00>  line");
    rig.turn();
  };
  write(200);
  EXPECT_EQ(bar.value(), bar.maximum());
  bar.setValue(10);
  write(50);
  EXPECT_EQ(bar.value(), 10);
  bar.setValue(bar.maximum());
  write(50);
  EXPECT_EQ(bar.value(), bar.maximum());
}

}  // namespace
}  // namespace kestrel::test
