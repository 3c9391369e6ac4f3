#include <gmock/gmock.h>

#include <QFileDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QTextBrowser>

#include "app/launch/program_folders.h"
#include "app/window/arguments.h"
#include "app/window/bench_panel.h"
#include "app/window/help_window.h"
#include "app/window/qt_settings_store.h"
#include "window/window_rig.h"

namespace kestrel::test {
namespace {

TEST(Dialogs, theFilterShowsItsTextAndMatchesEveryFile) {
  const TemporaryFolder folder;
  writeFileAtomically(folder / "NODOT", std::string_view("x"));
  Mirror mirror;
  QtDialogs dialogs(mirror);
  QStringList patterns;
  const WithDialog dialog([&](QDialog& shown) {
    auto& files = dynamic_cast<QFileDialog&>(shown);
    patterns = files.nameFilters();
    EXPECT_EQ(files.windowTitle(), "Open Code File");
    EXPECT_TRUE(files.testOption(QFileDialog::HideNameFilterDetails));
    files.reject();
  });
  EXPECT_EQ(dialogs.openFile("Open Code File", "All Files (*.*)|*.*"), "");
  EXPECT_EQ(patterns, QStringList{"All Files (*.*) (*)"});
}

TEST(Dialogs, anAnswerGivenBeforehandIsUsedOnce) {
  Mirror mirror;
  QtDialogs dialogs(mirror);
  dialogs.answerNextOpen("/a/b.bin");
  EXPECT_EQ(dialogs.openFile("t", "f|*"), "/a/b.bin");
  const WithDialog dialog([](QDialog& shown) { shown.reject(); });
  EXPECT_EQ(dialogs.openFile("t", "f|*"), "");
  EXPECT_TRUE(dialog.wasShown());
}

TEST(Dialogs, aQuestionHasTheDefaultThatWasAskedFor) {
  Mirror mirror;
  QtDialogs dialogs(mirror);
  const WithDialog enter([](QDialog& shown) { QTest::keyClick(&shown, Qt::Key_Return); });
  EXPECT_EQ(dialogs.messageBox({.text = "Sure?",
                                .title = "T",
                                .icon = MessageIcon::Question,
                                .buttons = MessageButtons::OkCancel,
                                .defaultAnswer = Answer::Cancel}),
            Answer::Cancel);
}

TEST(Dialogs, theInputBoxGivesWhatWasTypedAndNothingWhenCancelled) {
  Mirror mirror;
  QtDialogs dialogs(mirror);
  {
    const WithDialog typing([](QDialog& shown) {
      dynamic_cast<QInputDialog&>(shown).setTextValue("Lab");
      shown.accept();
    });
    EXPECT_EQ(dialogs.inputBox("Name?", "Title"), "Lab");
  }
  const WithDialog cancelling([](QDialog& shown) {
    dynamic_cast<QInputDialog&>(shown).setTextValue("Lab");
    shown.reject();
  });
  EXPECT_EQ(dialogs.inputBox("Name?", "Title"), "");
}

TEST(Dialogs, theAboutBoxTellsTheVersion) {
  Mirror mirror;
  QtDialogs dialogs(mirror);
  QString text;
  const WithDialog about([&](QDialog& shown) {
    for (const QLabel* const label : shown.findChildren<QLabel*>()) text += label->text();
    shown.reject();
  });
  dialogs.about();
  EXPECT_TRUE(text.contains("Version 1."));
}

TEST(Settings, textsAreKeptBySectionAndKey) {
  const TemporaryFolder folder;
  const QString file = QString::fromStdString((folder / "k.conf").string());
  QtSettingsStore(file).setValue("Settings", "MainLeft", "-100");
  const QtSettingsStore store(file);
  EXPECT_EQ(store.value("Settings", "MainLeft"), "-100");
  EXPECT_EQ(store.value("Settings", "MainTop"), std::nullopt);
  EXPECT_EQ(store.value("Other", "MainLeft"), std::nullopt);
}

TEST(Help, theSearchFindsByKeywordFirstAndThenInThePages) {
  const TemporaryFolder folder;
  writeFileAtomically(folder / "k.hlp",
                      std::string_view("# comment\n\nstart.html\tBegin\tcontents\n"
                                       "volt.html\tVoltage\tVPP, 21 V\n"));
  writeFileAtomically(folder / "start.html", std::string_view("<p>Mind the <b>VPP</b> first</p>"));
  writeFileAtomically(folder / "volt.html", std::string_view("<p>high</p>"));
  const HelpBook book(folder / "k.hlp");
  ASSERT_EQ(book.pages().size(), 2);
  EXPECT_EQ(book.pages()[0].title, "Begin");
  const auto found = book.search("vpp");
  ASSERT_EQ(found.size(), 2);
  EXPECT_EQ(found[0].title, "Voltage");
  EXPECT_EQ(book.search("mind first").size(), 1);
  EXPECT_EQ(book.search("mind nothing").size(), 0);
  EXPECT_EQ(HelpBook(folder / "none.hlp").pages().size(), 0);
}

TEST(Help, theWindowShowsTheManualAndFollowsItsList) {
  const auto manual = programFolders({}).data / "help" / "kestrel5.hlp";
  HelpWindow window(manual, nullptr);
  window.open(HelpPage::Contents);
  auto& page = *window.findChild<QTextBrowser*>("helpPage");
  auto& list = *window.findChild<QListWidget*>("helpPages");
  EXPECT_GT(list.count(), 15);
  EXPECT_TRUE(page.toPlainText().contains("Begin here"));
  page.setSource(QUrl::fromLocalFile(
      QString::fromStdString((manual.parent_path() / "voltage.html").string())));
  EXPECT_EQ(list.currentItem()->text(), "Programming voltage");
  QTest::keyClicks(window.findChild<QLineEdit*>("helpSearch"), "24C16");
  ASSERT_GT(list.count(), 0);
  EXPECT_TRUE(list.item(0)->text().contains("24C16"));
  list.setCurrentRow(0);
  EXPECT_TRUE(page.toPlainText().contains("300h"));
  EXPECT_FALSE(page.extraSelections().isEmpty());
}

TEST(Arguments, areThoseOfTheCommandLine) {
  const Arguments read = readArguments({"kestrel", "--simulate", "--model", "4", "--lpt", "3BC",
                                        "--chip", "2764=x.bin", "--fault", "weak:10", "--fault",
                                        "empty", "--home", "/h", "rom.bin"});
  EXPECT_TRUE(read.launch.simulate);
  EXPECT_EQ(read.launch.model, sim::Model::kestrel4);
  EXPECT_EQ(read.launch.chip->file, "x.bin");
  EXPECT_EQ(read.launch.faults.size(), 2U);
  EXPECT_EQ(read.codeFile, "rom.bin");
  EXPECT_THROW((void)readArguments({"kestrel", "--nonsense"}), UsageError);
  EXPECT_THROW((void)readArguments({"kestrel", "a.bin", "b.bin"}), UsageError);
  EXPECT_THROW((void)readArguments({"kestrel", "--model", "5"}), UsageError);
}

struct BenchRig : WindowRig {
  BenchRig() : panel(*ports.simulated(), gate, nullptr) {
    start();
    panel.show();
  }
  void press(const char* name) {
    QTest::mouseClick(panel.findChild<QAbstractButton*>(name), Qt::LeftButton);
    turn();
  }
  void choose(const char* name, const QString& entry) {
    auto& box = *panel.findChild<QComboBox*>(name);
    box.setCurrentText(entry);
    emit box.activated(box.currentIndex());
    turn();
  }
  QString chipText() { return panel.findChild<QLabel*>("chipInSocket")->text(); }
  sim::Board& board() { return ports.simulated()->board(); }

