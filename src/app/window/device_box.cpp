#include "app/window/device_box.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QTimer>
#include <QWheelEvent>

#include "app/window/theme.h"

namespace kestrel::window {
namespace {

constexpr int kVisibleEntries = 20;
const QString kNotAvailable = QStringLiteral("N/A");

}  // namespace

DeviceBox::DeviceBox(DropDownList& control, const Binder& binder, QWidget* parent)
    : QComboBox(parent), control_(control), binder_(binder) {
  setEditable(true);
  setInsertPolicy(QComboBox::NoInsert);
  setMaxVisibleItems(kVisibleEntries);
  setMinimumContentsLength(24);
  setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  lineEdit()->setPlaceholderText("Type to search, such as 27C256");
  lineEdit()->setAccessibleName("Device");
  lineEdit()->setAcceptDrops(false);  // a file dropped here is for the window
  lineEdit()->installEventFilter(this);
  buildSearch();
  binder.common(control, *this);
  binder.mirror().bind(control, [this] { show(); });
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
  const QString shown = toQString(control_.text());
  if (lineEdit()->text() != shown) lineEdit()->setText(shown);
  lineEdit()->setCursorPosition(0);
}

void DeviceBox::showItems() {
  if (count() == static_cast<int>(control_.items().size())) return;
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
  (void)binder_.runner().run([this, position] { control_.setPosition(position); });
  binder_.mirror().touch(control_);
}

// Enter on a text that is no entry takes the best match: an available one before the others.
void DeviceBox::takeTypedText() {
  const QString typed = lineEdit()->text().trimmed();
  int match = -1;
  for (int position = 0; position < count() && !typed.isEmpty(); ++position) {
    if (!itemText(position).contains(typed, Qt::CaseInsensitive)) continue;
    const bool available = !itemText(position).startsWith(kNotAvailable);
    if (match == -1 || available) match = position;
    if (available) break;
  }
  if (match != -1) {
    choose(match);
  } else {
    binder_.mirror().touch(control_);
  }
}

bool DeviceBox::eventFilter(QObject* receiver, QEvent* event) {
  if (event->type() == QEvent::FocusIn) {
    QTimer::singleShot(0, lineEdit(), [this] { lineEdit()->selectAll(); });
  } else if (event->type() == QEvent::FocusOut && !completer()->popup()->isVisible()) {
    binder_.mirror().touch(control_);  // what was typed and not chosen goes
  }
  return QComboBox::eventFilter(receiver, event);
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
      QComboBox::keyPressEvent(event);
  }
}

void DeviceBox::wheelEvent(QWheelEvent* event) { event->ignore(); }

void DeviceBox::changeEvent(QEvent* event) {
  QComboBox::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) greyUnavailable();
}

}  // namespace kestrel::window
