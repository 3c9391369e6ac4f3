#include "window/window_look.h"

#include <QAbstractSlider>
#include <QClipboard>
#include <QFontDatabase>
#include <QGroupBox>
#include <QListWidget>
#include <QMenuBar>
#include <QProgressBar>
#include <QRegularExpression>
#include <QTextBrowser>
#include <QTextDocumentFragment>

#include "window/window_rig.h"

namespace kestrel::test {
namespace {

QString plainText(const QString& text) {
  const bool isHtml = text.contains('<') || text.contains('&');
  QString plain = isHtml ? QTextDocumentFragment::fromHtml(text).toPlainText() : text;
  return plain.replace('\n', ". ");
}

/// Red and the like; nothing for a grey or for the palette's own.
QString colourName(const QColor& colour) {
  if (colour.saturation() < 100) return {};
  const int hue = colour.hue();
  return hue < 15 ? "red" : hue < 60 ? "amber" : hue < 160 ? "green" : "";
}

QString itemsOf(const QListWidget& list) {
  QStringList items;
  for (int row = 0; row < list.count(); ++row) items << list.item(row)->text();
  return items.join("; ");
}

QString textOf(const QWidget& widget) {
  if (const auto* const list = dynamic_cast<const QListWidget*>(&widget)) return itemsOf(*list);
  if (const auto* const text = dynamic_cast<const QPlainTextEdit*>(&widget)) {
    return text->toPlainText();
  }
  if (const auto* const page = dynamic_cast<const QTextBrowser*>(&widget)) {
    return page->source().fileName();
  }
  if (const auto* const slider = dynamic_cast<const QAbstractSlider*>(&widget)) {
    return QString("%1 of %2 to %3")
        .arg(slider->value())
        .arg(slider->minimum())
        .arg(slider->maximum());
  }
  for (const char* const name : {"title", "currentText", "text"}) {
    const QVariant text = widget.property(name);
    if (text.isValid()) return text.toString().replace('\n', " / ");
  }
  return {};
}

/// The byte that is marked on a page of the display, and its line and column.
QString markOf(const QWidget& widget) {
  const auto* const page = dynamic_cast<const QPlainTextEdit*>(&widget);
  if (page == nullptr || page->extraSelections().size() < 2) return {};
  const QTextCursor mark = page->extraSelections().back().cursor;
  const int column = mark.positionInBlock() - static_cast<int>(mark.selectedText().size());
  return QString("%1 at %2:%3").arg(mark.selectedText()).arg(mark.blockNumber()).arg(column);
}

/// What is selected in a text, and where it ends.
QString selectedIn(const QWidget& widget) {
  const auto* const text = dynamic_cast<const QPlainTextEdit*>(&widget);
  if (text == nullptr || !text->textCursor().hasSelection()) return {};
  const QTextCursor cursor = text->textCursor();
  return QString("%1 up to %2:%3")
      .arg(cursor.selectedText())
      .arg(cursor.blockNumber())
      .arg(cursor.positionInBlock());
}

QString inkOf(const QWidget& widget) {
  const auto* const list = dynamic_cast<const QComboBox*>(&widget);
  const QWidget& inked = list != nullptr && list->isEditable() ? *list->lineEdit() : widget;
  if (!inked.testAttribute(Qt::WA_SetPalette)) return {};
  return colourName(inked.palette().color(inked.foregroundRole()));
}

QString marksOf(const QWidget& widget) {
  const auto is = [&](const char* property) { return widget.property(property).toBool(); };
  const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  // Of a group of radio buttons only one is reached by it.
  const bool isByTab =
      (widget.focusPolicy() & Qt::TabFocus) != 0 && !widget.inherits("QRadioButton");
  const std::pair<bool, const char*> marks[] = {
      {is("wordWrap"), "wrapped"},    {isByTab, "by Tab"},
      {widget.font().bold(), "bold"}, {widget.font().families() == fixed.families(), "fixed"},
      {is("readOnly"), "read only"},  {is("default"), "by Enter"}};
  QStringList words;
  for (const auto& [isSo, word] : marks) words << (isSo ? word : "");
  words.removeAll("");
  return words.join(", ");
}

Facets facetsOf(const QWidget& widget) {
  Facets facets{{"", textOf(widget)},
                {"hint", widget.property("placeholderText").toString()},
                {"read as", widget.accessibleName()},
                {"tip", widget.toolTip()},
                {"told as", widget.accessibleDescription()},
                {"marked", markOf(widget)},
                {"selected", selectedIn(widget)},
                {"colour", inkOf(widget)},
                {"marks", marksOf(widget)}};
  for (const char* const twice : {"read as", "tip", "told as"}) {
    const QString text = plainText(facets[twice]);
    if (text == plainText(facets[""]) || (QString(twice) == "tip" && text == facets["told as"])) {
      facets[twice] = text.isEmpty() ? "" : "the same";
    }
  }
  if (!widget.isEnabled()) facets["off"] = "off";
  if (widget.property("checked").toBool()) facets["ticked"] = "ticked";
  return facets;
}

/// What is said by the part around it already.
bool isPartOfAnother(const QWidget& widget, const QString& text) {
  const QWidget& around = *widget.parentWidget();
  return around.accessibleName().contains(text) || around.objectName() == "imageIdentity";
}

/// Texts and buttons without a name are named by their text.
Parts partsOf(const QWidget& window) {
  Parts parts;
  for (const QWidget* const widget : window.findChildren<QWidget*>()) {
    const QString name = widget->objectName();
    const bool isSeen = widget->window() == &window && widget->isVisibleTo(&window);
    if (!isSeen || name.startsWith("qt_")) continue;
    Facets facets = facetsOf(*widget);
    const QString text = facets[""];
    const bool isText = widget->inherits("QLabel") || widget->inherits("QAbstractButton");
    const bool isGround = !isText && widget->focusPolicy() == Qt::NoFocus && text.isEmpty();
    if (!name.isEmpty()) {
      if (!isGround || !widget->toolTip().isEmpty() || !widget->accessibleName().isEmpty()) {
        parts[name] = std::move(facets);
      }
    } else if (isText && !text.isEmpty() && !isPartOfAnother(*widget, text)) {
      parts['"' + text + '"'] = {{"marks", facets["marks"]}};
    }
  }
  return parts;
}

/// A question in one part: what it says and its buttons, the one of Enter with a star.
Facets facetsOf(const QMessageBox& box) {
  QString text = plainText(box.text());
  if (!box.informativeText().isEmpty()) text += " / " + plainText(box.informativeText());
  for (const QAbstractButton* const button : box.buttons()) {
    text += QString(" [%1%2]").arg(button->text().remove('&'),
                                   button->property("default").toBool() ? "*" : "");
  }
  return {{"", text}};
}

void addMenu(const QMenu& menu, Parts& parts) {
  QStringList entries;
  for (const QAction* const entry : menu.actions()) {
    if (!entry->isVisible()) continue;
    const QMenu* const inner = entry->menu();
    const QString name = inner != nullptr ? inner->objectName() : entry->objectName();
    entries << (entry->isSeparator() ? "-" : name.isEmpty() ? entry->toolTip() : name);
    if (entry->isSeparator()) continue;
    Facets& facets = parts["entry " + entries.back()];
    facets = {{"", entry->text()}, {"key", entry->shortcut().toString()}};
    if (menu.toolTipsVisible()) facets["tip"] = entry->toolTip();
    if (!entry->isEnabled()) facets["off"] = "off";
    if (entry->isChecked()) facets["ticked"] = "ticked";
    if (inner != nullptr) addMenu(*inner, parts);
  }
  parts["menu " + menu.objectName()] = {{"", entries.join(", ")}};
}

/// Without the folder of this run, its times and how long it took.
QString withoutWhatVaries(QString text, const QString& folder) {
  static const QRegularExpression seconds(R"(\d+\.\d(?= s\b|,DATE))");
  static const QRegularExpression date(R"(\d{4}-\d\d-\d\d[ T]\d\d:\d\d(:\d\d)?|\d{8}T\d{6})");
  static const QRegularExpression stamp(R"(\d+:\d\d:\d\d( [AP]M)?>  )");
  static const QRegularExpression digits("([0-9a-f]{8})[0-9a-f]{56}");
  text.replace(folder, "DIR", Qt::CaseInsensitive).replace(digits, "\\1...");
  return text.replace(date, "DATE").replace(seconds, "S").remove(stamp);
}

constexpr qsizetype kLongText = 1'000;

/// A short text, the number of lines of a long one, or how many bytes there are and their sum.
QString contentsOf(const std::filesystem::path& file, const QString& folder) {
  const std::vector<std::uint8_t> bytes = readWholeFile(file, 10'000'000);
  const QByteArray text(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
  const auto isSign = [](char sign) {
    return sign == '\r' || sign == '\n' || (sign >= ' ' && sign <= '~');
  };
  if (std::ranges::all_of(text, isSign)) {
    const bool isLong = text.size() >= kLongText;
    if (isLong && text.contains('\n')) return QString("%1 lines").arg(text.count('\n'));
    if (!isLong) return withoutWhatVaries(text, folder).remove('\r').replace('\n', "\\n");
  }
  std::uint32_t sum = 0;
  for (const char byte : text) sum += static_cast<std::uint8_t>(byte);
  return QString("%1 bytes, sum %2").arg(text.size()).arg(sum, 0, 16);
}

Parts aroundOf(WindowRig& rig) {
  Parts parts;
  for (const auto& file : std::filesystem::recursive_directory_iterator(rig.folder.path())) {
    if (!file.is_regular_file()) continue;
    const auto name = file.path().lexically_relative(rig.folder.path()).string();
    parts["file " + QString::fromStdString(name)][""] =
        contentsOf(file.path(), QString::fromStdString(rig.folder.path()));
  }
  for (const auto& [key, text] : rig.settings.texts) {
    const bool isPlace =
        key.starts_with("Settings/") || key == "Window/Panels" || key == "Window/Splitter";
    if (!isPlace) parts["kept " + QString::fromStdString(key)][""] = QString::fromStdString(text);
  }
  QStringList sounds;
  for (const std::string& sound : rig.sounds.played) sounds << QString::fromStdString(sound);
  parts["sounds"][""] = sounds.join('\n');
  QStringList pages;
  for (const auto& [file, page] : rig.help.shown) {
    pages << QString::fromStdString(file) + (page == HelpPage::Search ? ", search" : "");
  }
  parts["help"][""] = pages.join('\n');
  parts["clipboard"][""] = QApplication::clipboard()->text();
  std::uint32_t sum = 0;
  const sim::Chip* const chip = rig.board().chip();
  if (chip != nullptr) {
    for (const std::uint8_t byte : chip->contents()) sum += byte;
    parts["chip"][""] = QString("%1, sum %2").arg(chip->typeName().data()).arg(sum, 0, 16);
  }
  return parts;
}

/// The new lines of a text that grew, or the first of those that are others and how many they are.
QStringList newLines(const QString& name, const QString& before, const QString& now) {
  const QStringList old = before.split('\n');
  const QStringList lines = now.split('\n');
  const bool hasGrown =
      now.startsWith(before) && (before.isEmpty() || now.at(before.size()) == '\n');
  QStringList changed;
  for (qsizetype i = 0; i < lines.size(); ++i) {
    if (lines[i].isEmpty() || (i < old.size() && old[i] == lines[i])) continue;
    changed << name + (hasGrown ? "> " : ": ") + lines[i];
  }
  if (hasGrown) return changed;
  if (changed.isEmpty()) return {name + ": emptied"};
  return {changed.first() + QString(" (%1 lines)").arg(changed.size())};
}

QString shownFacets(const Facets& facets) {
  QStringList texts;
  for (const auto& [kind, text] : facets) {
    const bool isMark = kind.isEmpty() || kind == "marks" || kind == text || kind == "colour";
    if (!text.isEmpty()) texts << (isMark ? text : kind + " " + text);
  }
  return texts.join(" | ");
}

/// What changed of a part; marks that come and go are gathered for all parts.
void addChanges(const QString& name, Facets before, Facets now, QStringList& lines,
                std::map<QString, QStringList>& gathered) {
  for (const auto& [mark, gone, come] :
       {std::tuple("off", "on", "off"), {"ticked", "unticked", "ticked"}}) {
    if (before.contains(mark) != now.contains(mark))
      gathered[now.contains(mark) ? come : gone] << name;
    now.erase(mark);
  }
  if (now[""].contains('\n') || before[""].contains('\n')) {
    if (now[""] != before[""]) lines << newLines(name, before[""], now[""]);
    now.erase("");
  }
  Facets changed;
  for (const auto& [kind, text] : now) {
    if (text != before[kind]) changed[kind] = text.isEmpty() ? "none" : text;
  }
  if (!changed.empty()) lines << name + ": " + shownFacets(changed);
}

QStringList changesOf(const Parts& before, const Parts& now) {
  QStringList lines;
  std::map<QString, QStringList> gathered;
  for (const auto& [name, facets] : before) {
    if (!now.contains(name)) gathered["gone"] << name;
  }
  for (const auto& [name, facets] : now) {
    const auto old = before.find(name);
    if (old != before.end()) {
      addChanges(name, old->second, facets, lines, gathered);
    } else {
      const QString texts = shownFacets(facets).replace('\n', "\\n");
      lines << "+ " + name + (texts.isEmpty() ? "" : ": " + texts);
    }
  }
  for (const auto& [what, names] : gathered) lines << what + ": " + names.join(", ");
  return lines;
}

void removeWhatVaries(Parts& parts, const QString& folder) {
  Parts kept;
  for (auto& [name, facets] : parts) {
    for (auto& [kind, text] : facets) text = withoutWhatVaries(text, folder);
    kept[withoutWhatVaries(name, folder)] = std::move(facets);
  }
  parts.swap(kept);
}

bool isSeen(const QWidget& window) {
  return window.isVisible() && !window.windowTitle().isEmpty() && window.windowType() != Qt::Popup;
}

Parts partsOfMenus(const QMenuBar& bar) {
  Parts parts;
  for (const QAction* const menu : bar.actions()) {
    addMenu(*menu->menu(), parts);
    if (!menu->isEnabled()) parts["menu " + menu->menu()->objectName()]["off"] = "off";
  }
  return parts;
}

}  // namespace

Look lookAt(WindowRig& rig) {
  Look look{{"", aroundOf(rig)}};
  for (const QWidget* const window : QApplication::topLevelWidgets()) {
    if (!isSeen(*window)) continue;
    const bool isMain = window == &rig.window;
    if (isMain && rig.form.runner().isRunning()) continue;
    const auto* const box = dynamic_cast<const QMessageBox*>(window);
    const auto* const files = dynamic_cast<const QFileDialog*>(window);
    const QString title = window->windowTitle();
    if (box != nullptr) {
      look["question of " + title]["it"] = facetsOf(*box);
      continue;
    }
    if (files != nullptr) {
      look["files for " + title]["they"][""] = files->nameFilters().join("; ");
      continue;
    }
    Parts& parts = look[isMain ? kMainWindow : title];
    parts = partsOf(*window);
    if (!isMain) continue;
    parts["title"][""] =
        window->windowTitle().replace("[*]", window->isWindowModified() ? "*" : "");
    parts.merge(partsOfMenus(*rig.window.menuBar()));
  }
  for (auto& [title, parts] : look) {
    removeWhatVaries(parts, QString::fromStdString(rig.folder.path()));
  }
  return look;
}

QStringList changesFrom(Look before, const Look& now) {
  QStringList lines;
  for (const auto& [title, parts] : before) {
    if (!now.contains(title)) lines << "closed: " + title;
  }
  for (const auto& [title, parts] : now) {
    if (!before.contains(title) && !title.isEmpty()) lines << "opened: " + title;
    lines << changesOf(before[title], parts);
  }
  return lines;
}

}  // namespace kestrel::test
