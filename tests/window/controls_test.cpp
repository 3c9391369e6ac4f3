#include <gmock/gmock.h>

#include <QAbstractItemView>
#include <QCompleter>
#include <QMenuBar>
#include <QRadioButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSlider>
#include <QWheelEvent>

#include "app/window/bench_panel.h"
#include "window/window_rig.h"

namespace kestrel::test {
namespace {

void turnWheel(QWidget& widget, int angle) {
  const QPointF place(widget.rect().center());
  QWheelEvent event(place, widget.mapToGlobal(place), {}, {0, angle}, Qt::NoButton, Qt::NoModifier,
                    Qt::NoScrollPhase, false);
  QApplication::sendEvent(&widget, &event);
}

TEST(DeviceList, holdsTheWholeCatalogueAndNoMore) {
  WindowRig rig;
  rig.start();
  auto& device = rig.find<QComboBox>("Device");
  ASSERT_EQ(device.count(), 41);
  EXPECT_EQ(device.itemText(0), "N/A - ");
  EXPECT_EQ(device.itemText(11), "Eprom 27C256                  ");
  EXPECT_EQ(device.currentIndex(), -1);
  EXPECT_TRUE(device.itemData(1, Qt::ForegroundRole).isValid()) << "N/A entries are greyed";
  EXPECT_FALSE(device.itemData(11, Qt::ForegroundRole).isValid());
}

TEST(DeviceList, findsWhatIsTypedAnywhereInAName) {
  WindowRig rig;
  rig.start();
  auto& device = rig.find<QComboBox>("Device");
  QTest::keyClicks(device.lineEdit(), "c51");
  EXPECT_EQ(device.completer()->completionCount(), 1);
  QTest::keyClick(&device, Qt::Key_Return);
  rig.turn();
  EXPECT_EQ(rig.form.state().DeviceName, "Eprom 27C512");
  EXPECT_EQ(device.currentIndex(), 13);
  EXPECT_FALSE(device.completer()->popup()->isVisible());
}

TEST(DeviceList, anEntryThatIsNotAvailableIsRejectedByTheForm) {
  WindowRig rig;
  rig.start();
  rig.select("27C256");
  rig.select("AT90S2313");
  EXPECT_EQ(rig.find<QComboBox>("Device").currentIndex(), -1);
  EXPECT_EQ(rig.form.state().DeviceName, "Eprom 27C256");
  rig.select("nothing like it");
  EXPECT_EQ(rig.find<QComboBox>("Device").currentText(), "");
}

TEST(DeviceList, wheelAndArrowsSelectNothing) {
  WindowRig rig;
  rig.start();
  auto& device = rig.find<QComboBox>("Device");
  turnWheel(device, -120);
  QTest::keyClick(&device, Qt::Key_Down);
  rig.turn();
  device.hidePopup();
  EXPECT_EQ(rig.form.state().DeviceName, "");
  EXPECT_EQ(rig.logText(), "");
}

TEST(Menus, anEntryDoesWhatItsButtonDoes) {
  const auto logOf = [](const std::function<void(WindowRig&)>& press) {
    WindowRig rig;
    rig.start();
    rig.select("27C256");
    const WithDialog notBlank = answering(QMessageBox::Ok);
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
  WindowRig rig;
  rig.start();
  for (const Control* const control : rig.controls().all()) {
    const QString name = QString::fromStdString(control->name());
    if (!name.startsWith("menu") && !name.startsWith("mnu") && !name.startsWith("Force")) continue;
    const auto* const action = rig.window.findChild<QAction*>(name);
    ASSERT_NE(action, nullptr) << control->name();
    EXPECT_EQ(action->isEnabled(), control->enabled()) << control->name();
    EXPECT_FALSE(action->text().isEmpty()) << control->name();
  }
  for (const char* const separator :
       {"menuCommandBar0", "menuCommandBar2", "mnuCommandBar3", "mnuCommandBar4", "mnuHelpBar0"}) {
    EXPECT_TRUE(rig.find<QAction>(separator).isSeparator()) << separator;
  }
  EXPECT_EQ(rig.find<QAction>("mnuFileSaveCodeAs").shortcut(), QKeySequence("Ctrl+Shift+S"));
  const WithDialog told = answering(QMessageBox::Ok);
  rig.trigger("mnuToolsOptions");
  EXPECT_EQ(told.said(), "This menu option is not available.");
}

TEST(Menus, theSetupMenuReadsTheSlotsWhenItOpens) {
  WindowRig rig;
  rig.start();
  EXPECT_FALSE(rig.find<QAction>("LoadSetup2").isEnabled());
  writeFileAtomically(rig.folder / "KSSetup2.INI", std::string_view("SetupName = Bench & lab\r\n"));
  emit rig.find<QMenu>("Setup").aboutToShow();
  EXPECT_TRUE(rig.find<QAction>("LoadSetup2").isEnabled());
  EXPECT_EQ(rig.find<QAction>("LoadSetup2").text(), "Bench && lab") << "shown with one ampersand";
  EXPECT_FALSE(rig.find<QAction>("LoadSetup1").isEnabled());
}

TEST(Options, aPortTextOfAnyLengthLeavesTheWindowItsWidth) {
  WindowRig rig;
  rig.start();
  const int width = rig.window.minimumSizeHint().width();
  rig.controls().PortSelected.setText(std::string(500, 'W'));
  rig.turn();
  EXPECT_LT(rig.window.minimumSizeHint().width(), width + 100);
}

/// The letter behind the ampersand of every visible widget and top menu.
std::map<QChar, QStringList> mnemonics(QWidget& window) {
  std::map<QChar, QStringList> found;
  const auto note = [&](const QString& caption) {
    static const QRegularExpression letter("&([^&])");
    const auto match = letter.match(caption);
    if (match.hasMatch()) found[match.captured(1)[0].toUpper()].append(caption);
  };
  for (const auto* const button : window.findChildren<QAbstractButton*>()) note(button->text());
  for (const auto* const label : window.findChildren<QLabel*>()) {
    if (label->buddy() != nullptr) note(label->text());
  }
  for (const auto* const menu : window.findChild<QMenuBar*>()->actions()) note(menu->text());
  return found;
}

TEST(Keyboard, noTwoMnemonicsAreTheSame) {
  WindowRig rig;
  rig.window.addSidePanel(*new BenchPanel(*rig.ports.simulated(), rig.gate, &rig.window), "Board");
  rig.start();
  const auto found = mnemonics(rig.window);
  EXPECT_GT(found.size(), 15U);
  for (const auto& [letter, captions] : found) {
    EXPECT_EQ(captions.size(), 1) << captions.join(" / ").toStdString();
  }
}

TEST(Keyboard, theTabKeyGoesInTheOrderOfTheWork) {
  WindowRig rig;
  rig.start();
  rig.select("2732A");
  rig.window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&rig.window));
  QStringList order;
  rig.find("Device").setFocus();
  for (int key = 0; key < 12; ++key) {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    if (QApplication::focusWidget() != nullptr) order += QApplication::focusWidget()->objectName();
  }
  QStringList expected{"openCodeFile", "Voltage_button(1)", "HiLow_button(0)"};
  expected += {"CheckBlankPriorProgramming", "VerifyAfterProgramming", "Slider1"};
  expected += {"LPTSelection(0)", "TestHardware_button", "Read_button", "Blank_button"};
  EXPECT_EQ(order.mid(0, expected.size()).join(' ').toStdString(),
            expected.join(' ').toStdString());
}

TEST(Options, theGroupsShowWhatTheControlsAre) {
  LaunchOptions nothing = simulatedOptions("27C256");
  WindowRig rig(nothing);
  rig.start();
  EXPECT_TRUE(rig.find<QRadioButton>("LPTSelection(0)").isChecked());
  rig.ports.simulated()->bench().unplug(0x378);
  rig.click("TestHardware_button");
  for (const char* const name : {"LPTSelection(0)", "LPTSelection(1)", "LPTSelection(2)"}) {
    EXPECT_FALSE(rig.find<QRadioButton>(name).isChecked()) << name;
  }
  EXPECT_EQ(rig.find<QLabel>("KestrelHardwareFound").text(), "NO HARDWARE FOUND");
  rig.click("LPTSelection(1)");
  EXPECT_EQ(rig.form.state().PortBase, 0x278);
  rig.click("HiLow_button(2)");
  EXPECT_TRUE(rig.controls().HiLow_button[2].value());
  EXPECT_FALSE(rig.find<QRadioButton>("HiLow_button(0)").isChecked());
}

TEST(Speed, aDragIsOneChangeWhenItIsLetGo) {
  WindowRig rig;
  rig.start();
  auto& slider = rig.find<QSlider>("Slider1");
  slider.setSliderDown(true);
  for (const int place : {15, 10, 5}) slider.setSliderPosition(place);
  EXPECT_EQ(rig.logText(), "");
  slider.setSliderDown(false);
  rig.turn();
  EXPECT_EQ(rig.logText().count("Program Speed Slider set to: 5"), 1);
  EXPECT_EQ(rig.logText().count("Program Speed Slider"), 1);
}

TEST(Speed, theWheelIsGathered) {
  WindowRig rig;
  rig.start();
  auto& slider = rig.find<QSlider>("Slider1");
  for (int notch = 0; notch < 3; ++notch) turnWheel(slider, -120);
  EXPECT_EQ(rig.controls().Slider1.value(), 18);
  ASSERT_TRUE(QTest::qWaitFor([&] { return rig.controls().Slider1.value() == 15; }, 2000));
  rig.turn();
  EXPECT_EQ(rig.logText().count("Program Speed Slider"), 1);
}

TEST(Display, theWheelOverThePageTurnsPagesOnce) {
  WindowRig rig;
  rig.start();
  rig.select("27C256");
  rig.click("Display_button");
  const auto readings = [&] { return rig.ports.simulated()->bench().accessCount(); };
  const auto before = readings();
  QTest::keyClick(&rig.find("BufferDisplay"), Qt::Key_PageDown);
  const auto onePage = readings() - before;
  for (int notch = 0; notch < 4; ++notch) {
    turnWheel(*rig.find<QPlainTextEdit>("BufferDisplay").viewport(), -120);
  }
  ASSERT_TRUE(QTest::qWaitFor([&] { return rig.controls().VScroll1.value() == 5; }, 2000));
  EXPECT_EQ(readings() - before, 2 * onePage);
}

TEST(Display, aMaximumBelowZeroIsOnePage) {
  WindowRig rig;
  rig.start();
  rig.openFile("empty.bin", {});
  EXPECT_EQ(rig.controls().VScroll1.maximum(), -1);
  EXPECT_EQ(rig.find<QScrollBar>("VScroll1").maximum(), 0);
}

TEST(Display, theSecondWindowIsThereFromItsFirstDrawing) {
  WindowRig rig;
  rig.start();
  EXPECT_FALSE(rig.find("frmDisplay1").isVisible());
  rig.click("Command1");
  EXPECT_TRUE(rig.find("frmDisplay1").isVisible());
  EXPECT_EQ(rig.screen.openWindows(), 2U);
  EXPECT_TRUE(rig.find<QPlainTextEdit>("frmDisplay1.BufferDisplay")
                  .toPlainText()
                  .contains("0000F0| 00000000"));
  rig.screen.closeLastWindow();
  EXPECT_EQ(rig.screen.openWindows(), 1U);
  EXPECT_FALSE(rig.controls().frmDisplay1.window.visible());
}

TEST(Exports, aDoubleClickWritesTheFiles) {
  WindowRig rig;
  rig.start();
  rig.select("27C256");
  QTest::mouseDClick(rig.find<QPlainTextEdit>("BufferDisplay").viewport(), Qt::LeftButton);
  QTest::mouseDClick(rig.find<QPlainTextEdit>("SystemLog").viewport(), Qt::LeftButton);
  rig.turn();
  EXPECT_THAT(readWholeTextFile(rig.folder / "KESTREL.BUF"), testing::HasSubstr("0000F0| "));
  EXPECT_THAT(readWholeTextFile(rig.folder / "KESTREL.LOG"), testing::HasSubstr("27C256"));
  EXPECT_TRUE(rig.logged("System Log was Saved to KESTREL.LOG file"));
}

TEST(Log, followsTheNewestLineUnlessOneHasScrolledUp) {
  WindowRig rig;
  rig.start();
  auto& log = rig.find<QPlainTextEdit>("SystemLog");
  auto& box = rig.controls().SystemLog;
  const auto write = [&](int lines) {
    for (int line = 0; line < lines; ++line) box.append("\r\n12:00:00>  line");
    rig.turn();
  };
  write(200);
  EXPECT_EQ(log.verticalScrollBar()->value(), log.verticalScrollBar()->maximum());
  log.verticalScrollBar()->setValue(10);
  write(50);
  EXPECT_EQ(log.verticalScrollBar()->value(), 10);
  log.verticalScrollBar()->setValue(log.verticalScrollBar()->maximum());
  write(50);
  EXPECT_EQ(log.verticalScrollBar()->value(), log.verticalScrollBar()->maximum());
  EXPECT_EQ(log.document()->blockCount(), 301);
  box.setText("");
  rig.turn();
  EXPECT_EQ(rig.logText(), "");
}

TEST(Log, aHundredThousandLinesDoNotMakeTheNextOneDearer) {
  WindowRig rig;
  rig.start();
  const auto add = [&] {
    rig.controls().SystemLog.append("\r\n12:00:00>  a line of the usual length in the log");
  };
  const auto timeOf = [&](int lines) {
    QElapsedTimer timer;
    timer.start();
    for (int line = 0; line < lines; ++line) {
      add();
      rig.mirror.refresh();
    }
    return timer.nsecsElapsed();
  };
  // The best of some, since the machine may have other work.
  const auto best = [&] { return std::min({timeOf(500), timeOf(500), timeOf(500), timeOf(500)}); };
  timeOf(1'000);
  const auto early = best();
  for (int line = 0; line < 96'000; ++line) add();
  rig.mirror.refresh();
  EXPECT_LT(best(), 5 * early) << "a cost that grew with the log would be 30 times as high";
}

}  // namespace
}  // namespace kestrel::test
