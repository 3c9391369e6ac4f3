#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <functional>

namespace kestrel::window {

/// Makes the window look as it is while a command runs, and gives the keyboard focus back at the
/// end. A command that is over at once changes nothing that could be seen.
class RunningLook final : public QObject {
 public:
  /// `show` makes what cannot be used look so, or usable again.
  RunningLook(QWidget& window, std::function<void(bool running)> show);

  void begin();

  /// The focus goes back to where it was; where that cannot have it any more, to `otherwise`. An
  /// alert takes it, so that the next key can only turn the alert off, and gives it back later.
  void end(QWidget* alert, QWidget& otherwise);

 private:
  QWidget& window_;
  std::function<void(bool)> show_;
  QTimer soon_;
  QPointer<QWidget> focus_;
  QPointer<QWidget> focusBeforeAlert_;
};

}  // namespace kestrel::window
