#pragma once

#include "operations/failure_reports.h"
#include "operations/operation_parts.h"
#include "operations/program_image.h"
#include "operations/protection.h"

namespace kestrel::operations {

/// The 32 KB chips that are written a page of 64 bytes at a time: each page is written, given its
/// write cycle, read back, and written again whole until it is right, at most 79 times.
class PageWriter {
 public:
  PageWriter(const OperationParts& parts, ProtectionSequences& protection, ProgramImage& image,
             FailureReports& reports)
      : p_(parts), protection_(protection), image_(image), reports_(reports) {}

  void ProgramAT29C256();
  void ProgramX28C256();

  /// Programs FFh; the program image is rebuilt from the code buffer afterwards.
  void EraseX28C256();

 private:
  struct Chip;

  void program(const Chip& chip);
  void unlock(const Chip& chip);
  bool programPage(const Chip& chip, std::int32_t page);
  void latchPageAddress(const Chip& chip, std::int32_t page);
  void loadPage(const Chip& chip, std::int32_t page);
  bool pageReadsBack(std::int32_t page);
  void setByteAddress(std::int32_t address);

  OperationParts p_;
  ProtectionSequences& protection_;
  ProgramImage& image_;
  FailureReports& reports_;
};

}  // namespace kestrel::operations
