#pragma once

#include <QEvent>
#include <QWidget>

namespace kestrel::window {

/// The wheel changes the list or field only where it has the focus; elsewhere it scrolls what they
/// stand in. Owned by the widget.
class WheelGuard final : public QObject {
 public:
  explicit WheelGuard(QWidget& widget) : QObject(&widget), widget_(widget) {
    widget.setFocusPolicy(Qt::StrongFocus);  // the wheel alone gives no focus
    widget.installEventFilter(this);
  }

  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() != QEvent::Wheel || widget_.hasFocus()) return false;
    event->ignore();
    return true;
  }

 private:
  QWidget& widget_;
};

}  // namespace kestrel::window
