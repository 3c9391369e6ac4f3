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
  bindLamp(controls_.DataFlow_label, *activity, binder_);
  activity->setToolTip("Lit while the program talks to the board or reads a file");
  auto* const program = new Lamp(this);
  bindLamp(controls_.Program_label, *program, binder_);
  program->setToolTip("Lit while a chip is programmed: do not touch it");
  row.addWidget(activity);
  row.addWidget(program);
  row.addWidget(new ErrorLamp(controls_.Error_label, binder_, this));
}

void StatusStrip::buildProgress(QBoxLayout& row) {
  bar_ = new QProgressBar(this);
  bar_->setTextVisible(false);
  bar_->setFixedWidth(160);
  bar_->setAccessibleName("Progress");
  percent_ = new QLabel(this);
  percent_->setObjectName("percent");
  percent_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  percent_->setMinimumWidth(fontMetrics().horizontalAdvance("100 %"));
  timeLeft_ = new QLabel(this);
  timeLeft_->setObjectName("timeLeft");
  timeLeft_->setMinimumWidth(fontMetrics().horizontalAdvance("00:00 left"));
  binder_.common(controls_.ProgressBar1, *bar_);
  binder_.mirror().bind(controls_.ProgressBar1, [this] { showProgress(); });
  row.addWidget(bar_);
  row.addWidget(percent_);
  row.addWidget(timeLeft_);
}

void StatusStrip::showProgress() {
  const std::int32_t value = controls_.ProgressBar1.value();
  const std::int32_t maximum = std::max(1, controls_.ProgressBar1.maximum());
  bar_->setRange(0, maximum);
  bar_->setValue(value);
  percent_->setText(value > 0 ? QString("%1 %").arg(100 * value / maximum) : QString());
  const qint64 elapsed = sinceStart_.isValid() ? sinceStart_.elapsed() : 0;
  const bool known = value > 0 && value < maximum && elapsed >= kFirstGuessMs;
  const qint64 left = known ? elapsed * (maximum - value) / value : 0;
  timeLeft_->setText(known ? minutesAndSeconds(left) + " left" : QString());
}

void StatusStrip::onStop(std::function<void()> stop) {
  QObject::connect(stop_, &QPushButton::clicked, stop_, std::move(stop));
}

void StatusStrip::setRunning(bool running) {
  stop_->setEnabled(running);
  if (running) {
    sinceStart_.start();
  } else {
    sinceStart_.invalidate();
    timeLeft_->clear();
  }
}

}  // namespace kestrel::window
