#pragma once

#include <cstdint>
#include <string>

#include "hardware/ports/real_port.h"
#include "hardware/ports/system_calls.h"

namespace kestrel::ports {

// A port by the kernel's user-space driver ppdev: needs no root, only the right to open the file
// (group lp), and works on a locked-down kernel.
//
//   base      data      PPWDATA
//   base + 1  status    PPRSTATUS    as the register reads: the driver inverts nothing
//   base + 2  control   PPWCONTROL   bits 0 to 3, which is all that a board uses
//
// Taking it never waits. PPCLAIM alone would wait for a printer driver that is printing, but with
// PPEXCL before it the driver registers the port for one program: that succeeds when no other is
// registered at all, and fails at once otherwise.
class ParportDevice final : public RealPort {
 public:
  /// Opens the device (/dev/parport0) to stand at `base`, whatever its own address. The calls
  /// outlive the port. Throws PortError.
  ParportDevice(SystemCalls& calls, std::string path, std::uint16_t base);
  ~ParportDevice() override;
  ParportDevice(const ParportDevice&) = delete;
  ParportDevice& operator=(const ParportDevice&) = delete;

  void take() override;
  void giveBack() noexcept override;
  [[nodiscard]] int descriptor() const noexcept override { return descriptor_; }
  [[nodiscard]] bool isGone() const noexcept override { return gone_; }

  /// Both throw RuntimeError 68, "Device unavailable", when the driver refuses the access.
  void PortOut(std::int16_t port, std::uint8_t value) override;
  [[nodiscard]] std::uint8_t PortIn(std::int16_t port) override;

 private:
  bool write(PortRegister target, std::uint8_t value) noexcept override;
  int call(unsigned long request, void* argument) noexcept;
  [[noreturn]] void throwGone();

  SystemCalls& calls_;
  std::string path_;
  int descriptor_;
  bool taken_ = false;
  bool gone_ = false;
};

}  // namespace kestrel::ports
