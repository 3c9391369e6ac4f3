#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "hardware/ports/port_lines.h"
#include "hardware/ports/real_port.h"
#include "hardware/ports/system_calls.h"

namespace kestrel::ports {

// A port by direct access to its three registers, for a card that the kernel has no driver for.
// Only on a processor with I/O ports, only for root, and not on a locked-down kernel. Nobody tells
// whether there is a port at the address: with nothing there writes are lost and reads give FFh.
//
// The kernel keeps no order here, so a lock file stands for the claim: it keeps a second program
// of this kind off the same address.
class DirectPort final : public RealPortOver<DirectLines> {
 public:
  /// The lowest address that is let pass; below are the machine's own devices.
  static constexpr std::uint16_t kLowest = 0x100;
  static constexpr std::uint16_t kHighest = 0xFFFC;

  /// Stands at `base` with the registers at `address` and above; `lockFolder` is where the lock
  /// file goes (/run/lock). The calls outlive the port. Throws PortError.
  DirectPort(SystemCalls& calls, std::uint16_t address, std::uint16_t base,
             const std::string& lockFolder);
  ~DirectPort() override;
  DirectPort(const DirectPort&) = delete;
  DirectPort& operator=(const DirectPort&) = delete;

  void take() override;
  bool giveBack() noexcept override;
  [[nodiscard]] int descriptor() const noexcept override { return lock_; }

  /// "direct" and the address in hex.
  [[nodiscard]] std::vector<std::string> guardArguments() const override;

 private:
  void lockAndPermit();

  int lock_;
  bool taken_ = false;
};

}  // namespace kestrel::ports
