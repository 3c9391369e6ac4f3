#include "app/form/command_boundary.h"

#include <new>
#include <string>

#include "platform/runtime_error.h"

namespace kestrel::form {
namespace {

constexpr int kOutOfMemoryError = 7;
constexpr int kInternalError = 51;

/// Marks a command as running for as long as it lives.
class Running {
 public:
  explicit Running(bool& flag) : flag_(flag), before_(flag) { flag_ = true; }
  ~Running() { flag_ = before_; }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

 private:
  bool& flag_;
  bool before_;
};

}  // namespace

void CommandBoundary::run(const std::function<void()>& handler) {
  if (running_) {
    handler();
    return;
  }
  const Running running(running_);
  stop_.beginCommand();
  keepBuffer();
  service_.beginOperation();
  outcome_ = runToOutcome(handler);
  if (outcome_ != frmMain::Outcome::Done) {
    restoreBuffer();
    (void)runToOutcome([this] { putToRest(); });
  }
  service_.endOperation();
  tellStretchedPulses();
}

bool CommandBoundary::tell(const std::function<void()>& step) {
  if (stop_.isThrown()) return false;
  const Running running(running_);
  return runToOutcome(step) == frmMain::Outcome::Done;
}

frmMain::Outcome CommandBoundary::runToOutcome(const std::function<void()>& step) {
  try {
    step();
    return frmMain::Outcome::Done;
  } catch (const OperationStopped& stopped) {
    p_.reporting.LogMessage(stopped.what());
    return frmMain::Outcome::Stopped;
  } catch (const RuntimeError& error) {
    errors_.tell(error);
  } catch (const std::bad_alloc&) {
    errors_.tell(RuntimeError(kOutOfMemoryError, "Out of memory"));
  } catch (const std::exception& error) {
    errors_.tell(RuntimeError(kInternalError, error.what()));
  }
  return frmMain::Outcome::RunTimeError;
}

void CommandBoundary::tellStretchedPulses() {
  const std::uint64_t pulses = service_.takeStretchedPulses();
  if (pulses == 0) return;
  p_.reporting.LogMessage(std::to_string(pulses) +
                          " pulses lasted more than twice their time, the computer was busy");
}

void CommandBoundary::keepBuffer() {
  keptBuffer_ = p_.state.CodeBuffer;
  keptLength_ = p_.state.CodeLength;
}

void CommandBoundary::restoreBuffer() {
  p_.state.CodeBuffer.swap(keptBuffer_);
  p_.state.CodeLength = keptLength_;
}

// What is on the form first: a port that has gone may end the reset.
void CommandBoundary::putToRest() {
  p_.controls.Verify_button.setColour(Colour::ButtonFace);
  p_.controls.Program_label.setColour(Colour::ButtonFace);
  p_.controls.DataFlow_label.setColour(Colour::ButtonFace);
  p_.controls.ProgressBar1.setValue(0);
  p_.controls.StatusBar.setText("");
  resetBoard();
}

void CommandBoundary::resetBoard() {
  const StopSwitch::Shield shield(stop_);
  p_.bus.Reset();
}

}  // namespace kestrel::form
