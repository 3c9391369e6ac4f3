#include "app/window/lamp.h"

#include <QAccessible>
#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>

#include "app/window/texts.h"
#include "app/window/theme.h"

namespace kestrel::window {
namespace {

constexpr int kPadding = 10;

struct Pill {
  QRect place;
  QString text;
  QColor ground;  // invalid: an outline
  bool focus = false;
};

QFont pillFont(const QWidget& widget) {
  QFont font = widget.font();
  font.setBold(true);
  return font;
}

QSize pillSize(const QWidget& widget, const QString& text) {
  const QFontMetrics metrics(pillFont(widget));
  return {metrics.horizontalAdvance(text) + 2 * kPadding, metrics.height() + kPadding};
}

void paintPill(QWidget& widget, const Pill& pill) {
  QPainter painter(&widget);
  painter.setRenderHint(QPainter::Antialiasing);
  const QPalette& palette = widget.palette();
  const QRectF body = QRectF(pill.place).adjusted(1, 1, -1, -1);
  const bool lit = pill.ground.isValid();
  QColor line = palette.color(QPalette::Mid);
  if (lit) line = pill.ground.darker(130);
  painter.setPen(QPen(line, 1));
  painter.setBrush(lit ? QBrush(pill.ground) : QBrush(Qt::NoBrush));
  painter.drawRoundedRect(body, 5, 5);
  if (pill.focus) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Qt::white, 1, Qt::DotLine));
    painter.drawRoundedRect(body.adjusted(3, 3, -3, -3), 3, 3);
  }
  painter.setFont(pillFont(widget));
  painter.setPen(lit ? QColor(Qt::white) : palette.color(QPalette::Disabled, QPalette::WindowText));
  painter.drawText(pill.place, Qt::AlignCenter, pill.text);
}

}  // namespace

Lamp::Lamp(QWidget* parent) : QWidget(parent) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void Lamp::setCaption(const QString& caption) {
  if (caption == caption_) return;
  caption_ = caption;
  setAccessibleName(caption);
  updateGeometry();
  repaint();
}

// A lamp change is seen at once, also between two turns of the event loop.
void Lamp::setGround(const QColor& ground) {
  if (ground == ground_) return;
  ground_ = ground;
  setAccessibleDescription(ground.isValid() ? "on" : "off");
  repaint();
}

void Lamp::setWidestCaption(const QString& caption) {
  widest_ = caption;
  updateGeometry();
}

QSize Lamp::sizeHint() const {
  return pillSize(*this, caption_).expandedTo(pillSize(*this, widest_));
}

void Lamp::paintEvent(QPaintEvent*) {
  paintPill(*this, {.place = rect(), .text = caption_, .ground = ground_});
}

void bindLamp(const Control& control, Lamp& lamp, const Binder& binder, const LampTips& tips) {
  binder.common(control, lamp);
  binder.mirror().bind(control, lamp, [&control, &lamp, tips] {
    lamp.setCaption(toQString(control.caption()));
    const bool lit = control.colour() != Colour::ButtonFace;
    lamp.setGround(lit ? groundColour(control.colour(), lamp.palette()) : QColor());
    lamp.setToolTip(lit ? tips.lit : tips.unlit);
  });
}

ErrorLamp::ErrorLamp(Button& control, const Binder& binder, QWidget* parent) : QPushButton(parent) {
  setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
  binder.common(control, *this);
  binder.mirror().bind(control, *this, [this, &control] {
    caption_ = toQString(control.caption());
    setAlert(control.colour() == Colour::Red);
  });
  connect(this, &QPushButton::clicked, this, [&binder, &control] { binder.press(control); });
}

void ErrorLamp::setAlert(bool alert) {
  alert_ = alert;
  setAccessibleName(alert ? "Error alert, press to dismiss" : "Error indicator, off");
  setToolTip(alert ? "The last operation failed. Click to turn the alert off and go on."
                   : "Lights up when an operation fails");
  setFocusPolicy(alert ? Qt::StrongFocus : Qt::NoFocus);
  setCursor(alert ? Qt::PointingHandCursor : Qt::ArrowCursor);
  repaint();
}

QSize ErrorLamp::sizeHint() const {
  return pillSize(*this, QStringLiteral("ERROR \u2013 click to go on"));
}

QSize ErrorLamp::minimumSizeHint() const { return pillSize(*this, "ERROR"); }

void ErrorLamp::paintEvent(QPaintEvent*) {
  const QColor red = groundColour(Colour::Red, palette());
  QColor ground;
  if (alert_) ground = isDown() ? red.darker(130) : underMouse() ? red.lighter(115) : red;
  const bool hasRoom = width() >= sizeHint().width();
  const QString label =
      alert_ && hasRoom ? caption_ + QStringLiteral(" \u2013 click to go on") : caption_;
  paintPill(*this, {.place = rect(), .text = label, .ground = ground, .focus = hasFocus()});
}

}  // namespace kestrel::window
