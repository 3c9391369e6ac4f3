#include "app/window/held_input.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWidget>
#include <QWindow>
#include <utility>

namespace kestrel {
namespace {

constexpr std::size_t kMostHeld = 256;  // nobody means more keys than this by the end of a command

bool isUserInput(QEvent::Type type) {
  switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::InputMethod:
    case QEvent::ContextMenu:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletRelease:
    case QEvent::Shortcut:
      return true;
    default:
      return false;
  }
}

bool isEscape(const QEvent& event) {
  if (event.type() != QEvent::KeyPress && event.type() != QEvent::KeyRelease) return false;
  return static_cast<const QKeyEvent&>(event).key() == Qt::Key_Escape;
}

bool isAutoRepeat(const QEvent& event) {
  if (event.type() != QEvent::KeyPress && event.type() != QEvent::KeyRelease) return false;
  return static_cast<const QKeyEvent&>(event).isAutoRepeat();
}

}  // namespace

HeldInput::HeldInput() { QCoreApplication::instance()->installEventFilter(this); }

void HeldInput::setStop(QWidget& button, std::function<void()> stop) {
  stopButton_ = &button;
  stop_ = std::move(stop);
}

bool HeldInput::eventFilter(QObject* receiver, QEvent* event) {
  if (!holding_ || !isUserInput(event->type())) return false;
  if (isEscape(*event)) {
    if (event->type() == QEvent::KeyPress && stop_) stop_();
    return true;
  }
  if (isForStop(receiver, event)) return false;
  keep(receiver, *event);
  return true;
}

bool HeldInput::isForStop(QObject* receiver, QEvent* event) const {
  if (stopButton_ == nullptr) return false;
  if (receiver == stopButton_) return true;
  if (!receiver->isWindowType() || !event->isPointerEvent()) return false;
  const auto* const pointer = dynamic_cast<QMouseEvent*>(event);
  if (pointer == nullptr) return false;
  const QPoint place = stopButton_->mapFromGlobal(pointer->globalPosition().toPoint());
  return stopButton_->rect().contains(place);
}

void HeldInput::keep(QObject* receiver, const QEvent& event) {
  if (held_.size() >= kMostHeld || isAutoRepeat(event)) return;
  held_.push_back({receiver, std::unique_ptr<QEvent>(event.clone())});
}

void HeldInput::release() {
  for (Held& input : std::exchange(held_, {})) {
    if (input.receiver) QCoreApplication::postEvent(input.receiver, input.event.release());
  }
}

}  // namespace kestrel
