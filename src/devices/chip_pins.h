#pragma once

#include <span>
#include <string>
#include <string_view>

namespace kestrel::devices {

inline constexpr int kSocketPins = 32;

/// The pins of a chip: their names from pin 1 on (JEDEC standard 21-C, data sheets), and how the
/// chip stands in the socket.
struct ChipPins {
  std::span<const std::string_view> pins = {};  ///< empty: not known
  int vppPin = 0;                               ///< takes the programming voltage; 0: none does

  [[nodiscard]] int count() const { return static_cast<int>(pins.size()); }

  /// The name of a pin, 1 to count(); an /OE that is the pin of the programming voltage too is
  /// "/OE/VPP".
  [[nodiscard]] std::string name(int pin) const;

  /// The socket pin that a pin of the chip stands in.
  [[nodiscard]] int socketPin(int pin) const;

  /// The pin that stands in a socket pin; 0 where that stays free.
  [[nodiscard]] int pinInSocket(int socketPin) const;
};

/// The pinout of a family's chips; one without pins for a family that fits no socket pin for pin.
[[nodiscard]] ChipPins chipPinsOf(std::string_view family);

/// Where the chip goes, in a sentence.
[[nodiscard]] std::string placeInSocket(const ChipPins& pinout);

/// The socket with the chip in it, lever up, drawn in characters: lines that end with a line break.
[[nodiscard]] std::string socketDrawing(const ChipPins& pinout);

}  // namespace kestrel::devices
