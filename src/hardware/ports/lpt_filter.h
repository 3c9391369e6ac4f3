#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "hardware/ports/no_port.h"
#include "platform/port_access.h"
#include "platform/waits.h"

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
  /// numbers as this. A port at the end of a line keeps the time between its accesses itself:
  /// `time` then outlives the connection too. Throws std::invalid_argument for a base that is none
  /// of kLptBases.
  void connect(std::uint16_t base, PortAccess& port, Waits* time = nullptr);

  /// Takes it away again.
  void disconnect(std::uint16_t base);

  void PortOut(std::int16_t port, std::uint8_t value) override {
    address(port).PortOut(port, value);
  }
  [[nodiscard]] std::uint8_t PortIn(std::int16_t port) override {
    return address(port).PortIn(port);
  }
  [[nodiscard]] PendingRead askPortIn(std::int16_t port) override {
    return address(port).askPortIn(port);
  }

  /// Who keeps the time of the port that was addressed last; nullptr for the machine's clock.
  [[nodiscard]] Waits* timeOfLast() const { return times_[last_]; }

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

  [[nodiscard]] std::uint8_t awaitPortIn(std::int16_t port, PendingRead pending) override {
    return address(port).fetchPortIn(port, pending);
  }
  [[nodiscard]] PortAccess& address(std::int16_t port) {
    last_ = slotOf(port);
    return *ports_[last_];
  }

  NoPort none_;
  std::array<PortAccess*, kLptBases.size() + 1> ports_{&none_, &none_, &none_, &none_};
  std::array<Waits*, kLptBases.size() + 1> times_{};
  std::size_t last_ = kNowhere;
};

}  // namespace kestrel::ports
