#include <gmock/gmock.h>

#include <QAbstractItemView>
#include <QClipboard>
#include <QCompleter>
#include <QProgressBar>
#include <QRadioButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSlider>
#include <QToolTip>
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
  ASSERT_EQ(device.count(), static_cast<int>(rig.form.controls().Device.items().size()));
  turnWheel(device, -120);
  QTest::keyClick(&device, Qt::Key_Down);
  rig.turn();
  device.hidePopup();
  EXPECT_EQ(rig.logText(), "") << "wheel and arrows select nothing";
  rig.select("c259");
  EXPECT_EQ(device.completer()->completionCount(), 1);
  EXPECT_EQ(rig.form.state().DeviceName, "Eprom 27C259");
  EXPECT_EQ(device.currentIndex(), 12);
  rig.select("M27C256B-12F1");
  EXPECT_EQ(rig.form.state().DeviceName, "Eprom 27C256") << "by what is printed on the chip";
  rig.select("c259");
  rig.select("2716");
  EXPECT_EQ(device.currentIndex(), -1) << "the form rejects what is not available";
  EXPECT_EQ(device.currentText(), "Eprom 27C259") << "what is still in force";
}

TEST(DeviceList, aTypedNameTurnsTheCommandsOffUntilItIsChosenOrGone) {
  StartedRig rig("2732A");
  auto& device = rig.find<QComboBox>("Device");
  const auto ink = [&] { return device.lineEdit()->palette().color(QPalette::Text); };
  const QColor usual = ink();
  const auto expectCommands = [&](bool on) {
    EXPECT_EQ(rig.find("Read_button").isEnabled(), on);
    EXPECT_EQ(rig.find<QMenu>("mnuDevice").menuAction()->isEnabled(), on);
    EXPECT_EQ(ink() == usual, on);
  };
  QTest::keyClicks(&device, "nothing like it");
  QTest::keyClick(&device, Qt::Key_Return);
  rig.turn();
  EXPECT_EQ(device.currentText(), "nothing like it") << "to be put right";
  expectCommands(false);
  rig.activate();
  QTest::mouseClick(rig.window.centralWidget(), Qt::LeftButton);
  rig.turn();
  EXPECT_EQ(device.currentText().trimmed(), "Eprom 2732A");
  expectCommands(true);
  EXPECT_FALSE(rig.logged("Read"));
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

TEST(Display, opensASecondWindowAndADoubleClickWritesTheFiles) {
  StartedRig rig("27C256");
  rig.click("Command1");
  EXPECT_TRUE(rig.find("frmDisplay1").isVisible());
  EXPECT_TRUE(rig.find<QPlainTextEdit>("frmDisplay1.BufferDisplay")
                  .toPlainText()
                  .contains("0000F0| 00000000"));
  QWidget& second = rig.find("frmDisplay1");
  second.showMinimized();
  rig.click("Command1");
  EXPECT_TRUE(second.isVisible() && !second.isMinimized()) << "who asks again wants to see it";
  second.close();
  EXPECT_EQ(rig.screen.openWindows(), 1U);
  rig.click("Command1");
  EXPECT_TRUE(second.isVisible());
  rig.screen.closeLastWindow();
  EXPECT_EQ(rig.screen.openWindows(), 1U);
  for (const char* const name : {"BufferDisplay", "SystemLog"}) {
    QTest::mouseDClick(rig.find<QPlainTextEdit>(name).viewport(), Qt::LeftButton);
  }
  rig.turn();
  EXPECT_TRUE(std::filesystem::exists(rig.folder / "KESTREL.BUF"));
  EXPECT_TRUE(std::filesystem::exists(rig.folder / "KESTREL.LOG"));
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

TEST(Tips, ofADisabledButtonSayWhatIsMissing) {
  StartedRig rig;
  const auto tipOf = [&](const char* name) {
    QWidget& widget = rig.find(name);
    QHelpEvent asks(QEvent::ToolTip, widget.rect().center(), QCursor::pos());
    QApplication::sendEvent(&widget, &asks);
    return QToolTip::text().toStdString();
  };
  const auto expect = [&](const char* name, const char* tip) {
    EXPECT_THAT(tipOf(name), testing::HasSubstr(tip)) << name;
  };
  expect("Read_button", "Select a device first.");
  expect("Program_button", "Open a file or read a chip");
  expect("Erase_button", "The buffer is empty already.");
  expect("Stop", "No command is running.");
  rig.select("27C256");
  expect("EraseFlash_button", "ultraviolet");
  expect("Voltage_button(0)", "takes a programming voltage");
  expect("Voltage_button(3)", "Too high");
  expect("CheckData", "one memory only");
  expect("Read_button", "Read the device into the buffer");
  rig.openFile("zeros.bin", {0});
  rig.click("Verify_button");
  expect("Read_button", "Turn the ERROR alert off first.");
  rig.click("Error_label");
  rig.select("24C16");
  expect("Blank_button", "A serial chip needs no blank check");
  QTest::keyClicks(&rig.find("Device"), "what");
  expect("Read_button", "What is typed for the device is not chosen yet");
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

TEST(Layout, nothingLiesOverAnotherOrIsCutOff) {
  StartedRig rig("27128");
  EXPECT_EQ(misplacedIn(rig.window), "");
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

TEST(Log, isFoundInSavedAndCleared) {
  StartedRig rig("27C256");
  rig.find("SystemLog").setFocus();
  QTest::keyClick(&rig.window, Qt::Key_F, Qt::ControlModifier);
  auto& wanted = rig.find<QLineEdit>("logWanted");
  QTest::keyClicks(&wanted, "was selected");
  QTest::keyClick(&wanted, Qt::Key_Return);
  const auto& log = rig.find<QPlainTextEdit>("SystemLog");
  EXPECT_EQ(log.textCursor().selectedText(), "was Selected");
  rig.click("logCopy");
  EXPECT_EQ(QApplication::clipboard()->text(), "was Selected");
  wanted.setFocus();
  QTest::keyClick(&wanted, Qt::Key_Return);
  EXPECT_EQ(log.textCursor().selectedText(), "was Selected") << "from the beginning again";
  wanted.clear();
  QTest::keyClicks(&wanted, "d");
  const auto placeAfter = [&](Qt::KeyboardModifier modifier) {
    QTest::keyClick(&wanted, Qt::Key_Return, modifier);
    return log.textCursor().position();
  };
  const int first = placeAfter(Qt::NoModifier);
  EXPECT_GT(placeAfter(Qt::NoModifier), first);
  EXPECT_EQ(placeAfter(Qt::ShiftModifier), first);
  QTest::keyClicks(&wanted, "nowhere");
  EXPECT_EQ(placeAfter(Qt::NoModifier), first) << "nothing found, nothing moved";
  QTest::keyClick(&wanted, Qt::Key_Escape);
  EXPECT_TRUE(rig.find("SystemLog").hasFocus() && !wanted.isVisible());
  const std::string file = (rig.folder / "mine.txt").string();
  const WithDialog save = choosing(file);
  rig.click("logSave");
  EXPECT_EQ(readWholeTextFile(file), rig.controls().SystemLog.text());
  rig.click("logClear");
  EXPECT_EQ(rig.logText(), "");
}

}  // namespace
}  // namespace kestrel::test
