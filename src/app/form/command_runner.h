#pragma once

#include <deque>
#include <functional>
#include <vector>

#include "app/state/controls.h"
#include "app/state/ending.h"
#include "app/state/error_report.h"
#include "app/state/reporting.h"
#include "hardware/board.h"
#include "platform/port_service.h"
#include "platform/stop_switch.h"
#include "selection/kept_selection.h"

namespace kestrel::form {

/// What is left to be done when a switch-off has failed.
inline constexpr const char* kVoltageWarning =
    "The programming voltage may still be on: take the board's supply away";

/// The one way from a front end to the procedures: every press runs here, one at a time, and gives
/// back how it ended.
///
/// Whatever a command throws, the board goes to its idle state before anything else happens; then
/// the selection is put back as it was and the lamps, colours and progress are at rest; then it is
/// reported, once. No exception leaves the runner.
class CommandRunner {
 public:
  using Event = std::function<void()>;

  CommandRunner(Controls& controls, Reporting& reporting, ErrorReport& errors,
                hardware::Board& board, selection::SelectionKeeper& selection, StopSwitch& stop,
                PortService& service)
      : controls_(controls),
        reporting_(reporting),
        errors_(errors),
        board_(board),
        selection_(selection),
        stop_(stop),
        service_(service) {}

  /// Runs what a person does to a control, with all that follows from it. While a command runs
  /// another one is refused.
  CommandResult run(const Event& event);

  /// Presses a button; refused when it is disabled.
  CommandResult press(Button& button);

  /// Runs the event now, or when the command that runs has ended.
  void runWhenIdle(Event event);

  /// Runs a step of start-up: after a failure `rest` switches the board off, unless the program is
  /// to end, then it is reported, and false is returned. Once the program is to end no further step
  /// runs.
  bool runStep(const Event& step, const Event& rest);

  /// What a selected chip's rest is beyond the board's idle state, at the end of every event.
  void setRest(Event rest) { rest_ = std::move(rest); }

  /// The board's idle state, whatever is pressed meanwhile. Throws RuntimeError when the port has
  /// gone.
  void resetBoard();

  /// True from the beginning of an event to its end. A front end keeps user input back as long, but
  /// for Stop.
  [[nodiscard]] bool isRunning() const { return running_; }

  void whenStarted(Event listener) { started_.push_back(std::move(listener)); }
  void whenEnded(Event listener) { ended_.push_back(std::move(listener)); }

 private:
  class Running;

  CommandResult runOne(const Event& event);
  CommandResult report(const std::exception_ptr& fault);
  CommandResult report(const RuntimeError& error);
  void tryToResetBoard();
  void showRest();
  void reportStretchedPulses();
  void reportVoltage();

  Controls& controls_;
  Reporting& reporting_;
  ErrorReport& errors_;
  hardware::Board& board_;
  selection::SelectionKeeper& selection_;
  StopSwitch& stop_;
  PortService& service_;
  bool running_ = false;
  bool isVoltageReported_ = false;
  Event rest_;
  std::deque<Event> waiting_;
  std::vector<Event> started_;
  std::vector<Event> ended_;
};

}  // namespace kestrel::form
