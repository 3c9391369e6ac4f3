#include "app/window/held_input.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTimer>
#include <QWheelEvent>
#include <QWidget>
#include <QWindow>
#include <utility>

namespace kestrel::window {
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

/// Events of a pointing device share the place of their point with the device: a copy would come to
/// stand where the pointer is when it is delivered. So the event is made anew from its own values.
std::function<std::unique_ptr<QEvent>()> recipe(const QEvent& event) {
  if (const auto* const mouse = dynamic_cast<const QMouseEvent*>(&event)) {
    return [type = mouse->type(), position = mouse->position(), scene = mouse->scenePosition(),
            global = mouse->globalPosition(), button = mouse->button(), buttons = mouse->buttons(),
            modifiers = mouse->modifiers()] {
      return std::make_unique<QMouseEvent>(type, position, scene, global, button, buttons,
                                           modifiers);
    };
  }
  if (const auto* const wheel = dynamic_cast<const QWheelEvent*>(&event)) {
    return [position = wheel->position(), global = wheel->globalPosition(),
            pixels = wheel->pixelDelta(), angle = wheel->angleDelta(), buttons = wheel->buttons(),
            modifiers = wheel->modifiers(), phase = wheel->phase(), inverted = wheel->inverted()] {
      return std::make_unique<QWheelEvent>(position, global, pixels, angle, buttons, modifiers,
                                           phase, inverted);
    };
  }
  return [kept = std::shared_ptr<QEvent>(event.clone())] {
    return std::unique_ptr<QEvent>(kept->clone());
  };
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
  held_.push_back({receiver, recipe(event)});
}

void HeldInput::release() {
  if (held_.empty() || delivering_) return;
  delivering_ = true;
  QTimer::singleShot(0, this, [this] { deliverNext(); });
}

// One at a time: the first may start a command, whose own held input then goes behind the rest.
void HeldInput::deliverNext() {
  delivering_ = false;
  if (held_.empty() || holding_) return;
  const Held input = std::move(held_.front());
  held_.pop_front();
  if (input.receiver) QCoreApplication::sendEvent(input.receiver, input.makeEvent().get());
  release();
}

}  // namespace kestrel::window
