#include <gmock/gmock.h>

#include <QGroupBox>
#include <QPushButton>
#include <QTextBlock>

#include "app/window/chip_backup.h"
#include "app/window/outcome_line.h"
#include "simulator/chip_factory.h"
#include "window/window_rig.h"

namespace kestrel::test {
namespace {

using testing::HasSubstr;

// Two blocks with a hole at 0004 between them.
constexpr std::string_view kHexFile = ":0400000041424344F2\n:0400080045464748DA\n:00000001FF\n";

/// Chooses a file, fills in the fields of the dialog that follows, and says what it answered.
struct ImageAnswer {
  explicit ImageAnswer(std::string name, const char* range = "", const char* at = "")
      : choose(choosing(name)),
        answer(
            [this, range, at](QDialog& dialog) {
              dialog.findChild<QLineEdit*>("imageRange")->setText(range);
              dialog.findChild<QLineEdit*>("imageAt")->setText(at);
              verdict = dialog.findChild<QLabel*>("imageVerdict")->text().toStdString();
              auto& accept = *dialog.findChild<QPushButton*>("imageAccept");
              mayAccept = accept.isEnabled();
              mayAccept ? accept.click() : dialog.reject();
            },
            "imageDialog") {}
  WithDialog choose;
  WithDialog answer;
  std::string verdict;
  bool mayAccept = false;
};

TEST(Images, areImportedWithTheirHolesAndExportedAgain) {
  StartedRig rig("27C256");
  writeFileAtomically(rig.folder / "a.hex", kHexFile);
  {
    const ImageAnswer answer((rig.folder / "a.hex").string(), "", "7FF4");
    rig.trigger("importImage");
    EXPECT_THAT(answer.verdict, HasSubstr("Intel HEX, 8 bytes at 0000-0003, 0008-000B, 1 hole"));
  }
  const auto& buffer = rig.form.state().CodeBuffer;
  EXPECT_EQ(buffer[0x7FF4], 'A');
  EXPECT_EQ(buffer[0x7FF8], 0xFF) << "a hole";
  EXPECT_EQ(buffer[0x7FFF], 'H');
  EXPECT_THAT(rig.window.windowTitle().toStdString(), HasSubstr("a.hex (imported)"));
  {
    const ImageAnswer answer((rig.folder / "b.s19").string(), "7FFC-7FFF", "100");
    rig.trigger("exportImage");
    EXPECT_TRUE(answer.mayAccept) << answer.verdict;
  }
  EXPECT_THAT(readWholeTextFile(rig.folder / "b.s19"), HasSubstr("S107010045464748DD"));
  const ImageAnswer tooFar((rig.folder / "a.hex").string(), "", "7FF8");
  rig.trigger("importImage");
  EXPECT_FALSE(tooFar.mayAccept);
  EXPECT_THAT(tooFar.verdict, HasSubstr("the chip ends at 7FFF"));
}

TEST(Images, aBadRecordIsToldWithItsLineAndNothingChanges) {
  StartedRig rig("27C256");
  rig.openFile("before.bin", countingBytes(0x8000));
  const QString title = rig.window.windowTitle();
  std::string text(kHexFile);
  text.replace(text.find("DA"), 2, "DB");
  writeFileAtomically(rig.folder / "bad.hex", text);
  const ImageAnswer answer((rig.folder / "bad.hex").string());
  rig.trigger("importImage");
  EXPECT_FALSE(answer.mayAccept);
  EXPECT_THAT(answer.verdict, HasSubstr("line 2"));
  EXPECT_EQ(rig.form.state().CodeBuffer[1], countingBytes(2)[1]);
  EXPECT_EQ(rig.window.windowTitle(), title);
}

TEST(Images, aFileOfRecordsThatIsOpenedIsSaidToBeOneWithTheWayToImportIt) {
  StartedRig rig("27C256");
  rig.openFile("a.hex", {kHexFile.begin(), kHexFile.end()});
  EXPECT_EQ(rig.form.state().CodeBuffer[0], ':') << "byte by byte all the same";
  auto& outcome = rig.find<QLabel>("outcome");
  EXPECT_THAT(outcome.text().toStdString(), HasSubstr("a.hex has the look of Intel HEX"));
  const WithDialog accept([](QDialog& dialog) { dialog.accept(); });
  emit outcome.linkActivated("offered");
  EXPECT_EQ(rig.form.state().CodeBuffer[0], 'A');
}

TEST(Buffer, bytesAreTypedOnBothSidesAndTakenBack) {
  StartedRig rig("27C256");
  rig.openFile("game.bin", std::vector<std::uint8_t>(0x4000, 0x11));
  const auto& buffer = rig.form.state().CodeBuffer;
  auto& page = rig.find<QPlainTextEdit>("BufferDisplay");
  page.setFocus();
  QTest::keyClicks(&page, "Aag5b");  // g is no digit
  QTest::keyClick(&page, Qt::Key_Down);
  const auto marked = [&] { return page.extraSelections().back().cursor; };
  const int digits = marked().position();
  EXPECT_EQ(marked().selectedText(), "1");
  QTest::keyClicks(&page, "1");
  EXPECT_EQ(marked().position(), digits + 1) << "the second digit";
  QTest::keyClick(&page, Qt::Key_Tab);
  EXPECT_EQ(marked().positionInBlock(), 8 + 4 * 9 + 2 + 3) << "among the characters";
  QTest::keyClick(&page, Qt::Key_Backtab);
  EXPECT_EQ(marked().position(), digits) << "the first digit again";
  QTest::keyClick(&page, Qt::Key_Tab);
  QTest::keyClicks(&page, "g~");
  rig.turn();
  EXPECT_EQ(std::vector(buffer.begin(), buffer.begin() + 3),
            (std::vector<std::uint8_t>{0xAA, 0x5B, 0x11}));
  EXPECT_EQ(buffer[0x12], 'g');
  EXPECT_TRUE(rig.displayed("000010| 1111677E"));
  EXPECT_THAT(rig.window.windowTitle().toStdString(), HasSubstr("game.bin (changed)"));
  for (int i = 0; i < 20; ++i) QTest::keyClick(&page, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(buffer[0], 0x11);
  EXPECT_THAT(rig.window.windowTitle().toStdString(), testing::Not(HasSubstr("changed")));
  QTest::keyClick(&page, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(buffer[0], 0xAA) << "a byte at a time, not a digit";
  EXPECT_EQ(buffer[1], 0x11);
  rig.trigger("mnuFileSaveCode");
  EXPECT_THAT(rig.window.windowTitle().toStdString(), testing::Not(HasSubstr("changed")));
}

// Columns: 8 for the address, 2 a byte, a blank behind each group of four; the text from 46 on.
TEST(Buffer, theCursorGoesWhereKeysAndClicksLead) {
  StartedRig rig("27C256");
  rig.openFile("game.bin", std::vector<std::uint8_t>(0x300, 0x11));
  auto& page = rig.find<QPlainTextEdit>("BufferDisplay");
  page.setFocus();
  const auto expect = [&](int number, int line, int column, const char* after) {
    rig.turn();
    ASSERT_FALSE(page.extraSelections().empty()) << after;
    const QTextCursor cursor = page.extraSelections().back().cursor;
    EXPECT_EQ(rig.controls().VScroll1.value(), number) << after;
    EXPECT_EQ(cursor.blockNumber(), line) << after;
    EXPECT_EQ(cursor.positionInBlock() - 1, column) << after;
  };
  QTest::keyClick(&page, Qt::Key_Left);
  expect(0, 1, 8, "nothing lies before the first byte");
  using Row = std::tuple<Qt::Key, int, int, int, int>;  // key, how often, page, line, column
  for (const auto& [key, times, number, line, column] : {Row{Qt::Key_Right, 1, 0, 1, 9},
                                                         {Qt::Key_Right, 7, 0, 1, 17},
                                                         {Qt::Key_Backspace, 1, 0, 1, 15},
                                                         {Qt::Key_Right, 25, 0, 2, 8},
                                                         {Qt::Key_Left, 1, 0, 1, 42},
                                                         {Qt::Key_Up, 1, 0, 1, 42},
                                                         {Qt::Key_Down, 16, 1, 1, 41},
                                                         {Qt::Key_Up, 1, 0, 16, 41},
                                                         {Qt::Key_Tab, 1, 0, 16, 61},
                                                         {Qt::Key_Right, 1, 1, 1, 46},
                                                         {Qt::Key_Left, 2, 0, 16, 60},
                                                         {Qt::Key_Backtab, 1, 0, 16, 39}}) {
    for (int i = 0; i < times; ++i) QTest::keyClick(&page, key);
    expect(number, line, column, QKeySequence(key).toString().toUtf8().data());
  }
  const auto placeOf = [&](int line, int column) {
    QTextCursor cursor(page.document()->findBlockByNumber(line));
    cursor.setPosition(cursor.position() + column);
    return page.cursorRect(cursor).center();
  };
  for (const auto& [line, column, marked] : {std::tuple(3, 18, 17), {4, 20, 19}, {5, 48, 48}}) {
    QTest::mouseClick(page.viewport(), Qt::LeftButton, Qt::NoModifier, placeOf(line, column));
    expect(0, line, marked, "a click");
  }
  QTest::keyClick(&page, Qt::Key_Delete);
  EXPECT_EQ(rig.form.state().CodeBuffer[0x42], 0xFF);
  expect(0, 5, 49, "Delete");
}

/// Fills the fields of the next change in and makes it.
WithDialog changing(std::vector<std::pair<const char*, const char*>> fields) {
  return WithDialog(
      [fields = std::move(fields)](QDialog& dialog) {
        for (const auto& [name, text] : fields) dialog.findChild<QLineEdit*>(name)->setText(text);
        auto& accept = *dialog.findChild<QPushButton*>("changeAccept");
        accept.isEnabled() ? accept.click() : dialog.reject();
      },
      "changeDialog");
}

TEST(Buffer, changesOfTheMenuErasingAndTheLengthAreTakenBack) {
  StartedRig rig("27C256");
  rig.openFile("game.bin", countingBytes(0x4000));
  const ProgrammerState& state = rig.form.state();
  const auto make = [&](const char* entry, std::vector<std::pair<const char*, const char*>> with) {
    const WithDialog dialog = changing(std::move(with));
    rig.trigger(entry);
  };
  make("bufferHalve", {});
  EXPECT_EQ(state.CodeLength, 0x2000);
  EXPECT_EQ(state.CodeBuffer[0x2000], 0xFF) << "nothing of the longer image is left";
  make("bufferFill", {{"changeRange", "7000-70FF"}, {"changeBytes", "12 34"}});
  EXPECT_EQ(state.CodeBuffer[0x7001], 0x34);
  EXPECT_EQ(state.CodeLength, 0x8000) << "as long as the chip: what is saved has it too";
  make("bufferFill", {{"changeRange", "7000-8000"}, {"changeBytes", "00"}});
  EXPECT_EQ(state.CodeBuffer[0x7001], 0x34) << "out of the chip";
  const WithDialog sums([&](QDialog& dialog) {
    dialog.findChild<QLineEdit*>("changeRange")->setText("0-10");
    dialog.findChild<QLineEdit*>("changeAt")->setText("7FFE");
    const auto& accept = *dialog.findChild<QPushButton*>("changeAccept");
    EXPECT_TRUE(accept.isEnabled()) << "two bytes";
    dialog.findChild<QComboBox*>("changeKind")->setCurrentIndex(2);
    EXPECT_FALSE(accept.isEnabled()) << "four bytes";
    dialog.reject();
  });
  rig.trigger("bufferChecksum");
  rig.click("Erase_button");
  EXPECT_FALSE(rig.find("Program_button").isEnabled());
  EXPECT_EQ(rig.find<QAction>("bufferUndo").text(), "&Undo Erase Buffer");
  for (int i = 0; i < 3; ++i) rig.trigger("bufferUndo");
  EXPECT_TRUE(rig.find("Program_button").isEnabled());
  EXPECT_EQ(state.CodeLength, 0x4000);
  EXPECT_EQ(state.CodeBuffer[0x3FFF], countingBytes(0x4000).back());
  EXPECT_FALSE(rig.find<QAction>("bufferUndo").isEnabled());
  rig.openFile("other.bin", countingBytes(0x100));
  EXPECT_FALSE(rig.find<QAction>("bufferRedo").isEnabled()) << "it was about another image";
}

TEST(Buffer, anEditedOneIsReplacedOnlyWhenThePersonSaysSo) {
  StartedRig rig("27C256");
  rig.click("Read_button");
  rig.openFile("game.bin", countingBytes(0x8000));  // nothing was edited: nothing is asked
  const auto& buffer = rig.form.state().CodeBuffer;
  rig.trigger("compareChip");
  auto& page = rig.find<QPlainTextEdit>("BufferDisplay");
  page.setFocus();
  QTest::keyClicks(&page, "FF");  // as the chip has it
  auto& summary = rig.find<QLabel>("differenceSummary");
  const auto isToldAnew = [&] { return summary.text().contains("32639 of 32768 bytes differ"); };
  EXPECT_TRUE(QTest::qWaitFor(isToldAnew)) << summary.text().toStdString();
  writeFileAtomically(rig.folder / "project", "kestrel-project = 1\nspeed = 3\nfile = game.bin\n");
  for (const std::string way : {"menuReadCode", "mnuFileOpenCode", "importImage", "openProject"}) {
    const WithDialog cancelled([](QDialog& box) { box.reject(); }, "unsavedQuestion");
    rig.dialogs.answerNextOpen(rig.folder / (way == "openProject" ? "project" : "game.bin"));
    rig.trigger(way.c_str());
    EXPECT_FALSE(cancelled.said().empty()) << way;
    EXPECT_EQ(buffer[0], 0xFF) << way;
    EXPECT_EQ(rig.controls().Slider1.value(), 18) << way;
  }
  rig.dialogs.forgetNextOpen();
  const WithDialog lost = pressing("Replace Without Saving");
  rig.click("Read_button");
  EXPECT_EQ(buffer[1], 0xFF);
}

TEST(Buffer, isTheFileAgainWhenAnEraseIsTakenBackOrSaved) {
  StartedRig rig("27C256");
  rig.openFile("game.bin", countingBytes(0x8000));
  const WithDialog overwrite = pressing("Overwrite");
  using Step = std::pair<const char*, const char*>;
  for (const auto& [entry, title] :
       {Step("menuEraseCode", "buffer erased"), Step("bufferUndo", "game.bin - "),
        Step("bufferRedo", "buffer erased"), Step("mnuFileSaveCode", "game.bin - "),
        Step("bufferUndo", "game.bin (changed)"), Step("bufferRedo", "game.bin - ")}) {
    rig.trigger(entry);
    EXPECT_THAT(rig.window.windowTitle().toStdString(), HasSubstr(title)) << entry;
  }
}

TEST(FileOnTheDisk, changedByAnotherIsOfferedAgainOnesOwnSaveIsNot) {
  StartedRig rig("27C256");
  rig.openFile("game.bin", countingBytes(0x100));
  const auto isOffered = [&](int waitMs) {
    return QTest::qWaitFor([&] { return rig.shown("notice-file") != nullptr; }, waitMs);
  };
  rig.trigger("mnuFileSaveCode");
  EXPECT_FALSE(isOffered(800));
  for (const std::uint8_t value :
       std::vector<std::uint8_t>{1, 2}) {  // in place of the old one, twice
    writeFileAtomically(rig.folder / "game.bin", std::vector<std::uint8_t>(0x100, value));
    ASSERT_TRUE(isOffered(3'000));
    EXPECT_NE(rig.form.state().CodeBuffer[1], value) << "not unasked";
    rig.click("readAgain");
    EXPECT_EQ(rig.form.state().CodeBuffer[1], value);
    EXPECT_FALSE(isOffered(0));
  }
}

TEST(Project, setsAgainWhatWasSetAndKeepsWhatItDoesNotKnow) {
  const TemporaryFolder folder;
  const auto file = folder / "lot.project";
  writeFileAtomically(folder / "a.hex", kHexFile);
  {
    StartedRig rig("27C256");
    const ImageAnswer answer((folder / "a.hex").string(), "", "7FF4");
    rig.trigger("importImage");
    rig.controls().Slider1.setValue(11);
    for (const char* const ticked : {"VerifyAfterProgramming", "HiLow_button(1)"})
      rig.click(ticked);
    writeFileAtomically(file,
                        "# ours\nkestrel-project = 1\ncolour = red\nsetup = 1\nforce = yes\n");
    const WithDialog choose = choosing(file.string());
    const WithDialog replace = answering(QMessageBox::Yes);
    rig.trigger("saveProject");
  }
  EXPECT_EQ(readWholeTextFile(file),
            "# ours\nkestrel-project = 1\ncolour = red\nsetup = 1\nalgorithms = classic\n"
            "device = Eprom 27C256\nspeed = 11\nvpp = 12.5\nlane = odd\ncheck = no\n"
            "blank-check = no\nverify = yes\nrepeat = 1\nfile = a.hex\nformat = ihex\nat = 7FF4\n");
  std::string text = readWholeTextFile(file);
  writeFileAtomically(file, text.erase(text.find("setup"), 10) + "serial = at=0,bytes=2\n");
  StartedRig rig;
  rig.dialogs.answerNextOpen(file);
  rig.trigger("openProject");
  EXPECT_EQ(rig.form.state().DeviceName, "Eprom 27C256");
  EXPECT_EQ(rig.form.state().CodeBuffer[0x7FFF], 'H');
  EXPECT_EQ(rig.controls().Slider1.value(), 11);
  EXPECT_TRUE(rig.controls().HiLow_button[1].value());
  EXPECT_TRUE(rig.controls().VerifyAfterProgramming.isTicked());
  writeFileAtomically(folder / "f", "kestrel-project=1\nalgorithms=datasheet\ndevice=AM29F040\n");
  for (const auto& [name, device] :
       {std::pair(folder / "f", "AM29F040"), {file, "Eprom 27C256"}}) {  // of one way alone
    rig.dialogs.answerNextOpen(name);
    rig.trigger("openProject");
    EXPECT_THAT(rig.form.state().DeviceName, HasSubstr(device));
  }
  ASSERT_NE(rig.shown("notice-project"), nullptr);
  EXPECT_THAT(rig.shown("notice-project")->accessibleName().toStdString(), HasSubstr("colour"));
  const WithDialog series(
      [](QDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QLineEdit*>("serialBytes")->text(), "2");
        dialog.reject();
      },
      "seriesDialog");
  rig.trigger("programSeveral");
}

TEST(Project, thatCannotBeUsedIsToldInASentenceAndChangesNothing) {
  StartedRig rig("27C256");
  rig.openFile("game.bin", countingBytes(0x8000));
  const QString log = rig.logText();
  writeFileAtomically(rig.folder / "far.hex", ":0400300001020304C3\n:00000001FF\n");
  for (const auto& [lines, told] :
       {std::pair("kestrel-project = 2\n", "of version 2, which a newer Kestrel wrote"),
        {"speed = 3\n", "line 1: a project begins with"},
        {"kestrel-project = 1\nspeed = 30\n", "speed: \"30\" is no program speed; use 1"},
        {"kestrel-project = 1\ndevice = 27C64\nvpp = 25\n", "vpp: Eprom 27C64 does not take 25 V"},
        {"kestrel-project = 1\ndevice = 99C99\n", "device: \"99C99\" fits no device"},
        {"kestrel-project = 1\nspeed = 3\nprotect = on\n", "protect: it is for algorithms "},
        {"kestrel-project = 1\nspeed = 3\nfile = gone.bin\n", "gone.bin"},
        {"kestrel-project = 1\ndevice = 2764\nfile = .\n", "Is a directory"},
        {"kestrel-project = 1\ndevice = 2764\nfile = game.bin\nat = 1\n", "the chip ends at 1FFF"},
        {"kestrel-project = 1\nfile = far.hex\nformat = auto\n", "line 1"}}) {
    writeFileAtomically(rig.folder / "bad", lines);
    const WithDialog box = answering(QMessageBox::Ok);
    rig.dialogs.answerNextOpen(rig.folder / "bad");
    rig.trigger("openProject");
    EXPECT_THAT(box.said(), HasSubstr(told)) << lines;
    EXPECT_TRUE(rig.logText() == log) << lines;
  }
}

TEST(Identity, ofTheImageStandsUnderTheFileAndFollowsATypedByte) {
  StartedRig rig("27C256");
  auto& identity = rig.find("imageIdentity");
  EXPECT_FALSE(identity.isVisible()) << "no image yet";
  std::vector<std::uint8_t> twice(0x1000, 0xFF);
  for (const std::size_t at : {0x10U, 0x810U}) twice[at] = 0x00;
  rig.openFile("a.bin", twice);
  const auto told = [&](const char* text) {
    return QTest::qWaitFor([&] { return identity.toolTip().contains(text); }, 5'000);
  };
  // The digits are those of sha256sum.
  EXPECT_TRUE(told("the same 2048 bytes 2 times")) << identity.toolTip().toStdString();
  EXPECT_TRUE(told("aa2e6d01d01d8ee8")) << identity.toolTip().toStdString();
  auto& page = rig.find<QPlainTextEdit>("BufferDisplay");
  page.setFocus();
  QTest::keyClicks(&page, "00");
  EXPECT_TRUE(QTest::qWaitFor([&] { return !identity.toolTip().contains("2 times"); }, 5'000));
}

TEST(Several, chipsGetTheirNumbersTheBadOneNoneAndEscEnds) {
  StartedRig rig("27C256");
  std::vector<std::uint8_t> image(0x8000, 0xFF);
  for (const std::size_t at : {0x100U, 0x7FFCU}) image[at] = 0x5A;
  rig.openFile("a.bin", image);
  std::vector<std::vector<std::uint8_t>> chips;
  rig.window.changeChipsBy({.changeChip =
                                [&](std::size_t number) {
                                  rig.board().blankChip();
                                  if (number == 2) rig.board().fitWeakCell(0x100);
                                  if (number == 3) rig.board().insert(sim::makeChip("27C256"));
                                },
                            .keepChip = [&] { chips.push_back(rig.chipContents()); }});
  const std::string table = (rig.folder / "t.csv").string();
  QTimer poll;
  int pressed = 0;
  std::string told;
  const WithDialog series(
      [&](QDialog& dialog) {
        dialog.findChild<QGroupBox*>("serialFields")->setChecked(true);
        dialog.findChild<QLineEdit*>("serialAt")->setText("7FFC");
        dialog.findChild<QLineEdit*>("serialStart")->setText("41");
        dialog.findChild<QLineEdit*>("serialCounter")
            ->setText(QString::fromStdString((rig.folder / "counter").string()));
        dialog.findChild<QLineEdit*>("seriesReport")->setText(QString::fromStdString(table));
        auto& next = *dialog.findChild<QPushButton*>("seriesNext");
        QObject::connect(&poll, &QTimer::timeout, &dialog, [&] {
          if (rig.form.runner().isRunning() || !next.isEnabled()) return;
          for (const char* const label : {"seriesPrompt", "seriesCount"}) {
            told += dialog.findChild<QLabel*>(label)->text().toStdString() + '\n';
          }
          told += dialog.findChild<QPlainTextEdit*>("seriesChips")->toPlainText().toStdString();
          // Queued: a timer does not fire again while its slot waits for the next chip.
          QMetaObject::invokeMethod(
              &dialog, [&, again = ++pressed <= 3] { again ? next.click() : dialog.reject(); },
              Qt::QueuedConnection);
        });
        poll.start(20);
      },
      "seriesDialog");
  rig.trigger("programSeveral");
  ASSERT_EQ(chips.size(), 3U);
  EXPECT_EQ(chips[0][0x7FFC], 41);
  EXPECT_EQ(chips[2][0x7FFC], 42) << "the number of the bad one goes to the next";
  const std::string report = readWholeTextFile(table);
  EXPECT_THAT(report, HasSubstr("1,Eprom 27C256,41,good,"));
  EXPECT_THAT(report, HasSubstr("2,Eprom 27C256,,bad,"));
  EXPECT_EQ(rig.form.state().CodeBuffer[0x7FFC], 0x5A) << "the buffer is the image again";
  EXPECT_FALSE(rig.controls().VerifyAfterProgramming.isTicked());
  for (const char* const text :
       {"Chip 4: put it in, then Next Chip. Esc ends", "2 good, 1 bad, ",
        "Chip 2: BAD, the byte at", "Chip 1: good, serial number 41, sum "}) {
    EXPECT_THAT(told, HasSubstr(text));
  }
}

TEST(Several, whatCannotBeIsToldBeforeTheFirstChip) {
  StartedRig rig("27C256");
  rig.openFile("a.bin", countingBytes(0x100));
  for (const auto& [field, text, told] :
       {std::tuple("serialAt", "7FFD", "7FFD and its 4 bytes are not in the chip"),
        {"serialAt", "x", "\"x\" is no address"},
        {"serialBytes", "9", "use 1 to 8"},
        {"serialStep", "0", "use 1 or more"},
        {"seriesReport", "/no/t.csv", "/no/t.csv"},
        {"serialList", "/no/list", "/no/list"}}) {
    std::string prompt;
    const WithDialog series([&, field = field, text = text](QDialog& dialog) {
      dialog.findChild<QGroupBox*>("serialFields")->setChecked(true);
      auto& line = *dialog.findChild<QLineEdit*>(field);
      const QString usual = line.text();
      line.setText(text);
      dialog.findChild<QPushButton*>("seriesNext")->click();
      prompt = dialog.findChild<QLabel*>("seriesPrompt")->text().toStdString();
      EXPECT_TRUE(dialog.findChild<QPushButton*>("seriesNext")->isEnabled());
      line.setText(usual);  // what is typed is kept
      dialog.reject();
    });
    rig.trigger("programSeveral");
    EXPECT_THAT(prompt, HasSubstr(told));
    EXPECT_FALSE(rig.logged("Programming Button Pressed"));
  }
}

TEST(Backup, keepsWhatAChipHeldBeforeItIsErasedOrLeavesItAlone) {
  StartedRig rig("28C256");
  rig.board().loadChip(countingBytes(0x8000));
  const auto folder = rig.folder / "kept";
  std::filesystem::create_directories(folder);
  rig.settings.setValue("Window", "BackupFolder", folder.string());
  window::ChipBackup backup({.window = rig.window,
                             .form = rig.form,
                             .outcome = dynamic_cast<window::OutcomeLine&>(rig.find("outcome")),
                             .settings = rig.settings},
                            rig.find<QMenu>("mnuDevice"), "menuCommandBar0");
  EXPECT_TRUE(backup.mayPress(rig.controls().EraseFlash_button));
  const std::filesystem::directory_iterator kept(folder);
  ASSERT_NE(kept, std::filesystem::directory_iterator());
  EXPECT_EQ(readWholeFile(kept->path(), 0x8000), countingBytes(0x8000));
  std::filesystem::remove_all(folder);
  const WithDialog told = answering(QMessageBox::Ok);
  EXPECT_FALSE(backup.mayPress(rig.controls().Program_button)) << "nowhere to keep it";
  EXPECT_TRUE(backup.mayPress(rig.controls().Read_button));
}

}  // namespace
}  // namespace kestrel::test
