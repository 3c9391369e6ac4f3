#include <gmock/gmock.h>

#include <QFileDialog>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QStyleFactory>
#include <QStyleOptionButton>
#include <QTextBrowser>

#include "app/launch/program_folders.h"
#include "app/window/arguments.h"
#include "app/window/board_panel.h"
#include "app/window/help_window.h"
#include "app/window/link_dialog.h"
#include "app/window/qt_settings_store.h"
#include "app/window/readable_style.h"
#include "window/window_rig.h"

namespace kestrel::test {
namespace {

TEST(DialogBoxes, keepTheirFilterTheirDefaultAndAnAnswerGivenBeforehand) {
  window::Mirror mirror;
  MemorySettings settings;
  window::QtDialogs dialogs(mirror, settings);
  dialogs.answerNextOpen("/a/b.bin");
  EXPECT_EQ(dialogs.openFile("t", "f|*"), "/a/b.bin");
  QStringList patterns;
  const WithDialog dialog([&](QDialog& shown) {
    patterns = dynamic_cast<QFileDialog&>(shown).nameFilters();
    shown.reject();
  });
  EXPECT_EQ(dialogs.openFile("Open Code File", "All Files (*.*)|*.*"), "");
  EXPECT_EQ(patterns, QStringList{"All Files (*.*) (*)"}) << "names without a dot are files too";
  const WithDialog enter([](QDialog& shown) { QTest::keyClick(&shown, Qt::Key_Return); });
  EXPECT_EQ(dialogs.messageBox({.text = "Sure?",
                                .title = "T",
                                .icon = MessageIcon::Question,
                                .buttons = MessageButtons::OkCancel,
                                .defaultAnswer = Answer::Cancel}),
            Answer::Cancel);
}

TEST(Settings, textsAreKeptBySectionAndKey) {
  const TemporaryFolder folder;
  const QString file = QString::fromStdString((folder / "k.conf").string());
  window::QtSettingsStore(file).setValue("Settings", "MainLeft", "-100");
  const window::QtSettingsStore store(file);
  EXPECT_EQ(store.value("Settings", "MainLeft"), "-100");
  EXPECT_EQ(store.value("Other", "MainLeft"), std::nullopt);
}

TEST(Help, theWindowShowsTheManualAndFollowsItsList) {
  window::HelpWindow window(launch::programFolders({}).data / "help" / "kestrel5.hlp", nullptr);
  window.open(HelpPage::Contents);
  auto& page = *window.findChild<QTextBrowser*>("helpPage");
  auto& list = *window.findChild<QListWidget*>("helpPages");
  EXPECT_TRUE(page.toPlainText().contains("Begin here"));
  QTest::keyClicks(window.findChild<QLineEdit*>("helpSearch"), "24C16");
  ASSERT_GT(list.count(), 0);
  EXPECT_TRUE(list.item(0)->text().contains("24Cxx"));
  list.setCurrentRow(0);
  EXPECT_TRUE(page.toPlainText().contains("300h"));
  EXPECT_EQ(page.extraSelections().size(), page.toPlainText().count("24C16", Qt::CaseInsensitive));
  QTest::keyClicks(window.findChild<QLineEdit*>("helpSearch"), " nosuchword");
  EXPECT_EQ(list.count(), 0) << "every word has to be found";
  window.open(HelpPage::Search);
  EXPECT_EQ(window.findChild<QLineEdit*>("helpSearch")->text(), "");
  page.setSource(page.source().resolved(QUrl("alert.html")));
  ASSERT_NE(list.currentItem(), nullptr);
  EXPECT_EQ(list.currentItem()->data(Qt::UserRole).toString(), page.source().toLocalFile());
}

TEST(Help, aPageLoadsNothingFromBesideTheManual) {
  const TemporaryFolder folder;
  std::filesystem::create_directories(folder / "help");
  writeFileAtomically(folder / "secret.html", std::string_view("<p>secret</p>"));
  writeFileAtomically(folder / "help" / "a.html", std::string_view("<p>page</p>"));
  writeFileAtomically(folder / "help" / "book.hlp", std::string_view("a.html\tPage\n"));
  window::HelpWindow window(folder / "help" / "book.hlp", nullptr);
  window.open(HelpPage::Contents);
  auto& page = *window.findChild<QTextBrowser*>("helpPage");
  const QUrl secret = QUrl::fromLocalFile(QString::fromStdString(folder / "secret.html"));
  page.setSource(secret);
  EXPECT_TRUE(page.toPlainText().contains("page"));
  EXPECT_FALSE(page.loadResource(QTextDocument::HtmlResource, QUrl("../secret.html")).isValid());
  EXPECT_TRUE(page.loadResource(QTextDocument::HtmlResource, QUrl("a.html")).isValid());
}

TEST(Mirror, aBindingEndsWithItsWidget) {
  window::Mirror mirror;
  Controls controls;
  controls.setListener(&mirror);
  int shown = 0;
  auto label = std::make_unique<QLabel>();
  mirror.bind(controls.Frame3, *label, [&] { ++shown; });
  controls.Frame3.setCaption("one");
  mirror.refresh();
  EXPECT_EQ(shown, 2) << "at once and after the change";
  label.reset();
  controls.Frame3.setCaption("two");
  mirror.refresh();
  EXPECT_EQ(shown, 2);
}

TEST(Style, anUntickedBoxIsSeenOnADarkGround) {
  const auto contrast = [](QStyle& style) {
    QStyleOptionButton box;
    box.rect = QRect(0, 0, 16, 16);
    box.palette = QPalette(QColor(0x2B, 0x2E, 0x33), QColor(0x2B, 0x2E, 0x33));
    box.palette.setColor(QPalette::Base, QColor(0x1E, 0x20, 0x24));
    box.state = QStyle::State_Enabled | QStyle::State_Off;
    QImage image(16, 16, QImage::Format_RGB32);
    image.fill(box.palette.color(QPalette::Window));
    QPainter painter(&image);
    style.drawPrimitive(QStyle::PE_IndicatorCheckBox, &box, &painter);
    painter.end();
    int lightest = 0;
    for (int x = 0; x < 16; ++x) lightest = std::max(lightest, image.pixelColor(x, 8).lightness());
    return lightest - box.palette.color(QPalette::Window).lightness();
  };
  window::ReadableStyle style(QStyleFactory::create("Fusion"));
  EXPECT_GT(contrast(style), 60);
}

TEST(Arguments, areThoseOfTheCommandLine) {
  const window::Arguments read = window::readArguments(
      {"kestrel", "--simulate", "--model", "4", "--chip", "2764=x.bin", "--fault", "weak:10",
       "--fault", "empty", "--project", "lot.project", "rom.bin"});
  EXPECT_EQ(read.launch.model, sim::Model::kestrel4);
  EXPECT_EQ(read.launch.chip->file, "x.bin");
  EXPECT_EQ(read.launch.faults.size(), 2U);
  EXPECT_EQ(read.codeFile, std::filesystem::current_path() / "rom.bin");
  EXPECT_EQ(read.project, std::filesystem::current_path() / "lot.project");
  EXPECT_THROW((void)window::readArguments({"kestrel", "--nonsense"}), launch::UsageError);
}

struct BoardPanelRig : StartedRig {
  BoardPanelRig() : panel(*program.simulated(), form.runner(), input, nullptr) { panel.show(); }
  template <typename T>
  T& part(const char* name) {
    return *panel.findChild<T*>(name);
  }
  void press(const char* name) {
    QTest::mouseClick(&part<QAbstractButton>(name), Qt::LeftButton);
    turn();
  }
  void choose(const char* name, const QString& entry) {
    auto& box = part<QComboBox>(name);
    box.setCurrentText(entry);
    emit box.activated(box.currentIndex());
    turn();
  }

