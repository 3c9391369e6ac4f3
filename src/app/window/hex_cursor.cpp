#include "app/window/hex_cursor.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QTextBlock>
#include <algorithm>
#include <utility>

#include "app/state/programmer_state.h"
#include "display/hex_line.h"

namespace kestrel::window {
namespace {

using display::kLineBytes;
using display::kPageBytes;

constexpr int kGroupBytes = 4;
constexpr int kHexColumn = 8;    // the first byte of a line
constexpr int kTextColumn = 46;  // its first character
constexpr int kHex = 16;

/// -1 for what is none.
int digitOf(QChar character) {
  bool isDigit = false;
  const int value = QString(character).toInt(&isDigit, kHex);
  return isDigit ? value : -1;
}

bool isPlain(const QKeyEvent& event) {
  return (event.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) == Qt::NoModifier;
}

}  // namespace

HexPlace HexPlace::of(std::int32_t inPage) {
  const int inLine = inPage % kLineBytes;
  return {.line = 1 + inPage / kLineBytes,
          .digits = kHexColumn + 2 * inLine + inLine / kGroupBytes,
          .text = kTextColumn + inLine};
}

HexCursor::HexCursor(QPlainTextEdit& view, Page page, ByteAt byteAt)
    : QObject(&view), view_(view), page_(std::move(page)), byteAt_(std::move(byteAt)) {
  view.setCursorWidth(0);  // the view's own would stand somewhere else
  view.installEventFilter(this);
  view.viewport()->installEventFilter(this);
}

void HexCursor::setAddress(std::int32_t address) {
  address_ = std::clamp(address, 0, std::max(page_.size() - 1, 0));
  isSecondDigit_ = false;
  if (page_.number() != address_ / kPageBytes) page_.turn(address_ / kPageBytes);
  page_.show();
}

void HexCursor::followPage() {
  const std::int32_t there = page_.number() * kPageBytes + address_ % kPageBytes;
  if (there == address_) return;
  address_ = there;
  isSecondDigit_ = false;
}

void HexCursor::mark(QList<QTextEdit::ExtraSelection>& marks, int line, int column, int length,
                     const QTextCharFormat& format) const {
  const QTextBlock block = view_.document()->findBlockByNumber(line);
  if (!block.isValid() || block.length() <= column + length) return;
  QTextCursor cursor(block);
  cursor.setPosition(block.position() + column);
  cursor.setPosition(block.position() + column + length, QTextCursor::KeepAnchor);
  marks.append({cursor, format});
}

// A block under the digit that comes next, a weaker one under the rest of its byte.
QList<QTextEdit::ExtraSelection> HexCursor::marks() const {
  QList<QTextEdit::ExtraSelection> marks;
  const bool hasKeyboard = view_.hasFocus();
  if (!page_.isCode() || address_ >= page_.size() || (!hasKeyboard && !wasUsed_)) return marks;
  const HexPlace place = HexPlace::of(address_ % kPageBytes);
  const QPalette& colours = view_.palette();
  QTextCharFormat weak;
  weak.setBackground(colours.color(QPalette::Mid));
  weak.setForeground(colours.color(QPalette::Text));
  QTextCharFormat strong;
  strong.setBackground(colours.color(QPalette::Text));
  strong.setForeground(colours.color(QPalette::Base));
  mark(marks, place.line, place.digits, 2, weak);
  mark(marks, place.line, place.text, 1, weak);
  if (!hasKeyboard) return marks;
  if (side_ == Side::Text) {
    mark(marks, place.line, place.text, 1, strong);
  } else {
    mark(marks, place.line, place.digits + (isSecondDigit_ ? 1 : 0), 1, strong);
  }
  return marks;
}

void HexCursor::moveBy(std::int32_t bytes) {
  const std::int32_t to = address_ + bytes;
  if (to < 0 || to >= page_.size()) return;
  setAddress(to);
}

// By digits on the one side, by characters on the other.
void HexCursor::step(int direction) {
  const bool isInside = side_ == Side::Digits && isSecondDigit_ == (direction < 0);
  const std::int32_t before = address_;
  if (isInside) {
    isSecondDigit_ = !isSecondDigit_;
  } else {
    moveBy(direction);
    isSecondDigit_ = side_ == Side::Digits && direction < 0 && address_ != before;
  }
  page_.show();
}

bool HexCursor::moves(int key) {
  switch (key) {
    case Qt::Key_Left:
    case Qt::Key_Backspace:
      step(-1);
      return true;
    case Qt::Key_Right:
      step(1);
      return true;
    case Qt::Key_Up:
      moveBy(-kLineBytes);
      return true;
    case Qt::Key_Down:
      moveBy(kLineBytes);
      return true;
    default:
      return false;
  }
}

// From the side that Tab leads to it goes on to the next widget, as everywhere.
bool HexCursor::changesSide(int key) {
  const Side from = key == Qt::Key_Tab ? Side::Digits : Side::Text;
  if ((key != Qt::Key_Tab && key != Qt::Key_Backtab) || side_ != from) return false;
  side_ = from == Side::Digits ? Side::Text : Side::Digits;
  isSecondDigit_ = false;
  page_.show();
  return true;
}

bool HexCursor::types(const QString& text) {
  if (text.size() != 1 || !text[0].isPrint()) return false;
  if (side_ == Side::Text) {
    const char character = text[0].toLatin1();
    if (character < ' ' || character > '~') return true;
    put(static_cast<std::uint8_t>(character), false);
    moveBy(1);
    return true;
  }
  const int digit = digitOf(text[0]);
  if (digit >= 0) typeDigit(digit);
  return true;
}

void HexCursor::typeDigit(int digit) {
  const unsigned before = byteAt_(address_);
  const auto typed = static_cast<unsigned>(digit);
  if (isSecondDigit_) {
    put(static_cast<std::uint8_t>((before & 0xF0U) | typed), true);
    isSecondDigit_ = false;
    moveBy(1);
  } else {
    put(static_cast<std::uint8_t>((typed << 4U) | (before & 0x0FU)), false);
    isSecondDigit_ = true;
  }
  page_.show();
}

void HexCursor::put(std::uint8_t value, bool goesOn) {
  if (type_) type_(address_, value, goesOn);
}

bool HexCursor::takesKey(const QKeyEvent& event) {
  if (!isPlain(event) || !page_.isCode() || address_ >= page_.size()) return false;
  wasUsed_ = true;
  const bool isShifted = event.modifiers().testFlag(Qt::ShiftModifier);
  if (changesSide(event.key())) return true;
  if (!isShifted && moves(event.key())) return true;
  if (event.key() == Qt::Key_Delete) {
    put(kErased, false);
    moveBy(1);
    return true;
  }
  return types(event.text());
}

void HexCursor::clickAt(const QPoint& place) {
  const QTextCursor cursor = view_.cursorForPosition(place);
  const int line = cursor.blockNumber();
  const int column = cursor.positionInBlock();
  if (view_.textCursor().hasSelection() || !page_.isCode()) return;
  const bool isText = column >= kTextColumn;
  for (int inLine = 0; inLine < kLineBytes; ++inLine) {
    const HexPlace byte = HexPlace::of(std::max(line - 1, 0) * kLineBytes + inLine);
    const bool isHere =
        isText ? column == byte.text : column >= byte.digits && column <= byte.digits + 2;
    if (line != byte.line || !isHere) continue;
    const std::int32_t address = page_.number() * kPageBytes + (line - 1) * kLineBytes + inLine;
    if (address >= page_.size()) return;
    side_ = isText ? Side::Text : Side::Digits;
    wasUsed_ = true;
    setAddress(address);
    return;
  }
}

bool HexCursor::eventFilter(QObject* receiver, QEvent* event) {
  switch (event->type()) {
    case QEvent::KeyPress:
      return receiver == &view_ && takesKey(*static_cast<QKeyEvent*>(event));
    case QEvent::ShortcutOverride: {
      // Undo and redo are the buffer's: the text view would take the keys for its own.
      const auto& key = *static_cast<QKeyEvent*>(event);
      const bool isUndo = key.key() == Qt::Key_Z && key.modifiers().testFlag(Qt::ControlModifier);
      if (isUndo) event->ignore();
      return isUndo;
    }
    case QEvent::FocusIn:
    case QEvent::FocusOut:
      if (receiver == &view_) QMetaObject::invokeMethod(this, [this] { page_.show(); });
      return false;
    case QEvent::MouseButtonRelease:
      if (receiver == view_.viewport()) {
        clickAt(static_cast<QMouseEvent*>(event)->position().toPoint());
      }
      return false;
    default:
      return false;
  }
}

}  // namespace kestrel::window
