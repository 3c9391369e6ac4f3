#pragma once

#include <QEvent>
#include <QLabel>

namespace kestrel::window {

/// A bold heading. Its mnemonic leads to its buddy and no further: a plain label would press a
/// button.
class StepLabel final : public QLabel {
 public:
  StepLabel(const QString& text, QWidget* parent) : QLabel(text, parent) {
    QFont bold = font();
    bold.setBold(true);
    setFont(bold);
  }

 protected:
  bool event(QEvent* event) override {
    if (event->type() != QEvent::Shortcut) return QLabel::event(event);
    if (buddy() != nullptr) buddy()->setFocus(Qt::ShortcutFocusReason);
    return true;
  }
};

}  // namespace kestrel::window
