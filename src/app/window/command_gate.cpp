#include "app/window/command_gate.h"

#include <QMessageBox>
#include <exception>
#include <utility>

namespace kestrel::window {

void CommandGate::run(std::function<void()> press) {
  waiting_.push_back(std::move(press));
  if (running_) return;
  running_ = true;
  for (const auto& tell : started_) tell();
  while (!waiting_.empty()) {
    for (const auto& next : std::exchange(waiting_, {})) runOne(next);
  }
  running_ = false;
  for (const auto& tell : ended_) tell();
  mirror_.refresh();
  input_.release();
}

void CommandGate::runOne(const std::function<void()>& press) {
  try {
    press();
  } catch (const std::exception& error) {
    QMessageBox::critical(owner_, "Kestrel", QString::fromUtf8(error.what()));
  } catch (...) {
    QMessageBox::critical(owner_, "Kestrel", "The command ended by an unknown error.");
  }
}

}  // namespace kestrel::window
