#pragma once

#include <QAbstractSlider>
#include <QObject>
#include <QTimer>

#include "app/state/value_controls.h"
#include "app/window/binder.h"

namespace kestrel::window {

/// Joins a scroll bar or slider to its control. A drag is reported when it is let go, the turns of
/// the wheel when the wheel rests: each is one change, one log line, one page read from the chip.
class RangeReporter final : public QObject {
 public:
  /// Owned by the slider.
  RangeReporter(RangeControl& control, QAbstractSlider& slider, const Binder& binder);

  /// A turn of the wheel over the slider or over what it scrolls, in eighths of a degree.
  void turnWheel(int angle);

  /// Goes to a value at once, as a key does.
  void goTo(int value);

  /// While the change that was reported last is acted on.
  [[nodiscard]] bool isReporting() const { return isReporting_; }

  [[nodiscard]] QAbstractSlider& slider() const { return slider_; }

  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  void show();
  void report(int value);

  RangeControl& control_;
  QAbstractSlider& slider_;
  const Binder& binder_;
  QTimer wheelRests_;
  int wheelAngle_ = 0;
  bool isReporting_ = false;
};

}  // namespace kestrel::window
