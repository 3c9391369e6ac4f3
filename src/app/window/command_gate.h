#pragma once

#include <QWidget>
#include <functional>
#include <vector>

#include "app/window/held_input.h"
#include "app/window/mirror.h"

namespace kestrel::window {

/// The one way from a widget's event to a control's handler. While a handler runs the gate is
/// closed: what a timer asks for meanwhile waits for its end. No exception passes it.
class CommandGate {
 public:
  CommandGate(Mirror& mirror, HeldInput& input) : mirror_(mirror), input_(input) {}

  /// Runs a press, or puts it behind the one that is running.
  void run(std::function<void()> press);

  [[nodiscard]] bool isRunning() const { return running_; }

  /// The widget over which an error is told that no command boundary has caught.
  void setOwner(QWidget& owner) { owner_ = &owner; }

  void whenStarted(std::function<void()> tell) { started_.push_back(std::move(tell)); }
  void whenEnded(std::function<void()> tell) { ended_.push_back(std::move(tell)); }

 private:
  void runOne(const std::function<void()>& press);

  Mirror& mirror_;
  HeldInput& input_;
  QWidget* owner_ = nullptr;
  bool running_ = false;
  std::vector<std::function<void()>> waiting_;
  std::vector<std::function<void()>> started_;
  std::vector<std::function<void()>> ended_;
};

}  // namespace kestrel::window
