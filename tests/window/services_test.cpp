#include <gmock/gmock.h>

#include <QListWidget>
#include <QPainter>
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

TEST(Link, thatWasKeptIsTakenWhereNoOtherPortIsNamed) {
  MemorySettings settings;
  EXPECT_TRUE(window::withKeptLink({}, settings).ports.empty());
  settings.setValue("Link", "Port", "278=link:/dev/ttyX9");
  EXPECT_TRUE(window::withKeptLink({}, settings).ports.at(0).isLink);
  EXPECT_TRUE(window::withKeptLink(simulatedOptions("27C256"), settings).ports.empty());
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

}  // namespace
}  // namespace kestrel::test
