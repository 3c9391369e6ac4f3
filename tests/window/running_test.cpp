#include <gmock/gmock.h>

#include <QDragEnterEvent>
#include <QMimeData>
#include <QWindow>
#include <csignal>

#include "app/window/signal_end.h"
#include "window/window_rig.h"

namespace kestrel::test {
namespace {

/// A large chip is selected, so that the event loop gets its turns while it is read.
struct LargeChip : StartedRig {
  LargeChip() : StartedRig("27C020") {}
  /// Reads the chip and does something in the middle of that. The event loop has not run after it.
  Ending read(const std::function<void()>& during = [] {}) {
    QTimer::singleShot(0, &window, during);
    const std::size_t before = controls().SystemLog.text().size();
    QTest::mouseClick(&find("Read_button"), Qt::LeftButton);
    const std::string log = controls().SystemLog.text().substr(before);
    return log.find("stopped by operator") == std::string::npos ? Ending::Done : Ending::Stopped;
  }
};

TEST(Running, stopAndEscapeEndTheCommand) {
  LargeChip rig;
  QWidget& stop = rig.find("Stop");
  EXPECT_EQ(rig.read([&] { QTest::mouseClick(&stop, Qt::LeftButton); }), Ending::Stopped);
  EXPECT_FALSE(stop.isEnabled());
  EXPECT_EQ(rig.read(), Ending::Done) << "the switch is back";
  EXPECT_EQ(rig.read([&] { QTest::keyClick(&rig.window, Qt::Key_Escape); }), Ending::Stopped);
}

TEST(Running, aHeldClickWaitsForTheEndAndLandsWhereItWasMade) {
  LargeChip rig;
  QWidget& box = rig.find("VerifyAfterProgramming");
  const auto ticked = [&] { return rig.controls().VerifyAfterProgramming.isTicked(); };
  rig.read([&] {
    const QPoint place = box.mapTo(&rig.window, QPoint(8, box.height() / 2));
    QTest::mouseClick(rig.window.windowHandle(), Qt::LeftButton, Qt::NoModifier, place);
    QTest::mouseMove(rig.window.windowHandle(), QPoint(300, 10));
  });
  EXPECT_FALSE(ticked());
  EXPECT_TRUE(QTest::qWaitFor(ticked, 1000));
}

TEST(Running, theWindowIsSeenToMoveOn) {
  LargeChip rig;
  QString percent;
  bool lampLit = false;
  QTimer look;
  QObject::connect(&look, &QTimer::timeout, &look, [&] {
    if (percent.isEmpty()) percent = rig.find<QLabel>("percent").text();
    lampLit = lampLit || rig.find("DataFlow_label").accessibleDescription() == "on";
  });
  look.start(5);
  rig.read();
  EXPECT_TRUE(lampLit);
  EXPECT_TRUE(percent.endsWith(" %")) << percent.toStdString();
}

TEST(Running, closingWaitsForTheEndOfTheCommand) {
  LargeChip rig;
  bool closedAtOnce = true;
  EXPECT_EQ(rig.read([&] { closedAtOnce = rig.window.close(); }), Ending::Done);
  EXPECT_FALSE(closedAtOnce);
  EXPECT_TRUE(rig.window.isVisible());
  rig.turn();
  EXPECT_FALSE(rig.window.isVisible());
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
                        {"Settings/MainHeight", "13500"}};
  rig.start();
  EXPECT_EQ(rig.window.pos(), QPoint(30, 40));
  EXPECT_EQ(rig.window.size(), QSize(1400, 900));
  rig.window.resize(1500, 900);
  rig.turn();
  rig.trigger("mnuFileExit");
  EXPECT_FALSE(rig.window.isVisible());
  EXPECT_EQ(rig.settings.texts["Settings/MainWidth"], "22500");
  EXPECT_EQ(rig.settings.texts["Settings/MainTop"], "601") << "rounding must not move the window";
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
  rig.turn();
  EXPECT_TRUE(rig.displayed("41424344"));
}

TEST(Files, recentOnesAreListedTheNewestFirst) {
  StartedRig rig;
  rig.openFile("one.bin", {1});
  rig.openFile("two.bin", {2});
  rig.openFile("one.bin", {1, 1});
  emit rig.find<QMenu>("mnuFile").aboutToShow();
  const auto recent = rig.find<QMenu>("recentFiles").actions();
  ASSERT_EQ(recent.size(), 2);
  EXPECT_TRUE(recent[0]->text().endsWith("one.bin"));
  recent[1]->trigger();
  rig.turn();
  EXPECT_EQ(rig.window.windowTitle(), "two.bin - Kestrel");
  const WithDialog told = answering(QMessageBox::Ok);
  rig.window.openCodeFile(rig.folder / "missing.bin");
  EXPECT_THAT(told.said(), testing::HasSubstr("missing.bin"));
  EXPECT_EQ(rig.window.windowTitle(), "two.bin - Kestrel");
  EXPECT_TRUE(window::RecentFiles(rig.settings).all().first().endsWith("two.bin"));
}

}  // namespace
}  // namespace kestrel::test
