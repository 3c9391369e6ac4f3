#include "app/window/display_panel.h"

#include <QApplication>
#include <QClipboard>
#include <QEvent>
#include <QFontMetricsF>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollBar>
#include <QTextBlock>
#include <QToolTip>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <utility>

#include "app/window/elided_label.h"
#include "app/window/hex_cursor.h"
#include "app/window/memory_map_strip.h"
#include "app/window/range_reporter.h"
#include "app/window/texts.h"
#include "app/window/theme.h"
#include "display/byte_search.h"
#include "display/hex_line.h"
#include "platform/runtime_error.h"

namespace kestrel::window {
namespace {

using display::kPageBytes;
constexpr int kCompareRestMs = 400;
constexpr int kAddressDigits = 6;
constexpr QLatin1StringView kColumnHeads(
    "        00010203 04050607 08090A0B 0C0D0E0F   0123456789ABCDEF");
constexpr int kPageColumns = 62;        // address, four groups of eight digits, sixteen characters
constexpr double kSmallestFont = 0.65;  // of the desktop's fixed font
constexpr double kLargestFont = 1.8;

QFont scaledFixedFont(double scale) {
  QFont font = fixedFont();
  const double halfPoints = std::floor(font.pointSizeF() * scale * 2.0);
  font.setPointSizeF(halfPoints / 2.0);
  return font;
}

}  // namespace

QSize hexPageSize(const QPlainTextEdit& view, const QFont& font, int lines) {
  const QFontMetricsF metrics(font);
  const double margins = 2 * view.document()->documentMargin() + 2 * view.frameWidth();
  // A line of text is laid out with ascent and descent rounded up each for itself.
  const double lineHeight =
      std::max(std::ceil(metrics.ascent()) + std::ceil(metrics.descent()) + metrics.leading(),
               std::ceil(metrics.lineSpacing()));
  return {static_cast<int>(std::ceil(kPageColumns * metrics.horizontalAdvance('0') + margins + 2)),
          static_cast<int>(std::ceil(lines * lineHeight + margins + 2))};
}

DisplayPanel::DisplayPanel(Controls& controls, const SelectionState& device,
                           const BufferState& buffers, const Binder& binder, QWidget* parent)
    : QWidget(parent), controls_(controls), device_(device), buffers_(buffers), binder_(binder) {
  compares_.setSingleShot(true);
  compares_.setInterval(kCompareRestMs);
  connect(&compares_, &QTimer::timeout, this, [this] { compareAgain(); });
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 8, 0);
  column->setSizeConstraint(QLayout::SetMinAndMaxSize);
  buildHeader(*column);
  buildPage(*column);
  find_ = new BufferFind(buffers, device, this);
  find_->onFound([this](std::int32_t address, std::int32_t count) { showAddress(address, count); });
  find_->onClosed([this] { page_->setFocus(); });
  column->addWidget(find_);
  differences_ = new DifferenceBar(this);
  differences_->onShow(
      [this](std::int32_t first, std::int32_t count) { showAddress(first, count); });
  differences_->onClosed([this] {
    map_->setDifferences({});
    showAddress(marked_.begin, 0);
  });
  column->addWidget(differences_);
  setFocusProxy(page_);
  binder.common(controls.Frame3, *this);
}

void DisplayPanel::buildHeader(QBoxLayout& column) {
  header_ = new QWidget(this);
  auto* const row = new QHBoxLayout(header_);
  row->setContentsMargins(0, 0, 0, 0);
  column.addWidget(header_);
  auto* const title = new ElidedLabel(Qt::ElideRight, header_);
  QFont bold = title->font();
  bold.setBold(true);
  title->setFont(bold);
  title->setObjectName("displayTitle");
  binder_.mirror().bind(controls_.Frame3, *title,
                        [this, title] { title->setText(toQString(controls_.Frame3.caption())); });
  auto* const show = new QPushButton(header_);
  binder_.button(controls_.Show_button, *show);
  show->setToolTip("Switch to the other buffer");
  auto* const second = new QPushButton(header_);
  binder_.button(controls_.Command1, *second);
  second->setToolTip("Draw the first page of the code buffer in a window of its own");
  row->addWidget(title, 1);
  row->addWidget(show);
  row->addWidget(second);
}