  window::SimulatedBoardPanel panel;
};

TEST(Link, isAskedForTestedAndKeptFromStartToStart) {
  WindowRig rig;
  rig.start();
  rig.window.addLinkEntry(
      [&] { return window::askForLink(rig.program, rig.settings, rig.window); });
  const auto keptAfter = [&](const std::function<void(QDialog&)>& act) {
    rig.controls().SystemLog.setText("");
    const WithDialog dialog(act);
    rig.find<QAction>("mnuLink").trigger();
    return rig.settings.value("Link", "Port").value_or("none");
  };
  const auto press = [](QDialog& dialog, const char* button) {
    dialog.findChild<QPushButton*>(button)->click();
  };
  EXPECT_EQ(keptAfter([&](QDialog& dialog) {
              EXPECT_EQ(misplacedIn(dialog), "");
              dialog.findChild<QComboBox*>("linkLine")->setEditText("/dev/ttyX9");
              dialog.findChild<QComboBox*>("linkBase")->setCurrentIndex(1);
              press(dialog, "linkUse");
            }),
            "278=link:/dev/ttyX9");
  EXPECT_NE(rig.controls().SystemLog.text().find("FOUND at Port"), std::string::npos);
  EXPECT_TRUE(window::withKeptLink({}, rig.settings).ports.at(0).isLink);
  EXPECT_TRUE(window::withKeptLink(simulatedOptions("27C256"), rig.settings).ports.empty());
  EXPECT_EQ(keptAfter([&](QDialog& dialog) { press(dialog, "linkUse"); }), "278=link:/dev/ttyX9");
  EXPECT_EQ(keptAfter([&](QDialog& dialog) { press(dialog, "linkNone"); }), "");
  EXPECT_TRUE(window::withKeptLink({}, rig.settings).ports.empty());
}

TEST(SimulatedBoardPanel, chipsGoInAreErasedAndComeOut) {
  BoardPanelRig rig;
  rig.choose("chipType", "2764");
  rig.press("insertBlank");
  EXPECT_EQ(rig.board().chip()->typeName(), "2764");
  EXPECT_TRUE(rig.part<QLabel>("chipInSocket").text().contains("8 KB, blank"));
  rig.board().loadChip(std::vector<std::uint8_t>(8192, 1));
  rig.press("eraseUnderLamp");
  EXPECT_EQ(rig.board().chip()->contents()[0], 0xFF);
  rig.press("takeOut");
  EXPECT_EQ(rig.board().chip(), nullptr);
}

TEST(SimulatedBoardPanel, aChipComesFromAFileAndGoesIntoOne) {
  BoardPanelRig rig;
  const auto& shown = rig.part<QLabel>("chipInSocket");
  const auto fromFile = [&](const char* button, const std::string& file) {
    const WithDialog name = choosing(rig.folder / file);
    rig.press(button);
  };
  writeFileAtomically(rig.folder / "short.bin", "abc");
  writeFileAtomically(rig.folder / "whole.bin", std::string(8192, 'w'));
  rig.choose("chipType", "2764");
  std::string told;
  std::optional<WithDialog> box;
  {
    const WithDialog name([&](QDialog& dialog) {
      dialog.findChild<QLineEdit*>("fileNameEdit")
          ->setText(QString::fromStdString(rig.folder / "short.bin"));
      dialog.accept();
      box.emplace([](QDialog& shownBox) { shownBox.accept(); });
    });
    rig.press("insertFromFile");
    told = box->said();
  }
  EXPECT_EQ(told, "The file holds 3 bytes, a 2764 has 8192.");
  EXPECT_TRUE(shown.text().startsWith("<b>27C256</b>, 32 KB"));
  fromFile("insertFromFile", "whole.bin");
  EXPECT_EQ(shown.text(), "<b>2764</b>, 8 KB, holds data");
  fromFile("saveContents", "kept.bin");
  EXPECT_EQ(readWholeTextFile(rig.folder / "kept.bin"), std::string(8192, 'w'));
  rig.choose("chipType", "28C256");
  rig.press("insertBlank");
  {
    const WithDialog lamp = answering(QMessageBox::Ok);
    rig.press("eraseUnderLamp");
    EXPECT_THAT(lamp.said(), testing::HasSubstr("the lamp does not erase it"));
  }
  rig.press("takeOut");
  EXPECT_EQ(shown.text(), "Empty");
  for (const char* const name : {"takeOut", "eraseUnderLamp", "saveContents"}) {
    EXPECT_FALSE(rig.part<QPushButton>(name).isEnabled()) << name;
  }
  EXPECT_FALSE(rig.part<QComboBox>("boardVoltage").isEnabled());
  rig.choose("boardModel", "KESTREL-4");
  EXPECT_TRUE(rig.part<QComboBox>("boardVoltage").isEnabled());
  rig.press("plugBoard");
  EXPECT_EQ(rig.part<QPushButton>("plugBoard").text(), "Plug In");
}

TEST(SimulatedBoardPanel, faultsAreFittedListedAndMended) {
  BoardPanelRig rig;
  const auto& list = rig.part<QListWidget>("faults");
  const auto fit = [&](const char* kind, const char* value) {
    rig.choose("faultKind", kind);
    rig.part<QLineEdit>("faultValue").setText(value);
    rig.press("fitFault");
    return list.count() == 0 ? "" : list.item(list.count() - 1)->text().toStdString();
  };
  const auto mendLast = [&] {
    rig.part<QListWidget>("faults").setCurrentRow(list.count() - 1);
    rig.press("mendFault");
  };
  EXPECT_EQ(fit("Weak cell", "1f0"), "Weak cell at 1F0h");
  EXPECT_EQ(fit("Line low", "3"), "D3 is stuck low");
  EXPECT_EQ(rig.board().dataBus() & 0x08, 0);
  EXPECT_EQ(fit("Unplug after", "5000"), "Unplug after 5000 accesses");
  mendLast();
  mendLast();
  EXPECT_NE(rig.board().dataBus() & 0x08, 0);
  EXPECT_EQ(list.count(), 1);
  {
    const WithDialog told = answering(QMessageBox::Ok);
    EXPECT_EQ(fit("No ACK after", "9"), "Weak cell at 1F0h") << "an EPROM acknowledges nothing";
  }
  mendLast();
  EXPECT_TRUE(rig.board().chip()->weakCells().empty());
  rig.choose("chipType", "24C32");
  rig.press("insertBlank");
  EXPECT_EQ(fit("No ACK after", "9"), "No ACK after 9 bytes");
}

TEST(SimulatedBoardPanel, aDamagedChipIsSeenAndKnownContentionStandsApart) {
  BoardPanelRig rig;
  rig.select("27C256");
  rig.openFile("image.bin", {0});
  const auto program = [&] {
    const WithDialog question = answering(QMessageBox::Ok);
    rig.click("Program_button");
  };
  program();
  const auto& findings = rig.part<QListWidget>("findings");
  ASSERT_EQ(findings.count(), 1);
  EXPECT_TRUE(findings.item(0)->text().startsWith("Known of the classic procedures: "));
  rig.choose("chipType", "28C256");
  rig.press("insertBlank");
  program();
  EXPECT_TRUE(rig.part<QLabel>("chipInSocket").text().contains("damaged"));
  EXPECT_TRUE(findings.item(0)->text().contains("damaged")) << "before what is known";
  EXPECT_NE(findings.item(0)->foreground(), findings.item(1)->foreground());
  rig.press("clearFindings");
  EXPECT_EQ(findings.count(), 0);
}

TEST(SimulatedBoardPanel, aChipThatCannotBeKeptIsOfferedAnotherPlace) {
  const TemporaryFolder folder;
  launch::LaunchOptions options = simulatedOptions("2764");
  options.chip->file = folder / "gone" / "chip.bin";
  launch::SimulatedBoard simulated(options, "2764");
  StartedRig rig;
  window::SimulatedBoardPanel panel(simulated, rig.form.runner(), rig.input, nullptr);
  {
    const WithDialog asked = pressing("Cancel");
    EXPECT_FALSE(panel.keepChip());
    EXPECT_THAT(asked.said(), testing::HasSubstr("could not be kept"));
  }
  const WithDialog elsewhere = pressing("Close Without");
  EXPECT_TRUE(panel.keepChip());
  EXPECT_NO_THROW(simulated.saveChip()) << "nobody tries the first place again";
}

TEST(SimulatedBoardPanel, anotherBoardIsFoundByTheHardwareTest) {
  BoardPanelRig rig;
  const auto found = [&] {
    rig.click("TestHardware_button");
    return rig.find<QLabel>("KestrelHardwareFound").text().toStdString();
  };
  rig.choose("boardModel", "KESTREL-4");
  rig.choose("boardPort", "278h");
  EXPECT_EQ(found(), "MODEL 4 - PC port 278h");
  rig.press("plugBoard");
  EXPECT_EQ(found(), "NO HARDWARE FOUND");
}

}  // namespace
}  // namespace kestrel::test
