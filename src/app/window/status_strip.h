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

/// The strip at the foot: the lamps, what is going on, how far it is, and Stop.
class StatusStrip final : public QWidget {
 public:
  StatusStrip(Controls& controls, const Binder& binder, IconSet& icons, QWidget* parent);

  /// Stop is pressed, or Esc while a command runs.
  void onStop(std::function<void()> stop);
  [[nodiscard]] QPushButton& stopButton() const { return *stop_; }

  /// A command begins or has ended.
  void setRunning(bool running);

 private:
  void buildLamps(QBoxLayout& row);
  void buildProgress(QBoxLayout& row);
  void showProgress();

  Controls& controls_;
  const Binder& binder_;
  QProgressBar* bar_ = nullptr;
  QLabel* percent_ = nullptr;
  QLabel* timeLeft_ = nullptr;
  QPushButton* stop_ = nullptr;
  QElapsedTimer sinceStart_;
};

/// "0:12" for 12 seconds.
[[nodiscard]] QString minutesAndSeconds(qint64 milliseconds);

}  // namespace kestrel::window