void DisplayPanel::buildPage(QBoxLayout& column) {
  auto* const row = new QHBoxLayout;
  row->setSpacing(0);
  column.addLayout(row, 1);
  page_ = new QPlainTextEdit(this);
  map_ = new MemoryMapStrip(this);
  page_->setReadOnly(true);
  page_->setUndoRedoEnabled(false);
  page_->setLineWrapMode(QPlainTextEdit::NoWrap);
  page_->setFont(fixedFont());
  page_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  page_->setMinimumSize(hexPageSize(*page_, scaledFixedFont(kSmallestFont), kPageLines));
  page_->setMaximumHeight(hexPageSize(*page_, scaledFixedFont(kLargestFont), kPageLines).height());
  page_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  page_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  page_->setAccessibleName("Hex display");
  page_->setToolTip("Double click saves the display to KESTREL.BUF");
  page_->installEventFilter(this);
  page_->viewport()->installEventFilter(this);
  binder_.common(controls_.BufferDisplay, *page_);
  binder_.mirror().bind(controls_.BufferDisplay, *page_, [this] { showPage(); });
  row->addWidget(page_, 1);
  buildScrollBar(*row);
  map_->onAddress([this](std::int32_t address) {
    if (!binder_.runner().isRunning()) showAddress(address, 0);
  });
  row->addSpacing(2);
  row->addWidget(map_);
}

void DisplayPanel::buildScrollBar(QBoxLayout& row) {
  constexpr int kLargeStep = 16;
  auto* const bar = new QScrollBar(Qt::Vertical, this);
  bar->setSingleStep(1);
  bar->setPageStep(kLargeStep);
  bar->setAccessibleName("Page of the display");
  scroll_ = new RangeReporter(controls_.VScroll1, *bar, binder_);
  QObject::connect(bar, &QScrollBar::sliderMoved, bar, [bar](int pageNumber) {
    const QString address = toQString(hexText(pageNumber * kPageBytes, 6));
    QToolTip::showText(QCursor::pos(), address, bar);
  });
  row.addWidget(bar);
}

void DisplayPanel::showPage() {
  QString shown = toQString(controls_.BufferDisplay.text());
  shown.remove('\r');
  // A page begins with an empty line: the heads of the columns stand there.
  if (shown.startsWith('\n')) shown.prepend(kColumnHeads);
  page_->setPlainText(shown);
  const std::int32_t begin = controls_.VScroll1.value() * kPageBytes;
  map_->setShown({.begin = begin, .end = begin + kPageBytes});
  if (cursor_ != nullptr) cursor_->followPage();
  showMarks();
}

// The find line goes before, while it is open.
void DisplayPanel::goOn() {
  const bool isComparing = differences_->isVisible() && differences_->hasDifferences();
  isComparing && !find_->isVisible() ? differences_->next() : find_->findNext();
}

void DisplayPanel::showComparison(images::Bytes other, const QString& otherName,
                                  std::function<images::Bytes()> image) {
  image_ = std::move(image);
  differences_->setComparison(image_(), std::move(other), otherName);
  markDifferences();
}

void DisplayPanel::compareSoon() {
  if (differences_->isVisible()) compares_.start();
}

void DisplayPanel::compareAgain() {
  if (!differences_->isVisible() || binder_.runner().isRunning()) return;
  if (differences_->setImage(image_())) markDifferences();
}

void DisplayPanel::markDifferences() {
  std::vector<display::AddressRange> ranges;
  for (const images::Range& range : differences_->comparison().ranges) {
    ranges.push_back({.begin = static_cast<std::int32_t>(range.first),
                      .end = static_cast<std::int32_t>(range.last) + 1});
  }
  map_->setDifferences(std::move(ranges));
}

void DisplayPanel::showMap() {
  const std::int32_t device = device_.DeviceSizeBytes;
  const auto length = static_cast<std::size_t>(device > 0 ? device : buffers_.CodeLength);
  map_->setMemory(std::span(buffers_.CodeBuffer).first(length));
}

// The heads in grey, the bytes that were looked for in the colour of a selection.
void DisplayPanel::showMarks() {
  QList<QTextEdit::ExtraSelection> marks;
  const auto mark = [&](int line, int column, int length, const QTextCharFormat& format) {
    const QTextBlock block = page_->document()->findBlockByNumber(line);
    if (!block.isValid() || block.length() <= column + length) return;
    QTextCursor cursor(block);
    cursor.setPosition(block.position() + column);
    cursor.setPosition(block.position() + column + length, QTextCursor::KeepAnchor);
    marks.append({cursor, format});
  };
  QTextCharFormat heads;
  heads.setForeground(palette().color(QPalette::Disabled, QPalette::Text));
  if (page_->toPlainText().startsWith(kColumnHeads)) {
    mark(0, 0, static_cast<int>(kColumnHeads.size()), heads);
  }
  QTextCharFormat found;
  found.setBackground(palette().color(QPalette::Highlight));
  found.setForeground(palette().color(QPalette::HighlightedText));
  const std::int32_t begin = controls_.VScroll1.value() * kPageBytes;
  const std::int32_t last = std::min(marked_.end, begin + kPageBytes);
  for (std::int32_t address = std::max(marked_.begin, begin); address < last; ++address) {
    const HexPlace place = HexPlace::of(address - begin);
    mark(place.line, place.digits, 2, found);
    mark(place.line, place.text, 1, found);
  }
  if (cursor_ != nullptr) marks += cursor_->marks();
  page_->setExtraSelections(marks);
}

