#pragma once

#include "operations/device_walk.h"
#include "operations/failure_reports.h"
#include "operations/operation_parts.h"
#include "platform/dialogs.h"

namespace kestrel::operations {

/// Looks for the first byte of the chip that is not FFh, the erased state.
class BlankCheck {
 public:
  BlankCheck(const OperationParts& parts, FailureReports& reports, Dialogs& dialogs)
      : p_(parts), reports_(reports), dialogs_(dialogs), walk_(parts) {}

  /// Blank_button: the memories that CheckCode and CheckData select.
  void Blank_button_Click();

  void BlankCode();
  void BlankData();
  void BlankCheckParallel();

 private:
  OperationParts p_;
  FailureReports& reports_;
  Dialogs& dialogs_;
  DeviceWalk walk_;
};

}  // namespace kestrel::operations
