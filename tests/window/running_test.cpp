#include <gmock/gmock.h>

#include <QDragEnterEvent>
#include <QMimeData>
#include <QWindow>
#include <csignal>

#include "app/window/signal_end.h"
#include "app/window/twips.h"
#include "window/window_rig.h"

namespace kestrel::test {
namespace {

/// Does something in the middle of the next command.
void during(WindowRig& rig, const std::function<void()>& act) {
  QTimer::singleShot(0, &rig.window, act);
}

/// Starts a read of a large chip without letting the event loop run first.
void readLargeChip(WindowRig& rig) { QTest::mouseClick(&rig.find("Read_button"), Qt::LeftButton); }

struct LargeChip : WindowRig {
  LargeChip() : WindowRig(simulatedOptions("27C020")) {
    start();
    select("27C020");
  }
};

TEST(Running, stopEndsTheCommandAndIsEnabledOnlyMeanwhile) {
  LargeChip rig;
  bool enabled = false;
  during(rig, [&] {
    enabled = rig.find("Stop").isEnabled();
    QTest::mouseClick(&rig.find("Stop"), Qt::LeftButton);
  });
  readLargeChip(rig);
  EXPECT_TRUE(enabled);
  EXPECT_EQ(rig.form.lastOutcome(), frmMain::Outcome::Stopped);
  EXPECT_FALSE(rig.find("Stop").isEnabled());
  readLargeChip(rig);
  EXPECT_EQ(rig.form.lastOutcome(), frmMain::Outcome::Done) << "the switch is back";
}

TEST(Running, escapeStopsToo) {
  LargeChip rig;
  during(rig, [&] { QTest::keyClick(&rig.window, Qt::Key_Escape); });
  readLargeChip(rig);
  EXPECT_EQ(rig.form.lastOutcome(), frmMain::Outcome::Stopped);
}

TEST(Running, inputWaitsForTheEndAndIsThenDelivered) {
  LargeChip rig;
  bool duringRead = false;
  during(rig, [&] {
    QTest::mouseClick(&rig.find("VerifyAfterProgramming"), Qt::LeftButton);
    duringRead = rig.controls().VerifyAfterProgramming.isTicked();
  });
  readLargeChip(rig);
  EXPECT_EQ(rig.form.lastOutcome(), frmMain::Outcome::Done);
  EXPECT_FALSE(duringRead);
  rig.turn();
  EXPECT_TRUE(rig.controls().VerifyAfterProgramming.isTicked());
}

TEST(Running, aHeldClickLandsWhereItWasMade) {
  LargeChip rig;
  QWidget& box = rig.find("VerifyAfterProgramming");
  during(rig, [&] {
    const QPoint place = box.mapTo(&rig.window, QPoint(8, box.height() / 2));
    QTest::mouseClick(rig.window.windowHandle(), Qt::LeftButton, Qt::NoModifier, place);
    QTest::mouseMove(rig.window.windowHandle(), QPoint(300, 10));
  });
  readLargeChip(rig);
  EXPECT_FALSE(rig.controls().VerifyAfterProgramming.isTicked());
  EXPECT_TRUE(
      QTest::qWaitFor([&] { return rig.controls().VerifyAfterProgramming.isTicked(); }, 1000));
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
  readLargeChip(rig);
  EXPECT_TRUE(lampLit);
  EXPECT_TRUE(percent.endsWith(" %")) << percent.toStdString();
}

TEST(Running, closingWaitsForTheEndOfTheCommand) {
  LargeChip rig;
  bool closedAtOnce = true;
  during(rig, [&] { closedAtOnce = rig.window.close(); });
  readLargeChip(rig);
  EXPECT_FALSE(closedAtOnce);
  EXPECT_TRUE(rig.window.isVisible());
  EXPECT_EQ(rig.form.lastOutcome(), frmMain::Outcome::Done);
  rig.turn();
  EXPECT_FALSE(rig.window.isVisible());
}

TEST(Running, aSignalStopsTheCommandAndClosesTheWindow) {
  LargeChip rig;
  const SignalStop signalStop(rig.stop);
  const SignalEnd end(signalStop, rig.stop, rig.window);
  during(rig, [] { std::raise(SIGTERM); });
  readLargeChip(rig);
  EXPECT_EQ(rig.form.lastOutcome(), frmMain::Outcome::Stopped);
  rig.turn();
  EXPECT_FALSE(rig.window.isVisible());
  EXPECT_EQ(signalStop.exitStatus(), 143);
}

TEST(Running, aSignalCancelsTheQuestionThatIsOpen) {
  WindowRig rig;
  const SignalStop signalStop(rig.stop);
  const SignalEnd end(signalStop, rig.stop, rig.window);
  rig.start();
  rig.select("27C256");
  rig.openFile("image.bin", {1, 2, 3});
  const WithDialog asked([](QDialog&) { std::raise(SIGHUP); });
  rig.click("Program_button");
  EXPECT_EQ(asked.said(), "Program the Device?");
  EXPECT_TRUE(rig.logged("Programming was Canceled by Operator"));
  EXPECT_TRUE(QTest::qWaitFor([&] { return !rig.window.isVisible(); }));
}

TEST(Running, exitClosesTheWindowWithTheBoardIdle) {
  WindowRig rig;
  rig.start();
  rig.trigger("mnuFileExit");
  rig.turn();
  EXPECT_FALSE(rig.window.isVisible());
  EXPECT_EQ(rig.ports.simulated()->board().vppPins(), 0U);
}

TEST(Running, aTimersPressWaitsBehindTheRunningOne) {
  WindowRig rig;
  rig.start();
  std::vector<int> order;
  rig.gate.run([&] {
    rig.gate.run([&] { order.push_back(2); });
    order.push_back(1);
  });
  EXPECT_EQ(order, (std::vector<int>{1, 2}));
}

TEST(Running, noExceptionPassesTheGate) {
  WindowRig rig;
  rig.start();
  const WithDialog told = answering(QMessageBox::Ok);
  rig.gate.run([] { throw std::runtime_error("the cable melted"); });
  EXPECT_EQ(told.said(), "the cable melted");
  EXPECT_FALSE(rig.gate.isRunning());
}

TEST(Place, unitsAreThoseOfTheStore) {
  EXPECT_EQ(pixelsFromTwips(100, 96), 7);
  EXPECT_EQ(pixelsFromTwips(6500, 96), 433);
  EXPECT_EQ(twipsFromPixels(800, 96), 12'000);
  EXPECT_EQ(twipsFromPixels(800, 120), 9'600);
}

TEST(Place, isRestoredAndSaved) {
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
  rig.window.close();
  EXPECT_EQ(rig.settings.texts["Settings/MainWidth"], "22500");
  EXPECT_EQ(rig.settings.texts["Settings/MainTop"], "601") << "rounding must not move the window";
}

TEST(Place, theFirstStartIsLaidOutByTheMinimumSizes) {
  WindowRig rig;
  rig.start();
  EXPECT_EQ(rig.window.pos(), QPoint(7, 7));
  EXPECT_EQ(rig.window.width(), rig.window.minimumSizeHint().width());
  EXPECT_GT(rig.window.width(), 700);
}

TEST(Place, aMinimisedWindowSavesNothing) {
  WindowRig rig;
  rig.start();
  rig.settings.texts.clear();
  rig.window.showMinimized();
  rig.turn();
  rig.window.close();
  EXPECT_FALSE(rig.settings.texts.contains("Settings/MainLeft"));
}

TEST(Files, aFileDroppedOnTheWindowIsOpened) {
  WindowRig rig;
  rig.start();
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
  EXPECT_EQ(rig.form.state().CodeLength, 4);
  EXPECT_TRUE(rig.displayText().contains("41424344"));
}

TEST(Files, recentOnesAreListedTheNewestFirst) {
  WindowRig rig;
  rig.start();
  rig.openFile("one.bin", {1});
  rig.openFile("two.bin", {2});
  rig.openFile("one.bin", {1, 1});
  emit rig.find<QMenu>("mnuFile").aboutToShow();
  auto& recent = rig.find<QMenu>("recentFiles");
  ASSERT_EQ(recent.actions().size(), 2);
  EXPECT_TRUE(recent.actions()[0]->text().endsWith("one.bin"));
  recent.actions()[1]->trigger();
  rig.turn();
  EXPECT_EQ(rig.form.state().CodeLength, 1);
  EXPECT_EQ(rig.window.windowTitle(), "two.bin - Kestrel");
  RecentFiles again(rig.settings);
  EXPECT_TRUE(again.all().first().endsWith("two.bin"));
}

TEST(Files, oneThatCannotBeOpenedIsToldAndChangesNothing) {
  WindowRig rig;
  rig.start();
  rig.openFile("good.bin", {1, 2, 3});
  const WithDialog told = answering(QMessageBox::Ok);
  rig.window.openCodeFile(rig.folder / "missing.bin");
  rig.turn();
  EXPECT_TRUE(told.said().contains("missing.bin"));
  EXPECT_EQ(rig.window.windowTitle(), "good.bin - Kestrel");
}

}  // namespace
}  // namespace kestrel::test
