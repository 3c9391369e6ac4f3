#pragma once

#include "hardware/error_alert.h"
#include "operations/operation_parts.h"

namespace kestrel::operations {

/// What the operator is told when an operation fails. Each report raises the error alert.
class FailureReports {
 public:
  FailureReports(const OperationParts& parts, hardware::ErrorAlert& alert)
      : p_(parts), alert_(alert) {}

  /// The first byte that is not blank: ProgramIndex and ReadByte.
  void NotBlankReport();

  /// The first byte that differs: ProgramIndex and ReadByte, beside the byte of the code buffer.
  void VerifyMismatchReport();

  /// A serial chip that does not acknowledge.
  void AckErrorReport();

  /// A byte that does not program: LinearAddress, ByteToWrite and ReadByte. Takes the programming
  /// voltage off first.
  void ProgramFailureReport();

 private:
  OperationParts p_;
  hardware::ErrorAlert& alert_;
};

}  // namespace kestrel::operations
