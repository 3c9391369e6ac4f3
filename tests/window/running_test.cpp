#include <gmock/gmock.h>
#include <sys/stat.h>

#include <QDragEnterEvent>
#include <QMenuBar>
#include <QMimeData>
#include <QWindow>
#include <csignal>

#include "app/window/board_panel.h"
#include "app/window/file_of.h"
#include "app/window/screen_place.h"
#include "app/window/signal_end.h"
#include "window/window_rig.h"

namespace kestrel::test {
namespace {

/// A large chip is selected, so that the event loop gets its turns while it is read.
struct LargeChip : StartedRig {
  explicit LargeChip(const char* chip = "27C020") : StartedRig(chip) {}
  /// Reads the chip and does something in the middle of that. The event loop has not run after it.
  Ending read(const std::function<void()>& during = [] {}) {
    QTimer::singleShot(0, &window, during);
    const std::size_t before = controls().SystemLog.text().size();
    QTest::mouseClick(&find("Read_button"), Qt::LeftButton);
    const std::string log = controls().SystemLog.text().substr(before);
    return log.find("stopped by operator") == std::string::npos ? Ending::Done : Ending::Stopped;
  }
};

TEST(Running, whatIsPressedMeanwhileIsDroppedAndLooksOff) {
  LargeChip rig("27C801");
  QWidget& box = rig.find("VerifyAfterProgramming");
  bool looksOff = false;
  rig.read([&] {
    const QPoint place = box.mapTo(&rig.window, QPoint(8, box.height() / 2));
    QTest::mouseClick(rig.window.windowHandle(), Qt::LeftButton, Qt::NoModifier, place);
    QTimer::singleShot(200, &rig.window, [&] {
      looksOff = !box.isEnabled() && !rig.find("Blank_button").isEnabled() &&
                 !rig.window.menuBar()->isEnabled() && rig.find("Stop").isEnabled();
    });
  });
  rig.turn();
  EXPECT_FALSE(rig.controls().VerifyAfterProgramming.isTicked());
  EXPECT_TRUE(looksOff);
  EXPECT_TRUE(box.isEnabled() && rig.window.menuBar()->isEnabled());
}

TEST(Running, theCableIsPulledAtOnce) {
  LargeChip rig;
  rig.board().loadChip(std::vector<std::uint8_t>(262'144, 0x11));
  auto* const panel = new window::SimulatedBoardPanel(*rig.program.simulated(), rig.form.runner(),
                                                      rig.input, &rig.window);
  rig.window.addSidePanel(*panel, "Simulated board");
  rig.turn();
  QWidget& plug = rig.find("plugBoard");
  QTimer look;
  QObject::connect(&look, &QTimer::timeout, &look, [&] {
    const bool looksOff = !rig.find("insertBlank").isEnabled();
    if (!looksOff || rig.controls().ProgressBar1.value() < 20) return;
    look.stop();
    const QPoint place = plug.mapTo(&rig.window, plug.rect().center());
    QTest::mouseClick(rig.window.windowHandle(), Qt::LeftButton, Qt::NoModifier, place);
  });
  look.start(1);
  rig.read();
  EXPECT_EQ(rig.form.state().CodeBuffer[0], 0x11);
  EXPECT_EQ(rig.form.state().CodeBuffer[262'143], 0xFF) << "nothing drives the bus";
}

TEST(Running, twoQuickSpacesOnAFailingCommandEraseNothing) {
  StartedRig rig("X28C256");
  rig.openFile("zeros.bin", std::vector<std::uint8_t>(32768, 0));
  rig.find("Verify_button").setFocus();
  QTimer::singleShot(0, &rig.window,
                     [&] { QTest::keyClick(rig.window.windowHandle(), Qt::Key_Space); });
  QTest::keyClick(&rig.find("Verify_button"), Qt::Key_Space);
  rig.activate();
  EXPECT_TRUE(rig.find("Error_label").hasFocus());
  EXPECT_FALSE(rig.logged("Eras"));
  QTest::keyClick(&rig.find("Error_label"), Qt::Key_Space);
  rig.turn();
  EXPECT_TRUE(rig.logged("Error Alert was Turned Off"));
  EXPECT_TRUE(rig.find("Verify_button").hasFocus());
}

TEST(Running, aScrollWhileAPageIsDrawnIsDoneAfterIt) {
  LargeChip rig;
  rig.click("Display_button");
  auto& page = rig.find<QPlainTextEdit>("BufferDisplay");
  page.setFocus();
  QTimer::singleShot(0, &rig.window,
                     [&] { QTest::keyClick(rig.window.windowHandle(), Qt::Key_End); });
  QTest::keyClick(&page, Qt::Key_PageDown);
  rig.turn();
  EXPECT_EQ(rig.controls().VScroll1.value(), 1023);
}

TEST(Running, theWindowIsSeenToMoveOn) {
  LargeChip rig;
  QString percent;
  std::set<int> shares;  // of a hundred times the bar's own, in percent
  bool lampLit = false;
  QTimer look;
  QObject::connect(&look, &QTimer::timeout, &look, [&] {
    if (percent.isEmpty()) percent = rig.find<QLabel>("percent").text();
    const auto& bar = rig.controls().ProgressBar1;
    // Behind the end the bar is at 0 before the label is.
    if (bar.value() > 0 && !rig.find<QLabel>("percent").text().isEmpty()) {
      shares.insert(rig.find<QLabel>("percent").text().split(' ').first().toInt() * bar.maximum() /
                    bar.value());
    }
    lampLit = lampLit || rig.find("DataFlow_label").accessibleDescription() == "on";
  });
  look.start(5);
  rig.read();
  EXPECT_TRUE(lampLit);
  EXPECT_TRUE(percent.endsWith(" %")) << percent.toStdString();
  EXPECT_LE(*shares.rbegin(), 100);
}

TEST(Running, aSignalStopsTheCommandAndClosesTheWindow) {
  LargeChip rig;
  const ports::SignalStop signalStop(rig.stop);
  const window::SignalEnd end(signalStop, rig.window);
  EXPECT_EQ(rig.read([] { std::raise(SIGTERM); }), Ending::Stopped);
  rig.turn();
  EXPECT_FALSE(rig.window.isVisible());
  EXPECT_EQ(signalStop.exitStatus(), 143);
}

TEST(Running, aSignalCancelsTheQuestionThatIsOpen) {
  StartedRig rig("27C256");
  const ports::SignalStop signalStop(rig.stop);
  const window::SignalEnd end(signalStop, rig.window);
  rig.openFile("image.bin", {1, 2, 3});
  const WithDialog asked([](QDialog&) { std::raise(SIGHUP); });
  rig.click("Program_button");
  EXPECT_EQ(asked.said(), "Program the Device?");
  EXPECT_TRUE(rig.logged("Programming was Canceled by Operator"));
  EXPECT_EQ(rig.chipContents()[0], 0xFF);
  EXPECT_TRUE(QTest::qWaitFor([&] { return !rig.window.isVisible(); }));
}

TEST(Place, isRestoredAndSavedInTwips) {
  WindowRig rig;
  rig.settings.texts = {{"Settings/MainLeft", "450"},
                        {"Settings/MainTop", "601"},
                        {"Settings/MainWidth", "21000"},
                        {"Settings/MainHeight", "13500"},
                        {"Window/Algorithms", "DataSheet"}};
  rig.window.restoreAlgorithms();
  rig.start();
  EXPECT_EQ(rig.window.pos(), QPoint(30, 40));
  EXPECT_EQ(rig.window.size(), QSize(1400, 900));
  rig.window.resize(1500, 900);
  rig.turn();
  EXPECT_TRUE(QTest::qWaitFor([&] { return rig.controls().frmMain.width() == 22'500; }, 5'000));
  rig.trigger("mnuFileExit");
  EXPECT_FALSE(rig.window.isVisible());
  EXPECT_EQ(rig.settings.texts["Settings/MainWidth"], "22500");
  EXPECT_EQ(rig.settings.texts["Settings/MainTop"], "601") << "rounding must not move the window";
}

TEST(Place, ofThePanelAtTheSideIsKept) {
  WindowRig rig;
  rig.window.addSidePanel(*new window::SimulatedBoardPanel(
                              *rig.program.simulated(), rig.form.runner(), rig.input, &rig.window),
                          "Simulated board");
  rig.start();
  rig.window.close();
  EXPECT_GT(rig.settings.texts["Window/Panels"].size(), 20U);
  EXPECT_GT(rig.settings.texts["Window/Splitter"].size(), 20U);
}

TEST(Place, comesUpWhollyOnAScreenWhateverWasStored) {
  const QList<QRect> screens{{0, 30, 1024, 738}, {1024, 0, 1920, 1080}};
  using window::placeOnScreen;
  EXPECT_EQ(placeOnScreen({7, -20, 800, 600}, screens), QRect(7, 30, 800, 600));
  EXPECT_EQ(placeOnScreen({1500, 900, 800, 600}, screens), QRect(1500, 480, 800, 600));
  EXPECT_EQ(placeOnScreen({-9000, 9000, 32'767, 400}, screens), QRect(0, 368, 1024, 400));
  WindowRig rig;
  rig.settings.texts = {{"Settings/MainLeft", "491505"},
                        {"Settings/MainTop", "-491505"},
                        {"Settings/MainWidth", "491505"}};
  rig.start();
  EXPECT_TRUE(QRect(0, 0, 1920, 1080).contains(rig.window.frameGeometry()));
  WindowRig small;
  small.start();
  small.window.resize(1, 1);
  EXPECT_LE(small.window.width(), 1024);
  EXPECT_LE(small.window.height(), 700);
}

TEST(Place, ofAMaximisedWindowIsItsNormalOne) {
  WindowRig rig;
  rig.settings.texts = {{"Settings/MainWidth", "18000"}, {"Settings/MainHeight", "12000"}};
  rig.start();
  rig.window.showMaximized();
  QTest::qWait(300);
  rig.window.close();
  EXPECT_EQ(rig.settings.texts["Settings/MainWidth"], "18000");
  EXPECT_EQ(rig.settings.texts["Window/Maximised"], "1");
}

TEST(Files, aNameThatIsNoUtf8IsOpenedAndComesBack) {
  StartedRig rig;
  const std::string name = "r\xF6m\nA.bin";
  writeFileAtomically(rig.folder / name, std::string_view("ABCD"));
  rig.window.openCodeFile(rig.folder / name);
  EXPECT_EQ(rig.form.state().CodeLength, 4);
  const QString kept = window::RecentFiles(rig.settings).all().first();
  EXPECT_EQ(window::fileOf(kept), rig.folder / name);
  emit rig.find<QMenu>("mnuFile").aboutToShow();
  EXPECT_FALSE(rig.find<QMenu>("recentFiles").actions().first()->text().contains('\n'));
  writeFileAtomically(rig.folder / "r\xFCm\nA.bin", std::string_view("EFGH"));
  EXPECT_FALSE(std::filesystem::exists(window::fileOf(kept))) << "two would fit";
}

TEST(Files, aFileDroppedOnTheWindowIsOpened) {
  StartedRig rig;
  writeFileAtomically(rig.folder / "dropped.bin", std::string_view("ABCD"));
  QMimeData data;
  data.setUrls(
      {QUrl::fromLocalFile(QString::fromStdString((rig.folder / "dropped.bin").string()))});
  QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&rig.window, &enter);
  EXPECT_TRUE(enter.isAccepted());
  QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&rig.window, &drop);
  EXPECT_FALSE(rig.displayed("41424344")) << "not inside the drop";
  rig.turn();
  EXPECT_TRUE(rig.displayed("41424344"));
}

TEST(Files, aPipeThatNobodyWritesIsLeftByStop) {
  StartedRig rig;
  const std::string pipe = rig.folder / "pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  QTimer::singleShot(100, &rig.window,
                     [&] { QTest::mouseClick(&rig.find("Stop"), Qt::LeftButton); });
  rig.window.openCodeFile(pipe);
  EXPECT_TRUE(rig.logged("stopped by operator"));
}

}  // namespace
}  // namespace kestrel::test
