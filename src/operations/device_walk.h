#pragma once

#include <cstdint>
#include <functional>

#include "operations/operation_parts.h"

namespace kestrel::operations {

/// The walk over a parallel device that read, blank check and verify share.
///
/// It covers whole pages of 256 bytes, and the same middle bytes for every high byte: sizes that
/// are a power of two are covered exactly, others as the bounds of CodeLength give. A length of 0
/// still covers one page.
class DeviceWalk {
 public:
  explicit DeviceWalk(const OperationParts& parts) : p_(parts) {}

  /// Sees the byte in ReadByte and the address that stands on the pins; false ends the walk.
  using Visit = std::function<bool(std::int32_t address)>;

  /// Resets the board, latches address 0, gives the chip its start wait, releases the bus and
  /// selects the chip with its outputs on.
  void begin();

  /// Reads every byte after begin(). True when no visit ended it.
  bool readAll(const Visit& visit);

 private:
  void setBounds();
  bool readPage(std::int32_t pageAddress, const Visit& visit);

  OperationParts p_;
};

}  // namespace kestrel::operations
