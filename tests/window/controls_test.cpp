#include <gmock/gmock.h>

#include <QAbstractItemView>
#include <QCompleter>
#include <QProgressBar>
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

TEST(DeviceList, wheelAndArrowsSelectNothing) {
  StartedRig rig;
  auto& device = rig.find<QComboBox>("Device");
  turnWheel(device, -120);
  QTest::keyClick(&device, Qt::Key_Down);
  rig.turn();
  device.hidePopup();
  EXPECT_EQ(rig.logText(), "");
}

TEST(Options, keepTheirWidthWhateverASetupNamesAsThePort) {
  StartedRig rig;
  const int width = rig.window.minimumSizeHint().width();
  rig.controls().PortSelected.setText(std::string(500, 'W'));
  rig.turn();
  EXPECT_LT(rig.window.minimumSizeHint().width(), width + 100);
}

TEST(Speed, dragAndWheelAreOneChangeEach) {
  StartedRig rig;
  auto& slider = rig.find<QSlider>("Slider1");
  turnWheel(slider, -120);
  EXPECT_EQ(slider.value(), 18) << "passed over without the focus";
  slider.setFocus();
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

TEST(Display, aSecondWindowComesBackForWhoAsksAgain) {
  StartedRig rig("27C256");
  rig.click("Command1");
  QWidget& second = rig.find("frmDisplay1");
  second.showMinimized();
  rig.click("Command1");
  EXPECT_TRUE(second.isVisible() && !second.isMinimized());
  second.close();
  EXPECT_EQ(rig.screen.openWindows(), 1U);
  rig.click("Command1");
  EXPECT_TRUE(second.isVisible());
  rig.screen.closeLastWindow();
  EXPECT_EQ(rig.screen.openWindows(), 1U);
}

TEST(Keys, aStepNumberOnlySetsTheFocus) {
  StartedRig rig("27C256");
  rig.click("HiLow_button(1)");
  const QString before = rig.logText();
  for (const auto& [key, focused] : {std::pair(Qt::Key_4, "Read_button"),
                                     {Qt::Key_3, "HiLow_button(0)"},
                                     {Qt::Key_2, "openCodeFile"},
                                     {Qt::Key_1, "Device"}}) {
    QTest::keyClick(&rig.window, key, Qt::AltModifier);
    QTest::qWait(150);  // a click by a label is animated
    EXPECT_TRUE(rig.find(focused).hasFocus()) << focused;
  }
  EXPECT_EQ(rig.logText(), before);
  EXPECT_TRUE(rig.controls().HiLow_button[1].value());
  auto& device = rig.find<QComboBox>("Device");
  device.setFocus();
  QTest::keyClicks(device.lineEdit(), "27");
  QWidget* const matches = device.completer()->popup();
  ASSERT_TRUE(matches->isVisible());
  QTest::keyPress(matches, Qt::Key_Alt);
  EXPECT_FALSE(matches->isVisible()) << "so that the letter reaches the menus";
  QTest::keyClick(&device, Qt::Key_F, Qt::AltModifier);
  EXPECT_EQ(device.currentText(), "27");
}

TEST(Progress, isShownInHundredthsOfWhateverTheCommandCounts) {
  StartedRig rig;
  for (const auto& [value, text] : {std::pair(0, ""), {1, "2 %"}, {25, "50 %"}, {60, "100 %"}}) {
    rig.controls().ProgressBar1.setMaximum(50);
    rig.controls().ProgressBar1.setValue(value);
    rig.mirror.refresh();
    EXPECT_EQ(rig.find<QLabel>("percent").text(), text);
    EXPECT_EQ(rig.find<QProgressBar>("ProgressBar1").value(), QString(text).split(' ')[0].toInt());
  }
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