void DisplayPanel::copyAddressAt(const QPoint& place) {
  const QTextCursor cursor = page_->cursorForPosition(place);
  const QString address = cursor.block().text().left(kAddressDigits);
  if (cursor.positionInBlock() >= kAddressDigits || page_->textCursor().hasSelection()) return;
  bool isAddress = false;
  (void)address.toInt(&isAddress, 16);
  if (!isAddress) return;
  QApplication::clipboard()->setText(address);
  QToolTip::showText(page_->viewport()->mapToGlobal(place), address + " copied", page_);
}

void DisplayPanel::askForAddress() {
  const int last = (scroll_->slider().maximum() + 1) * kPageBytes - 1;
  bool isAccepted = false;
  const QString typed = QInputDialog::getText(
      window(), "Go to Address", "Address, hexadecimal, up to " + addressText(last) + ":",
      QLineEdit::Normal, QString(), &isAccepted);
  if (!isAccepted || typed.trimmed().isEmpty()) return;
  const auto address = display::addressOf(typed.toStdString());
  if (address && *address <= last) {
    showAddress(*address);
  } else {
    QMessageBox::warning(
        window(), "Kestrel",
        "Address " + onOneLine(typed) + " is none of those up to " + addressText(last) + ".");
  }
}

bool DisplayPanel::turnPage(int key) {
  const QAbstractSlider& bar = scroll_->slider();
  switch (key) {
    case Qt::Key_PageUp:
      scroll_->goTo(bar.value() - 1);
      return true;
    case Qt::Key_PageDown:
      scroll_->goTo(bar.value() + 1);
      return true;
    case Qt::Key_Home:
      scroll_->goTo(bar.minimum());
      return true;
    case Qt::Key_End:
      scroll_->goTo(bar.maximum());
      return true;
    default:
      return false;
  }
}

void DisplayPanel::showAddress(std::int32_t address, std::int32_t count) {
  marked_ = {.begin = address, .end = address + count};
  if (address / kPageBytes != controls_.VScroll1.value()) scroll_->goTo(address / kPageBytes);
  binder_.mirror().refresh();
  if (cursor_ != nullptr) cursor_->setAddress(address);
  showMarks();
}

void DisplayPanel::letType(std::function<bool()> isCodeOnView, std::function<std::int32_t()> size,
                           std::function<void(std::int32_t, std::uint8_t, bool)> type) {
  HexCursor::Page page;
  page.isCode = std::move(isCodeOnView);
  page.size = [this, size = std::move(size)] {
    const std::int32_t shown = (std::max(controls_.VScroll1.maximum(), 0) + 1) * kPageBytes;
    return std::min(size(), shown);
  };
  page.number = [this] { return controls_.VScroll1.value(); };
  page.turn = [this](std::int32_t number) {
    scroll_->goTo(number);
    binder_.mirror().refresh();
  };
  page.show = [this] { showMarks(); };
  cursor_ = new HexCursor(*page_, std::move(page), [this](std::int32_t address) {
    return at(buffers_.CodeBuffer, address);
  });
  cursor_->onType(std::move(type));
}

// The page is shown whole, in letters as large as the window lets them be.
void DisplayPanel::fitFont() {
  const QSize needed = hexPageSize(*page_, fixedFont(), kPageLines);
  const double scale =
      std::min(double(page_->width()) / needed.width(), double(page_->height()) / needed.height());
  const QFont font = scaledFixedFont(std::clamp(scale, kSmallestFont, kLargestFont));
  if (font != page_->font()) page_->setFont(font);
}

QSize DisplayPanel::sizeHint() const {
  const QSize page = hexPageSize(*page_, fixedFont(), kPageLines);
  return {page.width() + scroll_->slider().sizeHint().width(),
          page.height() + minimumSizeHint().height() - page_->minimumHeight()};
}

bool DisplayPanel::isDrawing() const { return scroll_->isReporting(); }

void DisplayPanel::setCommandsOff(bool off) {
  header_->setEnabled(!off);
  scroll_->slider().setEnabled(!off && controls_.VScroll1.enabled());
}

bool DisplayPanel::eventFilter(QObject* receiver, QEvent* event) {
  switch (event->type()) {
    case QEvent::KeyPress:
      return turnPage(static_cast<QKeyEvent*>(event)->key());
    case QEvent::Wheel:
      scroll_->turnWheel(static_cast<QWheelEvent*>(event)->angleDelta().y());
      return true;
    case QEvent::MouseButtonDblClick:
      if (receiver != page_->viewport()) return false;
      binder_.press(controls_.BufferDisplay_DblClick);
      return true;
    case QEvent::MouseButtonRelease:
      if (receiver == page_->viewport()) {
        copyAddressAt(static_cast<QMouseEvent*>(event)->position().toPoint());
      }
      return false;
    case QEvent::Resize:
      if (receiver == page_) fitFont();
      return false;
    default:
      return false;
  }
}

}  // namespace kestrel::window
