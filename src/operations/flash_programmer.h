#pragma once

#include "operations/failure_reports.h"
#include "operations/flash_identification.h"
#include "operations/operation_parts.h"
#include "platform/screen.h"

namespace kestrel::operations {

/// 32-pin flash: the frame of its programming. The byte write and the chip erase are hooks that do
/// nothing in this release, so programming succeeds where the chip already holds the bytes.
class FlashProgrammer {
 public:
  FlashProgrammer(const OperationParts& parts, FlashIdentification& identification,
                  FailureReports& reports, Screen& screen)
      : p_(parts), identification_(identification), reports_(reports), screen_(screen) {}

  void ProgramFlash();

  /// One read-back poll of the address on the pins.
  void FlashPollByte();

  void FlashWriteByte() {}
  void FlashChipErase() {}
  void FlashChipEraseAtmel() {}

  /// "LoopFlashTest": a timing loop of the slider's value x 1000 rounds.
  void LoopFlashTest_Click();

 private:
  [[nodiscard]] bool hasKnownMaker() const;
  bool programPage();
  bool programByte();

  OperationParts p_;
  FlashIdentification& identification_;
  FailureReports& reports_;
  Screen& screen_;
};

}  // namespace kestrel::operations
