#pragma once

#include <cstdint>
#include <string>

#include "hardware/ports/safe_off.h"
#include "platform/port_access.h"
#include "platform/runtime_error.h"

namespace kestrel::ports {

/// An I/O address in upper-case hex, with nothing before or behind: 378.
[[nodiscard]] std::string addressText(std::uint16_t address);

/// Why a port could not be taken.
enum class PortProblem {
  NoDevice,      // no such device file: the driver that makes it is not loaded
  NoHardware,    // the device file has no port behind it
  NoPermission,  // the file belongs to others
  Taken,         // another driver or program has the port
  NotAPort,      // the device is something else
  NotPermitted,  // direct access: not for this user, or the kernel is locked down
  Other,
};

/// A port that cannot be taken. The text names the device and the reason.
class PortError : public RuntimeError {
 public:
  PortError(PortProblem problem, const std::string& device, int errorNumber);

  [[nodiscard]] PortProblem problem() const { return problem_; }

 private:
  PortProblem problem_;
};

/// One parallel port of this machine behind one of the three bases. Made, it is open but not yet
/// taken; its destructor gives it back. A read of what is no status register gives FFh.
class RealPort : public PortAccess {
 public:
  /// Takes the port for this program alone and switches the board's voltages off before anything
  /// else: the claim itself moves the control lines. Throws PortError.
  virtual void take() = 0;

  /// Switches off and gives the port back. Without effect on a port that is not taken.
  virtual void giveBack() noexcept = 0;

  /// Writes the sequence that loads 40h into latch 0 of a board of any model; false when a write
  /// failed. Async-signal-safe: the guard process calls it, and so may a signal handler.
  bool switchOff() noexcept;

  /// The open file, or -1 for a port that has none.
  [[nodiscard]] virtual int descriptor() const noexcept = 0;

  /// True after an access failed: the port is gone, or it belongs to another now.
  [[nodiscard]] virtual bool isGone() const noexcept = 0;

 protected:
  explicit RealPort(std::uint16_t base) : base_(base) {}

  /// Writes a register; true for one that cannot be written. Async-signal-safe.
  virtual bool write(PortRegister target, std::uint8_t value) noexcept = 0;

  [[nodiscard]] PortRegister registerOf(std::int16_t port) const {
    const unsigned offset = static_cast<unsigned>(static_cast<std::uint16_t>(port)) - base_;
    return offset < 3 ? static_cast<PortRegister>(offset) : PortRegister::None;
  }

 private:
  std::uint16_t base_;
};

}  // namespace kestrel::ports
