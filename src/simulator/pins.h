#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace kestrel::sim {

// Levels on the pins of a package or of the socket: bit p-1 is pin p, 1 = high. Active-low signals
// keep their level (/CE low is a 0 bit); only the names of the code (`selected`) turn them round.
using PinLevels = std::uint32_t;

/// The mask of one pin, numbered from 1 as on the drawing.
constexpr PinLevels pin(int number) { return PinLevels{1} << (number - 1); }

/// A group of pins that carry one number, such as A0-A14 or D0-D7, listed from bit 0 upwards.
///
/// Works through tables, since every simulated port access may gather an address.
class PinBus {
 public:
  /// At most 32 pins, each 1 to 32.
  explicit constexpr PinBus(std::span<const std::uint8_t> pins) {
    for (std::size_t bit = 0; bit < pins.size(); ++bit) join(bit, pin(pins[bit]));
  }

  /// All pins of the group.
  [[nodiscard]] PinLevels mask() const { return mask_; }

  /// The number that stands on the pins.
  [[nodiscard]] std::uint32_t value(PinLevels levels) const {
    return gather_[0][levels & 0xFF] | gather_[1][levels >> 8 & 0xFF] |
           gather_[2][levels >> 16 & 0xFF] | gather_[3][levels >> 24];
  }

  /// The levels that put the low eight bits of a number on pins 0 to 7 of the group.
  [[nodiscard]] PinLevels levels(std::uint8_t value) const { return scatter_[value]; }

 private:
  constexpr void join(std::size_t bit, PinLevels own) {
    mask_ |= own;
    for (std::size_t byte = 0; byte < gather_.size(); ++byte) {
      for (std::uint32_t value = 0; value < 256; ++value) {
        if ((value << (8 * byte) & own) != 0) gather_[byte][value] |= 1U << bit;
      }
    }
    if (bit >= 8) return;
    for (std::uint32_t value = 0; value < 256; ++value) {
      if ((value >> bit & 1U) != 0) scatter_[value] |= own;
    }
  }

  PinLevels mask_ = 0;
  std::array<std::array<std::uint32_t, 256>, 4> gather_{};
  std::array<PinLevels, 256> scatter_{};
};

}  // namespace kestrel::sim
