#pragma once

#include <QSocketNotifier>
#include <QTimer>
#include <QWidget>

#include "hardware/ports/signal_stop.h"

namespace kestrel::window {

/// Ends the program as if a person had pressed Stop, cancelled every dialog and closed the window,
/// once a signal (SIGTERM, SIGINT, SIGHUP) asks for it. Works inside a running command too, when
/// that gives the event loop its turns.
class SignalEnd {
 public:
  /// Both outlive this.
  SignalEnd(const ports::SignalStop& signalStop, QWidget& window);

 private:
  void step();

  QWidget& window_;
  QSocketNotifier notifier_;
  QTimer again_;  // until the window is closed: one dialog may follow another
};

}  // namespace kestrel::window
