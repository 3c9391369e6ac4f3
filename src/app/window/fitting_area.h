#pragma once

#include <QEvent>
#include <QLayout>
#include <QScreen>
#include <QScrollArea>

namespace kestrel::window {

/// The contents of a FittingArea. Texts that are wrapped, as notices are, make the height depend on
/// the width; what has to fit then is the least height, not the one that is wished for.
class FittingContents final : public QWidget {
 public:
  using QWidget::QWidget;

  [[nodiscard]] int heightForWidth(int width) const override {
    return layout()->minimumHeightForWidth(width);
  }
};

/// Holds the window's contents and asks for their whole size, but never for more than the screen
/// has: on a smaller one they are scrolled, and what stands around them stays in sight.
class FittingArea final : public QScrollArea {
 public:
  explicit FittingArea(QWidget* parent) : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
  }

  [[nodiscard]] QSize sizeHint() const override { return widget()->sizeHint(); }
  [[nodiscard]] QSize minimumSizeHint() const override {
    return widget()->minimumSizeHint().boundedTo(screen()->availableSize() - kAround);
  }

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override {
    if (receiver == widget() && event->type() == QEvent::LayoutRequest) updateGeometry();
    return QScrollArea::eventFilter(receiver, event);
  }

 private:
  // The frame; above and below it title, menus, tools and the strip with the lamps and Stop.
  static constexpr QSize kAround{16, 170};
};

}  // namespace kestrel::window
