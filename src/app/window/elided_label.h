#pragma once

#include <QLabel>
#include <QPainter>
#include <QResizeEvent>

#include "app/window/texts.h"

namespace kestrel::window {

/// A line of text of any length in the room that there is: shortened in the middle or at the end,
/// whole in its tool tip.
class ElidedLabel final : public QLabel {
 public:
  ElidedLabel(Qt::TextElideMode mode, QWidget* parent) : QLabel(parent), mode_(mode) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  }

  [[nodiscard]] QSize sizeHint() const override {
    return {QLabel::sizeHint().width(), fontMetrics().height() + 2 * margin()};
  }
  [[nodiscard]] QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    const QString shown =
        fontMetrics().elidedText(onOneLine(text()), mode_, contentsRect().width());
    painter.setPen(
        palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
    painter.drawText(contentsRect(), static_cast<int>(alignment() | Qt::TextSingleLine), shown);
  }

  bool event(QEvent* event) override {
    if (event->type() == QEvent::ToolTip) {
      const QString whole = onOneLine(text());
      const bool cut = fontMetrics().horizontalAdvance(whole) > contentsRect().width();
      setToolTip(cut ? "<qt>" + whole.toHtmlEscaped() + "</qt>" : QString());
    }
    return QLabel::event(event);
  }

 private:
  Qt::TextElideMode mode_;
};

}  // namespace kestrel::window
