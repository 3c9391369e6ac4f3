#pragma once

#include <cstdint>
#include <span>

#include "operations/operation_parts.h"

namespace kestrel::operations {

/// Single write cycles and unlock sequences of the 28-pin page-write chips: AT29C256 (/WE is latch
/// 1 bit 7) and 28C256 (/WE is latch 1 bit 6, A14 is bit 7).
class ProtectionSequences {
 public:
  explicit ProtectionSequences(const OperationParts& parts) : p_(parts) {}

  /// One write cycle at WriteAddress with the byte in RegShadow4.
  void AtmelWriteByte();
  void XicorWriteByte();

  // Software data protection off and on, in the form of each maker.
  void AtmelSDPDisable();
  void AtmelSDPEnable();
  void XicorSDPDisable();
  void XicorSDPEnable();

  /// The AT29C256's three-cycle command with its last byte.
  void sendAtmelCommand(std::uint8_t command);

  void WEON_ATMEL();
  void WEOFF_ATMEL();
  void WEON_XICOR();
  void WEOFF_XICOR();
  void WriteStrobeDelay();

  /// Waits so many milliseconds more than the program-speed slider is below its maximum.
  void speedDelay(std::int32_t milliseconds);

 private:
  struct Cycle {
    std::int16_t address;
    std::uint8_t data;
  };
  using WriteByte = void (ProtectionSequences::*)();
  struct WriteEnable {
    void (ProtectionSequences::*on)();
    void (ProtectionSequences::*off)();
  };

  void send(std::span<const Cycle> cycles, WriteByte writeByte);
  void sendDisable(WriteByte writeByte);
  void sendEnable(WriteByte writeByte);
  void strobe(const WriteEnable& writeEnable);

  OperationParts p_;
};

}  // namespace kestrel::operations
