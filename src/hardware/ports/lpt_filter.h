#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "hardware/ports/no_port.h"
#include "platform/port_access.h"

namespace kestrel::ports {

/// The bases of the three printer ports in the order of the window's port buttons.
inline constexpr std::array<std::uint16_t, 3> kLptBases{0x378, 0x278, 0x3BC};

/// Lets through what is meant for one of the three printer ports: data (base), status (base + 1),
/// control (base + 2). Any other write is dropped and any other read gives FFh, as on a base with
/// nothing behind it: with no port chosen the program addresses port 0, which is the machine's own.
class LptFilter final : public PortAccess {
 public:
  LptFilter() = default;
  LptFilter(const LptFilter&) = delete;  // its parts point at each other
  LptFilter& operator=(const LptFilter&) = delete;

  /// Puts a port behind a base; it outlives the connection and is called with the same port
  /// numbers as this. Throws std::invalid_argument for a base that is none of kLptBases.
  void connect(std::uint16_t base, PortAccess& port);

  /// Takes it away again.
  void disconnect(std::uint16_t base);

  void PortOut(std::int16_t port, std::uint8_t value) override {
    ports_[slotOf(port)]->PortOut(port, value);
  }
  [[nodiscard]] std::uint8_t PortIn(std::int16_t port) override {
    return ports_[slotOf(port)]->PortIn(port);
  }

 private:
  static constexpr unsigned kRegisters = 3;
  static constexpr std::size_t kNowhere = kLptBases.size();

  [[nodiscard]] static constexpr std::size_t slotOf(std::int16_t port) {
    const auto number = static_cast<std::uint16_t>(port);
    for (std::size_t slot = 0; slot < kLptBases.size(); ++slot) {
      if (static_cast<unsigned>(number) - kLptBases[slot] < kRegisters) return slot;
    }
    return kNowhere;
  }

  NoPort none_;
  std::array<PortAccess*, kLptBases.size() + 1> ports_{&none_, &none_, &none_, &none_};
};

}  // namespace kestrel::ports
