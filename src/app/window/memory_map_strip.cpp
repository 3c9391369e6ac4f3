#include "app/window/memory_map_strip.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>

#include "app/window/texts.h"
#include "app/window/theme.h"

namespace kestrel::window {
namespace {

constexpr int kColumns = 16;  // pieces in a row
constexpr int kPiece = 3;     // pixels of a piece, each way
constexpr int kFrame = 2;     // around the pieces, for the mark of the shown page

}  // namespace

MemoryMapStrip::MemoryMapStrip(QWidget* parent) : QWidget(parent) {
  setObjectName("memoryMap");
  setAccessibleName("Map of the buffer");
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
  setCursor(Qt::PointingHandCursor);
}

QSize MemoryMapStrip::sizeHint() const { return {kColumns * kPiece + 2 * kFrame, 64}; }

int MemoryMapStrip::rows() const { return std::max(1, (height() - 2 * kFrame) / kPiece); }

std::size_t MemoryMapStrip::pieces() const {
  return std::min(static_cast<std::size_t>(rows() * kColumns), memory_.size());
}

void MemoryMapStrip::setMemory(std::span<const std::uint8_t> memory) {
  if (std::ranges::equal(memory, memory_)) return;
  memory_.assign(memory.begin(), memory.end());
  draw();
}

void MemoryMapStrip::setDifferences(std::vector<display::AddressRange> differences) {
  differences_ = std::move(differences);
  draw();
}

void MemoryMapStrip::setShown(const display::AddressRange& shown) {
  shown_ = shown;
  update();
}

QColor MemoryMapStrip::colourOf(display::CellKind kind) const {
  const bool dark = isDark(palette());
  switch (kind) {
    case display::CellKind::Blank:
      return palette().color(QPalette::Base);
    case display::CellKind::Zero:
      return dark ? QColor(0x70, 0x74, 0x7A) : QColor(0x90, 0x94, 0x9A);
    case display::CellKind::Data:
      break;
  }
  return palette().color(QPalette::Highlight);
}

void MemoryMapStrip::draw() {
  map_ = display::memoryMap(memory_, pieces());
  image_ = QImage(kColumns, rows(), QImage::Format_RGB32);
  image_.fill(palette().color(QPalette::Window));
  const auto paint = [this](std::size_t piece, const QColor& colour) {
    const auto place = static_cast<int>(piece);
    image_.setPixelColor(place % kColumns, place / kColumns, colour);
  };
  for (std::size_t piece = 0; piece < map_.size(); ++piece) paint(piece, colourOf(map_[piece]));
  const QColor red = groundColour(Colour::Red, palette());
  for (const display::AddressRange& range : differences_) {
    if (map_.empty() || range.begin >= std::ssize(memory_)) break;
    const auto pieceOf = [this](std::int32_t address) {
      return static_cast<std::size_t>(address) * map_.size() / memory_.size();
    };
    const std::size_t last = std::min(pieceOf(range.end - 1), map_.size() - 1);
    for (std::size_t piece = pieceOf(range.begin); piece <= last; ++piece) paint(piece, red);
  }
  describe();
  update();
}

// The meaning of the picture for those who hear it.
void MemoryMapStrip::describe() {
  const QString differing =
      differences_.empty() ? QString() : QString("; %1 ranges differ").arg(differences_.size());
  setAccessibleDescription(QString::fromStdString(display::memoryMapText(memory_)) + differing);
}

QRect MemoryMapStrip::frameOfShown() const {
  const auto rowOf = [this](std::int32_t address) {
    const std::size_t piece = static_cast<std::size_t>(address) * map_.size() / memory_.size();
    return static_cast<int>(piece) / kColumns;
  };
  const int first = rowOf(shown_.begin);
  const int last = rowOf(std::max(shown_.begin, shown_.end - 1));
  return {0, kFrame + first * kPiece - 1, width() - 1, (last - first + 1) * kPiece + 1};
}

void MemoryMapStrip::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.drawImage(QRect(kFrame, kFrame, kColumns * kPiece, rows() * kPiece), image_);
  if (map_.empty() || shown_.begin >= std::ssize(memory_)) return;
  painter.setPen(QPen(palette().color(QPalette::WindowText), 1));
  painter.drawRect(frameOfShown());
}

std::size_t MemoryMapStrip::pieceAt(const QPoint& place) const {
  const int column = std::clamp((place.x() - kFrame) / kPiece, 0, kColumns - 1);
  const int row = std::clamp((place.y() - kFrame) / kPiece, 0, rows() - 1);
  return static_cast<std::size_t>(row) * kColumns + static_cast<std::size_t>(column);
}

void MemoryMapStrip::mousePressEvent(QMouseEvent* event) {
  const std::size_t piece = pieceAt(event->position().toPoint());
  if (piece >= map_.size() || !go_) return;
  go_(display::rangeOf(piece, map_.size(), memory_.size()).begin);
}

void MemoryMapStrip::mouseMoveEvent(QMouseEvent* event) { mousePressEvent(event); }

bool MemoryMapStrip::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  const auto& help = static_cast<const QHelpEvent&>(*event);
  const std::size_t piece = pieceAt(help.pos());
  if (piece >= map_.size()) {
    QToolTip::hideText();
    return true;
  }
  const display::AddressRange range = display::rangeOf(piece, map_.size(), memory_.size());
  const char* const what = map_[piece] == display::CellKind::Data   ? "data"
                           : map_[piece] == display::CellKind::Zero ? "all 00h"
                                                                    : "blank";
  QToolTip::showText(
      help.globalPos(),
      QString("%1 to %2: %3").arg(addressText(range.begin), addressText(range.end - 1), what),
      this);
  return true;
}

void MemoryMapStrip::resizeEvent(QResizeEvent*) { draw(); }

}  // namespace kestrel::window
