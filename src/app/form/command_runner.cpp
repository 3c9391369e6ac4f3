#include "app/form/command_runner.h"

#include <exception>
#include <new>
#include <string>
#include <utility>

#include "platform/runtime_error.h"

namespace kestrel::form {
namespace {

constexpr int kOutOfMemoryError = 7;
constexpr int kInternalError = 51;

}  // namespace

/// Marks a command as running for as long as it lives.
class CommandRunner::Running {
 public:
  explicit Running(bool& flag) : flag_(flag), before_(std::exchange(flag, true)) {}
  ~Running() { flag_ = before_; }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

 private:
  bool& flag_;
  bool before_;
};

CommandResult CommandRunner::run(const Event& event) {
  if (running_) return {.ending = Ending::Refused, .reason = "another command is running"};
  CommandResult result;
  {
    const Running running(running_);
    for (const Event& listener : started_) listener();
    result = runOne(event);
    while (!waiting_.empty()) {
      const Event next = std::move(waiting_.front());
      waiting_.pop_front();
      (void)runOne(next);
    }
  }
  for (const Event& listener : ended_) listener();
  return result;
}

CommandResult CommandRunner::press(Button& button) {
  if (!button.enabled()) {
    return {.ending = Ending::Refused, .reason = button.name() + " is not enabled"};
  }
  return run([&button] { button.press(); });
}

void CommandRunner::runWhenIdle(Event event) {
  if (running_) {
    waiting_.push_back(std::move(event));
  } else {
    (void)run(event);
  }
}

CommandResult CommandRunner::runOne(const Event& event) {
  stop_.beginCommand();
  (void)reporting_.takeResult();
  const selection::SelectionKeeper::Kept kept = selection_.keep();
  CommandResult result;
  try {
    event();
    if (rest_) rest_();
    service_.settle();
    result = reporting_.takeResult();
  } catch (...) {
    // The board first: a programming voltage may be on the chip.
    tryToResetBoard();
    // Latch 3 at rest holds the device's fixed bits: those of the half-chosen one until now.
    if (selection_.putBack(kept)) tryToResetBoard();
    showRest();
    result = report(std::current_exception());
  }
  reportStretchedPulses();
  reportVoltage();
  return result;
}

bool CommandRunner::runStep(const Event& step, const Event& rest) {
  if (stop_.isEnding()) return false;
  const Running running(running_);
  try {
    step();
    return true;
  } catch (...) {
    if (!stop_.isEnding()) rest();
    (void)report(std::current_exception());
    return false;
  }
}

CommandResult CommandRunner::report(const std::exception_ptr& fault) {
  try {
    std::rethrow_exception(fault);
  } catch (const OperationStopped& stopped) {
    if (!stopped.remark().empty()) reporting_.LogMessage(stopped.remark());
    reporting_.LogMessage(stopped.what());
    return {.ending = Ending::Stopped, .reason = stopped.what()};
  } catch (const FileError& error) {
    CommandResult result = report(error);
    result.isFileError = true;
    return result;
  } catch (const RuntimeError& error) {
    return report(error);
  } catch (const std::bad_alloc&) {
    return report(RuntimeError(kOutOfMemoryError, "Out of memory"));
  } catch (const std::exception& error) {
    return report(RuntimeError(kInternalError, error.what()));
  } catch (...) {
    return report(RuntimeError(kInternalError, "Unknown error"));
  }
}

CommandResult CommandRunner::report(const RuntimeError& error) {
  errors_.report(error);
  return {.ending = Ending::RunTimeError, .reason = error.what()};
}

void CommandRunner::reportStretchedPulses() {
  const std::uint64_t pulses = service_.takeStretchedPulses();
  if (pulses == 0) return;
  reporting_.LogMessage(std::to_string(pulses) +
                        " pulses lasted more than twice their time, the computer was busy");
}

void CommandRunner::reportVoltage() {
  const bool mayBeOn = service_.mayVoltageBeOn();
  if (mayBeOn && !isVoltageReported_) reporting_.LogMessage(kVoltageWarning);
  isVoltageReported_ = mayBeOn;
}

void CommandRunner::showRest() {
  controls_.Verify_button.setColour(Colour::ButtonFace);
  controls_.Program_label.setColour(Colour::ButtonFace);
  controls_.DataFlow_label.setColour(Colour::ButtonFace);
  controls_.ProgressBar1.setValue(0);
  controls_.StatusBar.setText("");
}

void CommandRunner::tryToResetBoard() {
  try {
    resetBoard();
  } catch (const std::exception&) {
    // The port has gone; the fault that is reported is the same one.
  }
}

void CommandRunner::resetBoard() {
  const StopSwitch::Shield shield(stop_);
  board_.bus.Reset();
  if (rest_) rest_();
}

}  // namespace kestrel::form
