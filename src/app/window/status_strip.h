#pragma once

#include <QElapsedTimer>
#include <QWidget>
#include <functional>

#include "app/state/controls.h"
#include "app/window/binder.h"
#include "app/window/theme.h"

class QBoxLayout;
class QLabel;
class QProgressBar;
class QPushButton;

namespace kestrel::window {

class ErrorLamp;

/// The strip at the foot: the lamps, what is going on, how far it is, and Stop.
class StatusStrip final : public QWidget {
 public:
  StatusStrip(Controls& controls, const Binder& binder, IconSet& icons, QWidget* parent);

  /// Stop is pressed, or Esc while a command runs.
  void onStop(std::function<void()> stop);
  [[nodiscard]] QPushButton& stopButton() const { return *stop_; }
  [[nodiscard]] ErrorLamp& errorLamp() const { return *error_; }

  /// A command begins or has ended.
  void setRunning(bool running);

 private:
  void buildLamps(QBoxLayout& row);
  void buildProgress(QBoxLayout& row);
  void showProgress();
  void showTimeLeft(std::int32_t value, std::int32_t maximum);

  Controls& controls_;
  const Binder& binder_;
  QProgressBar* bar_ = nullptr;
  QLabel* percent_ = nullptr;
  QLabel* timeLeft_ = nullptr;
  QPushButton* stop_ = nullptr;
  ErrorLamp* error_ = nullptr;
  bool isRunning_ = false;
  QElapsedTimer sinceStart_;    // of the walk over the chip that is going on
  std::int32_t startedAt_ = 0;  // the bar's value then
  std::int32_t walked_ = 0;     // and when it was shown last
};

/// "0:12" for 12 seconds.
[[nodiscard]] QString minutesAndSeconds(qint64 milliseconds);

}  // namespace kestrel::window
