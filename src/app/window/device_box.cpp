#include "app/window/device_box.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QTimer>
#include <QToolTip>
#include <QWheelEvent>

#include "app/window/texts.h"
#include "app/window/theme.h"
#include "devices/data_sheets.h"
#include "devices/part_marking.h"

namespace kestrel::window {
namespace {

constexpr int kVisibleEntries = 20;
const QString kNotAvailable = QStringLiteral("N/A");

/// The focus goes elsewhere, and not for a menu or for another program that one looks something up
/// in.
bool isLeaving(const QFocusEvent& event) {
  return event.reason() != Qt::PopupFocusReason && event.reason() != Qt::ActiveWindowFocusReason;
}

}  // namespace

DeviceBox::DeviceBox(DropDownList& control, const SelectionState& selected, const Binder& binder,
                     QWidget* parent)
    : QComboBox(parent), control_(control), selected_(selected), binder_(binder) {
  setEditable(true);
  setInsertPolicy(QComboBox::NoInsert);
  setMaxVisibleItems(kVisibleEntries);
  setMinimumContentsLength(24);
  setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  lineEdit()->setPlaceholderText("Type to search, such as 27C256");
  lineEdit()->setAccessibleName("Device");
  lineEdit()->setAcceptDrops(false);  // a file dropped here is for the window
  buildSearch();
  binder.common(control, *this);
  binder.mirror().bind(control, *this, [this] { show(); });
  connect(lineEdit(), &QLineEdit::textEdited, this,
          [this](const QString& text) { setTyping(text != textInForce()); });
  // The list that the choice was made in closes first: a command must not run under an open popup.
  connect(
      this, &QComboBox::activated, this, [this](int position) { choose(position); },
      Qt::QueuedConnection);
}

void DeviceBox::buildSearch() {
  auto* const search = new QCompleter(model(), this);
  search->setCaseSensitivity(Qt::CaseInsensitive);
  search->setFilterMode(Qt::MatchContains);
  search->setCompletionMode(QCompleter::PopupCompletion);
  search->setMaxVisibleItems(kVisibleEntries);
  setCompleter(search);
}

void DeviceBox::show() {
  const QSignalBlocker quiet(this);
  showItems();
  setCurrentIndex(control_.position());
  const QString shown = textInForce();
  if (lineEdit()->text() != shown) lineEdit()->setText(shown);
  lineEdit()->setCursorPosition(0);
  if (hasFocus()) lineEdit()->selectAll();  // the next name replaces this one
  setTyping(false);
}

// A refused choice leaves no entry selected and the device before it in force.
QString DeviceBox::textInForce() const {
  if (control_.position() != -1 || selected_.DeviceName.empty()) return toQString(control_.text());
  return toQString(selected_.DeviceName);
}

void DeviceBox::setTyping(bool isTyping) {
  QPalette own = lineEdit()->palette();
  own.setColor(QPalette::Text,
               isTyping ? inkColour(Colour::Red, palette()) : palette().color(QPalette::Text));
  lineEdit()->setPalette(own);
  if (isTyping_ == isTyping) return;
  isTyping_ = isTyping;
  if (typingChanged_) typingChanged_(isTyping);
}

void DeviceBox::showItems() {
  const auto isShown = [this](int position, const std::string& item) {
    return itemText(position) == toQString(item);
  };
  const auto size = static_cast<int>(control_.items().size());
  bool areShown = count() == size;
  for (int i = 0; areShown && i < size; ++i) {
    areShown = isShown(i, control_.items()[static_cast<std::size_t>(i)]);
  }
  if (areShown) return;
  clear();
  for (const std::string& item : control_.items()) addItem(toQString(item));
  greyUnavailable();
}

void DeviceBox::greyUnavailable() {
  const QColor grey = palette().color(QPalette::Disabled, QPalette::Text);
  for (int position = 0; position < count(); ++position) {
    if (itemText(position).startsWith(kNotAvailable)) {
      setItemData(position, grey, Qt::ForegroundRole);
      setItemData(position, "Not available with this program", Qt::ToolTipRole);
    }
  }
}

void DeviceBox::choose(int position) {
  const QString chosen = itemText(position).trimmed();
  const bool available = isAvailable(position);
  (void)binder_.runner().run([this, position] { control_.setPosition(position); });
  binder_.mirror().touch(control_);
  if (available) return;
  const std::string name = chosen.mid(kNotAvailable.size() + 3).trimmed().toStdString();
  const bool hasDataSheet = devices::isOffered(devices::dataSheetOf(name));
  showHint(chosen +
           (hasDataSheet ? ": with the data sheet algorithms only; see Options."
                         : ": not with this program.") +
           (selected_.DeviceName.empty()
                ? QString()
                : '\n' + toQString(selected_.DeviceName) + " stays selected."));
}

void DeviceBox::showHint(const QString& text) {
  QToolTip::showText(mapToGlobal(QPoint(0, height())), text, this);
}

bool DeviceBox::isAvailable(int position) const {
  return !itemText(position).startsWith(kNotAvailable);
}

/// An available entry before the others; -1 if none fits.
int DeviceBox::firstThat(const std::function<bool(const QString& name)>& fits) const {
  int match = -1;
  for (int position = 0; position < count(); ++position) {
    if (!fits(itemText(position))) continue;
    if (isAvailable(position)) return position;
    if (match == -1) match = position;
  }
  return match;
}

// The name itself, what is printed on the chip, and at last any name that has the text in it.
int DeviceBox::bestMatch(const QString& typed) const {
  if (typed.isEmpty()) return -1;
  int match = firstThat([&](const QString& name) {
    return name.trimmed().compare(typed, Qt::CaseInsensitive) == 0 ||
           name.trimmed().endsWith(' ' + typed, Qt::CaseInsensitive) ||
           name.split(' ').contains(typed, Qt::CaseInsensitive);
  });
  for (const std::string& part : devices::partNames(typed.toStdString())) {
    if (match != -1) return match;
    match =
        firstThat([&](const QString& name) { return devices::hasPart(name.toStdString(), part); });
  }
  if (match != -1) return match;
  return firstThat([&](const QString& name) { return name.contains(typed, Qt::CaseInsensitive); });
}

void DeviceBox::takeTypedText() {
  const QString typed = lineEdit()->text().trimmed();
  const int match = bestMatch(typed);
  if (match != -1) {
    choose(match);
  } else if (typed.isEmpty()) {
    binder_.mirror().touch(control_);
  } else {
    lineEdit()->selectAll();
    showHint("No device of this name");
  }
}

// The line in it has no focus of its own.
void DeviceBox::focusInEvent(QFocusEvent* event) {
  QComboBox::focusInEvent(event);
  QTimer::singleShot(0, lineEdit(), [this] {
    if (!isTyping_) lineEdit()->selectAll();
  });
}

void DeviceBox::focusOutEvent(QFocusEvent* event) {
  QComboBox::focusOutEvent(event);
  if (isLeaving(*event)) binder_.mirror().touch(control_);  // what was not chosen goes
}

// The arrows open the list instead of choosing the next device at once: passing over an entry must
// not select it.
void DeviceBox::keyPressEvent(QKeyEvent* event) {
  QAbstractItemView* const matches = completer()->popup();
  const bool isSearching = matches->isVisible();
  switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
      showPopup();
      return;
    case Qt::Key_Alt:
      // The letter that follows is for the menus or a step: they hear nothing behind an open list.
      matches->hide();
      return;
    case Qt::Key_Space:
      // No name begins with one: the second of two presses that were meant for a button.
      if (isTyping_) QComboBox::keyPressEvent(event);
      return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (isSearching && matches->currentIndex().isValid()) {
        event->ignore();  // the search takes it
        return;
      }
      matches->hide();
      takeTypedText();
      return;
    case Qt::Key_Escape:
      if (isSearching) event->ignore();
      binder_.mirror().touch(control_);
      return;
    default:
      if (event->modifiers().testFlag(Qt::AltModifier)) return event->ignore();
      QComboBox::keyPressEvent(event);
  }
}

void DeviceBox::wheelEvent(QWheelEvent* event) { event->ignore(); }

void DeviceBox::changeEvent(QEvent* event) {
  QComboBox::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) greyUnavailable();
}

}  // namespace kestrel::window
