#pragma once

#include <string>

#include "app/state/reporting.h"
#include "platform/dialogs.h"
#include "platform/runtime_error.h"

namespace kestrel {

/// Reports a failure to the person at the screen: a log line, the error sound, a message box.
class ErrorReport {
 public:
  ErrorReport(Reporting& reporting, Dialogs& dialogs) : reporting_(reporting), dialogs_(dialogs) {}

  void report(const RuntimeError& error);

 private:
  Reporting& reporting_;
  Dialogs& dialogs_;
};

}  // namespace kestrel
