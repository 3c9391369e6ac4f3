#pragma once

#include <QLabel>
#include <QPainter>
#include <QResizeEvent>

namespace kestrel::window {

/// A line of text of any length in the room that there is: shortened in the middle or at the end,
/// whole in its tool tip.
class ElidedLabel final : public QLabel {
 public:
  ElidedLabel(Qt::TextElideMode mode, QWidget* parent) : QLabel(parent), mode_(mode) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    const QString shown = fontMetrics().elidedText(text(), mode_, contentsRect().width());
    painter.setPen(
        palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
    painter.drawText(contentsRect(), static_cast<int>(alignment() | Qt::TextSingleLine), shown);
  }

  bool event(QEvent* event) override {
    if (event->type() == QEvent::ToolTip) {
      const bool cut = fontMetrics().horizontalAdvance(text()) > contentsRect().width();
      setToolTip(cut ? "<qt>" + text().toHtmlEscaped() + "</qt>" : QString());
    }
    return QLabel::event(event);
  }

 private:
  Qt::TextElideMode mode_;
};

}  // namespace kestrel::window
