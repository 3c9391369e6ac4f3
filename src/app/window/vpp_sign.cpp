#include "app/window/vpp_sign.h"

#include <QEvent>

#include "app/window/theme.h"
#include "hardware/vpp_output.h"

namespace kestrel::window {
namespace {

constexpr int kLookMs = 25;
constexpr int kStayMs = 300;  // pulses of the voltage are closer to each other

QString textOf(const hardware::VppOutput& vpp) {
  const QString level = vpp.volts ? QString(" %1 V").arg(*vpp.volts) : QString();
  return "VPP ON" + level + QStringLiteral(" \u2013 do not touch the chip");
}

}  // namespace

VppSign::VppSign(const LatchState& latches, const PortState& port, QWidget* ground)
    : QLabel(ground), latches_(latches), port_(port) {
  setObjectName("vppSign");
  setAlignment(Qt::AlignCenter);
  setAutoFillBackground(true);
  setAttribute(Qt::WA_TransparentForMouseEvents);
  QFont bold = font();
  bold.setBold(true);
  setFont(bold);
  QPalette own = palette();
  own.setColor(QPalette::Window, groundColour(Colour::Red, own));
  own.setColor(QPalette::WindowText, Qt::white);
  setPalette(own);
  hide();
  ground->installEventFilter(this);
  timer_.setInterval(kLookMs);
  connect(&timer_, &QTimer::timeout, this, [this] { look(); });
  timer_.start();
}

void VppSign::look() {
  const auto vpp = hardware::vppOutput(latches_.RegShadow0, port_.KestrelModel);
  if (vpp) {
    sinceOn_.start();
    setOn(textOf(*vpp));
  } else if (isVisible() && sinceOn_.elapsed() > kStayMs) {
    hide();
  }
}

void VppSign::lookAtEnd() {
  if (!hardware::vppOutput(latches_.RegShadow0, port_.KestrelModel)) hide();
}

void VppSign::setOn(const QString& text) {
  if (text != this->text()) {
    setText(text);
    setAccessibleName(text);
  }
  if (isVisible()) return;
  setGeometry(parentWidget()->rect());
  raise();
  show();
}

bool VppSign::eventFilter(QObject* receiver, QEvent* event) {
  if (event->type() == QEvent::Resize) setGeometry(parentWidget()->rect());
  return QLabel::eventFilter(receiver, event);
}

}  // namespace kestrel::window
