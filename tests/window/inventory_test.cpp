#include <QFontDatabase>
#include <fstream>
#include <optional>
#include <set>

#include "app/window/board_panel.h"
#include "app/window/link_dialog.h"
#include "window/window_rig.h"

namespace kestrel::test {
namespace {

// v visible, e enabled, t reached by Tab, b bold, f fixed pitch, w wrapped, c ticked, r read only,
// d pressed by Enter.
QString marksOf(const QWidget& widget) {
  const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  const auto is = [&](const char* property) { return widget.property(property).toBool(); };
  const std::pair<bool, const char*> marks[] = {
      {widget.isVisible(), "v"},   {widget.isEnabled(), "e"},
      {is("wordWrap"), "w"},       {(widget.focusPolicy() & Qt::TabFocus) != 0, "t"},
      {widget.font().bold(), "b"}, {widget.font().families() == fixed.families(), "f"},
      {is("checked"), "c"},        {is("readOnly"), "r"},
      {is("default"), "d"},        {is("autoDefault"), "a"}};
  QString text;
  for (const auto& [isSo, mark] : marks) text += isSo ? mark : "";
  return text;
}

/// What people see, read and hear of it: name, texts, tip, spoken name, marks.
QString partOf(const QWidget& widget) {
  QStringList fields{widget.objectName()};
  for (const char* const text :
       {"title", "text", "currentText", "placeholderText", "toolTip", "accessibleName"}) {
    fields << widget.property(text).toString();
  }
  fields.removeAll("");
  return (fields << marksOf(widget)).join(", ").replace('\n', ' ');
}

QStringList partsOf(const QWidget& window) {
  QStringList parts;
  for (const QWidget* const widget : window.findChildren<QWidget*>()) {
    if (!widget->objectName().startsWith("qt_")) parts << partOf(*widget);
  }
  return parts;
}

QStringList menusOf(const QWidget& window) {
  QStringList menus;
  for (const QMenu* const menu : window.findChildren<QMenu*>()) {
    QStringList entries;
    for (const QAction* const entry : menu->actions()) {
      const QString keys = entry->shortcut().toString();
      entries << (entry->isSeparator() ? "-" : entry->text() + (keys.isEmpty() ? "" : " " + keys));
    }
    menus << menu->title() + ": " + entries.join("; ");
  }
  return menus;
}

TEST(Inventory, everyEntryButtonAndFieldIsThereWithItsTextItsTipAndItsKey) {
  StartedRig rig("27C256");
  rig.window.addLinkEntry(
      [&] { return window::askForLink(rig.program, rig.settings, rig.window); });
  rig.window.addSidePanel(*new window::SimulatedBoardPanel(
                              *rig.program.simulated(), rig.form.runner(), rig.input, &rig.window),
                          "Simulated board");
  rig.openFile("image.bin", countingBytes(100));
  rig.click("Command1");
  QStringList found = partsOf(rig.window) + menusOf(rig.window);
  for (const char* const entry :
       {"exportImage", "importImage", "bufferFill", "bufferCopy", "bufferSwap", "bufferReverse",
        "bufferChecksum", "bufferInsert", "bufferSplit", "bufferJoin", "bufferHalve",
        "bufferDouble", "programSeveral", "mnuHelpAbout", "bufferGoTo"}) {
    const auto look = [&](QDialog& dialog) {
      found << "dialog " + dialog.windowTitle() + ": " + partsOf(dialog).join("; ");
      dialog.reject();
    };
    std::optional<WithDialog> next;
    const WithDialog asked([&](QDialog& dialog) {
      if (dynamic_cast<QFileDialog*>(&dialog) == nullptr) return look(dialog);
      next.emplace(look);
      const std::string file = rig.folder / (entry[0] == 'e' ? "new.bin" : "image.bin");
      dialog.findChild<QLineEdit*>("fileNameEdit")->setText(QString::fromStdString(file));
      dialog.accept();
    });
    rig.trigger(entry);
  }
  found.replaceInStrings(QString::fromStdString(rig.folder.path()), "DIR");
  std::ifstream file(KESTREL_INVENTORY);
  for (std::string line; std::getline(file, line);) {
    const QString begin = QString::fromStdString(line.substr(0, line.find_first_of(",;")));
    EXPECT_TRUE(found.contains(QString::fromStdString(line)))
        << "not there: " << line << "\nbut: " << found.filter(begin).join("\n").toStdString();
  }
}

}  // namespace
}  // namespace kestrel::test
