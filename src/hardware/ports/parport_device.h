#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "hardware/ports/port_lines.h"
#include "hardware/ports/real_port.h"
#include "hardware/ports/system_calls.h"

namespace kestrel::ports {

// A port by the kernel's user-space driver ppdev: needs no root, only the right to open the file
// (group lp), and works on a locked-down kernel.
//
// Taking it never waits. PPCLAIM alone would wait for a printer driver that is printing, but with
// PPEXCL before it the driver registers the port for one program: that succeeds when no other is
// registered at all, and fails at once otherwise.
class ParportDevice final : public RealPortOver<PpdevLines> {
 public:
  /// Opens the device (/dev/parport0) to stand at `base`, whatever its own address. The calls
  /// outlive the port. Throws PortError.
  ParportDevice(SystemCalls& calls, const std::string& path, std::uint16_t base);
  ~ParportDevice() override;
  ParportDevice(const ParportDevice&) = delete;
  ParportDevice& operator=(const ParportDevice&) = delete;

  void take() override;
  bool giveBack() noexcept override;
  [[nodiscard]] int descriptor() const noexcept override { return lines_.descriptor(); }

  /// "ppdev".
  [[nodiscard]] std::vector<std::string> guardArguments() const override { return {"ppdev"}; }

 private:
  SystemCalls& calls_;
  bool taken_ = false;
};

}  // namespace kestrel::ports
