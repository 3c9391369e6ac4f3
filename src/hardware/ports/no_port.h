#pragma once

#include <cstdint>

#include "platform/port_access.h"

namespace kestrel::ports {

/// The machine without a parallel port: writes are lost, reads give FFh.
class NoPort final : public PortAccess {
 public:
  void PortOut(std::int16_t /*port*/, std::uint8_t /*value*/) override {}
  [[nodiscard]] std::uint8_t PortIn(std::int16_t /*port*/) override { return 0xFF; }
};

}  // namespace kestrel::ports
