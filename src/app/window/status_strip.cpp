#include "app/window/status_strip.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <algorithm>
#include <utility>

#include "app/window/elided_label.h"
#include "app/window/lamp.h"

namespace kestrel::window {
namespace {

constexpr int kShortestBar = 40;  // pixels
constexpr int kLongestBar = 160;
constexpr qint64 kFirstGuessMs = 1'000;  // earlier the time left is no more than noise

}  // namespace

QString minutesAndSeconds(qint64 milliseconds) {
  const qint64 seconds = (milliseconds + 999) / 1'000;
  return QString("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QChar('0'));
}

StatusStrip::StatusStrip(Controls& controls, const Binder& binder, IconSet& icons, QWidget* parent)
    : QWidget(parent), controls_(controls), binder_(binder) {
  setObjectName("statusStrip");
  auto* const row = new QHBoxLayout(this);
  row->setContentsMargins(8, 4, 8, 6);
  buildLamps(*row);
  auto* const status = new ElidedLabel(Qt::ElideMiddle, this);
  status->setAccessibleName("Status");
  binder.text(controls.StatusBar, *status);
  row->addSpacing(8);
  row->addWidget(status, 1);
  buildProgress(*row);
  stop_ = new QPushButton("Stop", this);
  stop_->setObjectName("Stop");
  stop_->setFocusPolicy(Qt::NoFocus);  // Esc is its key; the focus stays where the user left it
  stop_->setToolTip("End the running command, programming voltage off (Esc)");
  stop_->setEnabled(false);
  icons.add(*stop_, "stop");
  row->addWidget(stop_);
}

void StatusStrip::buildLamps(QBoxLayout& row) {
  auto* const activity = new Lamp(this);
  bindLamp(controls_.DataFlow_label, *activity, binder_,
           {.lit = "The program talks to the board or reads a file",
            .unlit = "Lit while the program talks to the board or reads a file"});
  auto* const program = new Lamp(this);
  bindLamp(controls_.Program_label, *program, binder_,
           {.lit = "A chip is being programmed: do not touch it",
            .unlit = "Lit while a chip is programmed"});
  row.addWidget(activity);
  row.addWidget(program);
  error_ = new ErrorLamp(controls_.Error_label, binder_, this);
  row.addWidget(error_);
}

void StatusStrip::buildProgress(QBoxLayout& row) {
  bar_ = new QProgressBar(this);
  bar_->setTextVisible(false);
  bar_->setRange(0, 100);
  bar_->setMinimumWidth(kShortestBar);
  bar_->setMaximumWidth(kLongestBar);
  bar_->setAccessibleName("Progress");
  percent_ = new QLabel(this);
  percent_->setObjectName("percent");
  percent_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  percent_->setMinimumWidth(fontMetrics().horizontalAdvance("100 %"));
  timeLeft_ = new ElidedLabel(Qt::ElideRight, this);  // gives way where Stop would not fit
  timeLeft_->setObjectName("timeLeft");
  timeLeft_->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  binder_.common(controls_.ProgressBar1, *bar_);
  binder_.mirror().bind(controls_.ProgressBar1, *bar_, [this] { showProgress(); });
  row.addWidget(bar_, 1);  // as long as there is room
  row.addWidget(percent_);
  row.addWidget(timeLeft_);
}

void StatusStrip::showProgress() {
  const std::int32_t value = controls_.ProgressBar1.value();
  const std::int32_t maximum = std::max(1, controls_.ProgressBar1.maximum());
  const int percent = static_cast<int>(std::int64_t{100} * std::min(value, maximum) / maximum);
  bar_->setValue(percent);
  percent_->setText(value > 0 ? QString("%1 %").arg(percent) : QString());
  showTimeLeft(value, maximum);
}

// A walk over the chip begins with the bar at 0; the verify behind a programming is one of its own.
void StatusStrip::showTimeLeft(std::int32_t value, std::int32_t maximum) {
  if (value == 0 || value < walked_ || !sinceStart_.isValid()) {
    sinceStart_.start();
    startedAt_ = value;
  }
  walked_ = value;
  const std::int32_t done = value - startedAt_;
  const qint64 elapsed = sinceStart_.elapsed();
  const bool known = isRunning_ && done > 0 && value < maximum && elapsed >= kFirstGuessMs;
  const qint64 left = known ? elapsed * (maximum - value) / done : 0;
  timeLeft_->setText(known ? minutesAndSeconds(left) + " left" : QString());
}

void StatusStrip::onStop(std::function<void()> stop) {
  QObject::connect(stop_, &QPushButton::clicked, stop_, std::move(stop));
}

void StatusStrip::setRunning(bool running) {
  stop_->setEnabled(running);
  isRunning_ = running;
  sinceStart_.invalidate();
  timeLeft_->clear();
}

}  // namespace kestrel::window