  BenchPanel panel;
};

TEST(BenchPanel, chipsGoInAreErasedAndComeOut) {
  BenchRig rig;
  rig.choose("chipType", "2764");
  rig.press("insertBlank");
  EXPECT_EQ(rig.board().chip()->typeName(), "2764");
  EXPECT_TRUE(rig.chipText().contains("8 KB, blank"));
  rig.board().loadChip(std::vector<std::uint8_t>(8192, 1));
  rig.press("clearFindings");
  EXPECT_TRUE(rig.chipText().contains("holds data"));
  rig.press("eraseUnderLamp");
  EXPECT_EQ(rig.board().chip()->contents()[0], 0xFF);
  rig.press("takeOut");
  EXPECT_EQ(rig.board().chip(), nullptr);
  EXPECT_FALSE(rig.panel.findChild<QAbstractButton*>("fitWeakCell")->isEnabled());
}

TEST(BenchPanel, aWeakCellOutsideTheChipIsRefused) {
  BenchRig rig;
  rig.panel.findChild<QLineEdit*>("weakAddress")->setText("8000");
  const WithDialog told = answering(QMessageBox::Ok);
  rig.press("fitWeakCell");
  EXPECT_TRUE(told.wasShown());
}

TEST(BenchPanel, anotherBoardIsFoundByTheHardwareTest) {
  BenchRig rig;
  rig.choose("boardModel", "KESTREL-4");
  rig.choose("boardPort", "278h");
  rig.click("TestHardware_button");
  EXPECT_EQ(rig.find<QLabel>("KestrelHardwareFound").text(), "MODEL 4 - PC port 278h");
  EXPECT_TRUE(rig.panel.findChild<QComboBox*>("boardVoltage")->isEnabled());
  rig.press("plugBoard");
  rig.click("TestHardware_button");
  EXPECT_EQ(rig.find<QLabel>("KestrelHardwareFound").text(), "NO HARDWARE FOUND");
}

}  // namespace
}  // namespace kestrel::test
