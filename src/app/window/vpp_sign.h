#pragma once

#include <QElapsedTimer>
#include <QLabel>
#include <QTimer>

#include "app/state/programmer_state.h"

namespace kestrel::window {

/// A sign over the widget that it lies on, for as long as the board has a programming voltage on
/// the socket: by latch 0, whatever the buttons say.
class VppSign final : public QLabel {
 public:
  VppSign(const LatchState& latches, const PortState& port, QWidget* ground);

  /// Looks at the latch; a voltage that comes and goes with each pulse keeps the sign up.
  void look();
  /// At the end of a command the sign goes with the voltage, at once.
  void lookAtEnd();

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  void setOn(const QString& text);

  const LatchState& latches_;
  const PortState& port_;
  QTimer timer_;
  QElapsedTimer sinceOn_;
};

}  // namespace kestrel::window
