#pragma once

#include <cstdint>

#include "hardware/ports/safe_off.h"
#include "hardware/ports/switch_off.h"
#include "hardware/ports/system_calls.h"

namespace kestrel::ports {

/// The registers of an open parallel port, as the program and its guard both reach them. Nothing
/// here throws or allocates; all of it is async-signal-safe.
class PortLines : public SwitchOff {
 public:
  /// Writes a register; true for one that cannot be written. On failure errno tells why.
  virtual bool write(PortRegister target, std::uint8_t value) noexcept = 0;

  /// Reads the status register.
  virtual bool readStatus(std::uint8_t& value) noexcept = 0;

  /// Writes the sequence that loads 40h into latch 0 of a board of any model.
  bool switchOff() noexcept override;
};

// By the driver ppdev.
//
//   data      PPWDATA
//   status    PPRSTATUS    as the register reads: the driver inverts nothing
//   control   PPWCONTROL   bits 0 to 3, which is all that a board uses
class PpdevLines final : public PortLines {
 public:
  /// The file is open, and closed by its owner.
  PpdevLines(SystemCalls& calls, int descriptor) noexcept
      : calls_(calls), descriptor_(descriptor) {}

  bool write(PortRegister target, std::uint8_t value) noexcept override;
  bool readStatus(std::uint8_t& value) noexcept override;

  /// A call of the driver, again when a signal interrupted it, though not for ever.
  int call(unsigned long request, void* argument) noexcept;

  [[nodiscard]] int descriptor() const noexcept { return descriptor_; }

 private:
  SystemCalls& calls_;
  int descriptor_;
};

// By in and out instructions: data at the address, status and control behind it.
class DirectLines final : public PortLines {
 public:
  static constexpr unsigned long kRegisters = 3;

  DirectLines(SystemCalls& calls, std::uint16_t address) noexcept
      : calls_(calls), address_(address) {}

  /// Asks the kernel for the permission, or gives it back.
  bool permit(bool isWanted) noexcept;

  bool write(PortRegister target, std::uint8_t value) noexcept override;
  bool readStatus(std::uint8_t& value) noexcept override;

  [[nodiscard]] std::uint16_t address() const noexcept { return address_; }

 private:
  SystemCalls& calls_;
  std::uint16_t address_;
};

}  // namespace kestrel::ports
