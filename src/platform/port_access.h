#pragma once

#include <cstdint>

namespace kestrel {

/// A read that was asked for and is fetched later.
struct PendingRead {
  std::uint64_t number = 0;  // the byte itself when it is here, else its place in the port's queue
  bool isHere = true;
};

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

  /// The same in two steps. A port at the end of a line then answers several reads, with the writes
  /// and waits between them, in one round trip; any other reads at once. On the lines everything
  /// happens in the order of the calls either way. Each read is fetched once, in the order in which
  /// they were asked for; one that is never fetched does no harm.
  [[nodiscard]] virtual PendingRead askPortIn(std::int16_t port) {
    return {.number = PortIn(port)};
  }
  [[nodiscard]] std::uint8_t fetchPortIn(std::int16_t port, PendingRead pending) {
    return pending.isHere ? static_cast<std::uint8_t>(pending.number) : awaitPortIn(port, pending);
  }

 protected:
  /// Waits for a read that is not here yet: for ports at the end of a line and the layers on them.
  [[nodiscard]] virtual std::uint8_t awaitPortIn(std::int16_t /*port*/, PendingRead /*pending*/) {
    return 0xFF;
  }
};

}  // namespace kestrel
