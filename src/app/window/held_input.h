#pragma once

#include <QEvent>
#include <QObject>
#include <QPointer>
#include <deque>
#include <functional>
#include <memory>

class QWidget;

namespace kestrel::window {

/// Keeps user input back while a command runs, and delivers it when the command has ended. Only
/// the Stop button and Esc get through.
///
/// Everything else that the event loop does (painting, timers, moves of the pointer) goes on. Input
/// is held where it enters the program, at the native window, so that what is delivered later meets
/// the widgets as they are then.
class HeldInput final : public QObject {
 public:
  HeldInput();

  /// The button that stays alive, and what Esc runs.
  void setStop(QWidget& button, std::function<void()> stop);

  void hold(bool on) { holding_ = on; }
  [[nodiscard]] bool isHolding() const { return holding_; }

  /// Sends everything that was held on its way, in the order in which it came.
  void release();

  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  struct Held {
    QPointer<QObject> receiver;
    std::function<std::unique_ptr<QEvent>()> makeEvent;
  };

  [[nodiscard]] bool isForStop(QObject* receiver, QEvent* event) const;
  void keep(QObject* receiver, const QEvent& event);
  void deliverNext();

  bool holding_ = false;
  QWidget* stopButton_ = nullptr;
  std::function<void()> stop_;
  std::deque<Held> held_;
  bool delivering_ = false;
};

}  // namespace kestrel::window
