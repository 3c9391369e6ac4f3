#pragma once

#include <cstdint>

namespace kestrel {

/// Byte-wide access to the machine's I/O ports.
///
/// Both calls are synchronous and have no error result: a write with nothing behind it is lost, a
/// read gives whatever the port floats to (FFh). An implementation over a device that can vanish
/// throws RuntimeError when it is gone. Port numbers are 16-bit as on the ISA bus.
class PortAccess {
 public:
  virtual ~PortAccess() = default;

  /// Writes one byte to the I/O port.
  virtual void PortOut(std::int16_t port, std::uint8_t value) = 0;

  /// Reads one byte from the I/O port.
  [[nodiscard]] virtual std::uint8_t PortIn(std::int16_t port) = 0;
};

}  // namespace kestrel
