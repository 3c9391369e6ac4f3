#include "app/window/held_input.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWindow>
#include <utility>

namespace kestrel::window {
namespace {

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

bool isInside(const QWidget& widget, const QWidget* other) {
  return other == &widget || (other != nullptr && widget.isAncestorOf(other));
}

/// Input enters at the native window and is handed on to a widget from there: it belongs to the
/// widget under the pointer, or to the one that has the focus.
bool belongsTo(const QWidget& widget, QObject& receiver, const QEvent& event) {
  if (!receiver.isWindowType()) return isInside(widget, dynamic_cast<QWidget*>(&receiver));
  if (!widget.isVisible() || widget.window()->windowHandle() != &receiver) return false;
  if (const auto* const pointer = dynamic_cast<const QSinglePointEvent*>(&event)) {
    return widget.rect().contains(widget.mapFromGlobal(pointer->globalPosition().toPoint()));
  }
  return isInside(widget, QApplication::focusWidget());
}

}  // namespace

HeldInput::HeldInput() { QCoreApplication::instance()->installEventFilter(this); }

void HeldInput::letThrough(QWidget& widget, Takes takes) {
  std::erase_if(live_, [](const Live& live) { return !live.widget; });
  live_.push_back({&widget, std::move(takes)});
}

void HeldInput::hold(bool on) {
  holding_ = on;
  wasHolding_ = wasHolding_ || on;
}

void HeldInput::dropPending() {
  if (!std::exchange(wasHolding_, false)) return;
  holding_ = true;
  QCoreApplication::processEvents();
  holding_ = false;
}

bool HeldInput::eventFilter(QObject* receiver, QEvent* event) {
  if (!holding_ || !isUserInput(event->type())) return false;
  if (isLetThrough(receiver, *event)) return false;
  if (isEscape(*event) && event->type() == QEvent::KeyPress && stop_) stop_();
  return true;
}

bool HeldInput::isLetThrough(QObject* receiver, const QEvent& event) const {
  for (const Live& live : live_) {
    if (!live.widget || !belongsTo(*live.widget, *receiver, event)) continue;
    if (!live.takes || live.takes(event)) return true;
  }
  return false;
}

}  // namespace kestrel::window
