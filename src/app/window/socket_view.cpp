#include "app/window/socket_view.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

#include "app/window/theme.h"

namespace kestrel::window {
namespace {

constexpr int kRows = devices::kSocketPins / 2;
constexpr double kLeverRows = 1.5;    // height of the lever above the first row
constexpr double kMarginRows = 0.5;   // of the socket, above and below the rows
constexpr double kNameHeight = 0.82;  // of a row
constexpr double kNumbers = 1.6;      // widths, in rows: the numbers beside the socket,
constexpr double kHole = 1.5;         // a hole with its pin,
constexpr double kBody = 7.6;         // the chip with the names on it

bool isLeft(int socketPin) { return socketPin <= kRows; }

/// Rows count from 0, from the lever down.
int rowOf(int socketPin) {
  return isLeft(socketPin) ? socketPin - 1 : devices::kSocketPins - socketPin;
}

bool hasPin(std::uint32_t levels, int socketPin) { return (levels >> (socketPin - 1) & 1U) != 0; }

int namePixels(double row) { return std::max(1, static_cast<int>(row * kNameHeight)); }

}  // namespace

/// Where things are, in pixels.
struct SocketView::Layout {
  double row;
  double left;  // of the socket's body
  double top;   // of its first row
  double width;

  [[nodiscard]] QRectF socket() const {
    return {left, top - kMarginRows * row, width, (kRows + 2 * kMarginRows) * row};
  }
  [[nodiscard]] QRectF hole(int socketPin) const {
    const double x = isLeft(socketPin) ? left : left + width - kHole * row;
    return {x, top + rowOf(socketPin) * row, kHole * row, row};
  }
  [[nodiscard]] QRectF name(int socketPin) const {
    const double half = (width - 2 * kHole * row) / 2;
    const double x = left + kHole * row + (isLeft(socketPin) ? 0 : half);
    return {x, top + rowOf(socketPin) * row, half, row};
  }
  [[nodiscard]] QRectF number(int socketPin) const {
    const double x = isLeft(socketPin) ? left - kNumbers * row : left + width;
    return {x, top + rowOf(socketPin) * row, kNumbers * row, row};
  }
};

SocketView::SocketView(QWidget* parent) : QWidget(parent) {
  setObjectName("socketView");
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize SocketView::sizeHint() const {
  const double row = std::max(9.0, fontMetrics().height() * 0.72);
  return {static_cast<int>((2 * kNumbers + 2 * kHole + kBody) * row),
          static_cast<int>((kLeverRows + kRows + 2 * kMarginRows) * row) + 2};
}

void SocketView::setChip(const devices::ChipPins& pinout, const QString& name) {
  pinout_ = pinout;
  name_ = name;
  const bool isKnown = pinout.count() > 0;
  setAccessibleName("Socket");
  setAccessibleDescription(isKnown
                               ? QString("%1, %2 pins, %3; the lever and pin 1 are up")
                                     .arg(name)
                                     .arg(pinout.count())
                                     .arg(QString::fromStdString(devices::placeInSocket(pinout)))
                               : QString("no chip chosen"));
  setToolTip(
      isKnown
          ? QString("Chip %1: %2").arg(name, QString::fromStdString(devices::placeInSocket(pinout)))
          : QString("Choose a device to see where its chip goes"));
  update();
}

void SocketView::setLevels(const std::optional<SocketLevels>& levels) {
  levels_ = levels;
  update();
}

SocketView::Layout SocketView::layOut() const {
  const double row = std::min((height() - 2) / (kLeverRows + kRows + 2 * kMarginRows),
                              width() / (2 * kNumbers + 2 * kHole + kBody));
  return {.row = row,
          .left = (width() - (2 * kHole + kBody) * row) / 2,
          .top = 1 + (kLeverRows + kMarginRows) * row,
          .width = (2 * kHole + kBody) * row};
}

void SocketView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const Layout place = layOut();
  QFont font = this->font();
  font.setPixelSize(namePixels(place.row));
  painter.setFont(font);
  paintSocket(painter, place);
  if (pinout_.count() > 0) paintChip(painter, place);
}

void SocketView::paintSocket(QPainter& painter, const Layout& place) const {
  const QColor ink = palette().color(QPalette::Disabled, QPalette::WindowText);
  // A dark theme's Mid is darker still than its window.
  const QColor edge = isDark(palette()) ? ink : palette().color(QPalette::Mid);
  const double row = place.row;
  painter.setPen(QPen(edge, 1));
  painter.setBrush(edge);
  painter.drawRoundedRect(
      QRectF(place.left + row * 0.45, 1, row * 0.5, (kLeverRows + kMarginRows) * row), 2, 2);
  painter.setBrush(palette().color(QPalette::Base));
  painter.drawRoundedRect(place.socket(), row / 2, row / 2);
  painter.setBrush(Qt::NoBrush);
  for (int socketPin = 1; socketPin <= devices::kSocketPins; ++socketPin) {
    painter.setPen(QPen(edge, 1));
    const QRectF hole = place.hole(socketPin);
    painter.drawRect(hole.adjusted(row * 0.3, row * 0.28, -row * 0.3, -row * 0.28));
    const bool isCorner = rowOf(socketPin) == 0 || rowOf(socketPin) == kRows - 1;
    if (!isCorner) continue;
    painter.setPen(ink);
    painter.drawText(place.number(socketPin), Qt::AlignCenter, QString::number(socketPin));
  }
}

void SocketView::paintChip(QPainter& painter, const Layout& place) const {
  const double row = place.row;
  const QRectF first = place.name(pinout_.socketPin(1));
  const QRectF last = place.name(pinout_.socketPin(pinout_.count() / 2 + 1));
  const QRectF body = first.united(last);
  const bool dark = isDark(palette());
  painter.setPen(QPen(palette().color(QPalette::WindowText), 1));
  painter.setBrush(dark ? QColor(0x3A, 0x3F, 0x47) : QColor(0xE2, 0xE4, 0xE8));
  QPainterPath notch;
  notch.addEllipse(QPointF(body.center().x(), body.top()), row * 0.7, row * 0.55);
  QPainterPath outline;
  outline.addRoundedRect(body, 2, 2);
  painter.drawPath(outline.subtracted(notch));
  for (int pin = 1; pin <= pinout_.count(); ++pin) paintPin(painter, place, pin);
}

void SocketView::paintPin(QPainter& painter, const Layout& place, int pin) const {
  const int socketPin = pinout_.socketPin(pin);
  const double row = place.row;
  const QColor colour = pinColour(pin);
  const QRectF leg = place.hole(socketPin).adjusted(row * 0.1, row * 0.16, -row * 0.1, -row * 0.16);
  painter.setPen(QPen(palette().color(QPalette::WindowText), 1));
  painter.setBrush(colour.isValid() ? QBrush(colour) : QBrush(palette().color(QPalette::Button)));
  painter.drawRect(leg);
  const bool left = isLeft(socketPin);
  const QString name = QString::fromStdString(pinout_.name(pin));
  QFont font = painter.font();
  const bool isMarked = pin == pinout_.vppPin || pin == 1 || name == "VCC" || name == "GND";
  font.setBold(isMarked);
  font.setPixelSize(namePixels(row));
  const QRectF room = place.name(socketPin).adjusted(row * 0.3, 0, -row * 0.3, 0);
  const double wide = QFontMetricsF(font).horizontalAdvance(name);
  if (wide > room.width()) font.setPixelSize(namePixels(row * room.width() / wide));  // /OE/VPP
  painter.setFont(font);
  painter.setPen(pin == pinout_.vppPin ? inkColour(Colour::Red, palette())
                                       : palette().color(QPalette::WindowText));
  const Qt::Alignment side = left ? Qt::AlignLeft : Qt::AlignRight;
  painter.drawText(room, static_cast<int>(Qt::AlignVCenter | side), name);
}

// Without levels: what a pin is for. With levels: what stands on it.
QColor SocketView::pinColour(int pin) const {
  const int socketPin = pinout_.socketPin(pin);
  const QColor red = groundColour(Colour::Red, palette());
  if (levels_) {
    if (hasPin(levels_->vpp, socketPin)) return red;
    const QColor low = palette().color(QPalette::Base);
    return hasPin(levels_->high, socketPin) ? groundColour(Colour::Green, palette()) : low;
  }
  if (pin == pinout_.vppPin) return amber(palette());
  const QString name = QString::fromStdString(pinout_.name(pin));
  if (name == "VCC") return groundColour(Colour::Green, palette());
  if (name == "GND") return palette().color(QPalette::WindowText);
  return {};
}

}  // namespace kestrel::window
