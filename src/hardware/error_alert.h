#pragma once

#include "app/state/operation_buttons.h"
#include "operations/operation_parts.h"

namespace kestrel::hardware {

/// The error alert: the red lamp, with the four operation buttons locked until it is dismissed.
class ErrorAlert {
 public:
  ErrorAlert(const operations::OperationParts& parts, OperationButtons& buttons)
      : p_(parts), buttons_(buttons) {}

  void RaiseErrorAlert();

  /// Dismisses the alert; without one a click does nothing.
  void Error_label_Click();

  [[nodiscard]] bool isRaised() const { return p_.lamps.errorLampIsOn(); }

 private:
  operations::OperationParts p_;
  OperationButtons& buttons_;
};

}  // namespace kestrel::hardware
