#include "app/window/range_reporter.h"

#include <QScrollBar>
#include <QSignalBlocker>
#include <QWheelEvent>
#include <algorithm>
#include <utility>

namespace kestrel::window {
namespace {

constexpr int kNotch = 120;  // a click of an ordinary wheel, in eighths of a degree
constexpr int kWheelRestsMs = 150;

/// Marks a change as acted on for as long as it lives, whatever ends it.
class Reporting {
 public:
  explicit Reporting(bool& flag) : flag_(flag), before_(std::exchange(flag, true)) {}
  ~Reporting() { flag_ = before_; }
  Reporting(const Reporting&) = delete;
  Reporting& operator=(const Reporting&) = delete;

 private:
  bool& flag_;
  bool before_;
};

}  // namespace

RangeReporter::RangeReporter(RangeControl& control, QAbstractSlider& slider, const Binder& binder)
    : QObject(&slider), control_(control), slider_(slider), binder_(binder) {
  slider.setTracking(false);
  slider.installEventFilter(this);
  binder.common(control, slider);
  binder.mirror().bind(control, *this, [this] { show(); });
  wheelRests_.setSingleShot(true);
  wheelRests_.setInterval(kWheelRestsMs);
  connect(&wheelRests_, &QTimer::timeout, this, [this] { report(slider_.value()); });
  connect(&slider, &QAbstractSlider::valueChanged, this, [this](int value) { report(value); });
}

// A control's maximum may be below its minimum (an empty buffer); the slider then has one place.
void RangeReporter::show() {
  if (slider_.isSliderDown() || wheelRests_.isActive()) return;
  const QSignalBlocker quiet(slider_);
  slider_.setRange(control_.minimum(), std::max(control_.minimum(), control_.maximum()));
  slider_.setValue(control_.value());
}

void RangeReporter::report(int value) {
  wheelRests_.stop();
  const Reporting all(isReporting_);  // a further change may come at its very end
  binder_.runner().runWhenIdle([this, value] {
    const Reporting reporting(isReporting_);
    control_.setValue(value);
  });
  binder_.mirror().touch(control_);
}

void RangeReporter::goTo(int value) {
  report(std::clamp(value, slider_.minimum(), slider_.maximum()));
}

void RangeReporter::turnWheel(int angle) {
  wheelAngle_ += angle;
  const int notches = wheelAngle_ / kNotch;
  wheelAngle_ -= notches * kNotch;
  if (notches == 0) return;
  // Away from the user is up in a text, and more on a slider.
  const bool isScrollBar = dynamic_cast<QScrollBar*>(&slider_) != nullptr;
  {
    const QSignalBlocker quiet(slider_);
    slider_.setValue(slider_.value() + (isScrollBar ? -notches : notches));
  }
  wheelRests_.start();
}

bool RangeReporter::eventFilter(QObject*, QEvent* event) {
  if (event->type() != QEvent::Wheel) return false;
  // A slider that is only passed over scrolls what it stands in; a scroll bar needs no focus.
  if (slider_.focusPolicy() != Qt::NoFocus && !slider_.hasFocus()) {
    event->ignore();
  } else if (slider_.isEnabled()) {
    turnWheel(static_cast<QWheelEvent*>(event)->angleDelta().y());
  }
  return true;
}

}  // namespace kestrel::window
