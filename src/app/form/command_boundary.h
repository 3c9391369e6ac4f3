#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "app/form/frm_main.h"
#include "app/state/error_report.h"
#include "operations/operation_parts.h"
#include "platform/port_service.h"
#include "platform/stop_switch.h"

namespace kestrel::form {

/// Every handler runs inside this boundary. A run-time error is told; it and a Stop end the command
/// with the board idle, the code buffer as before, and lamps, colours and progress at rest. Events
/// that a command itself causes belong to that command.
class CommandBoundary {
 public:
  CommandBoundary(const operations::OperationParts& parts, ErrorReport& errors, StopSwitch& stop,
                  PortService& service)
      : p_(parts), errors_(errors), stop_(stop), service_(service) {}

  void run(const std::function<void()>& handler);

  /// Runs a step of start-up: a failure is told, and false is returned. After a stop, which ends
  /// the program then, no further step runs.
  bool tell(const std::function<void()>& step);

  /// The board's idle state, whatever is pressed meanwhile. Throws RuntimeError when the port has
  /// gone.
  void resetBoard();

  [[nodiscard]] bool isRunning() const { return running_; }
  [[nodiscard]] frmMain::Outcome lastOutcome() const { return outcome_; }

 private:
  frmMain::Outcome runToOutcome(const std::function<void()>& step);
  void keepBuffer();
  void restoreBuffer();
  void putToRest();
  void tellStretchedPulses();

  operations::OperationParts p_;
  ErrorReport& errors_;
  StopSwitch& stop_;
  PortService& service_;
  std::vector<std::uint8_t> keptBuffer_;
  std::int32_t keptLength_ = 0;
  bool running_ = false;
  frmMain::Outcome outcome_ = frmMain::Outcome::Done;
};

}  // namespace kestrel::form
