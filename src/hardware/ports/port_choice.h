#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrel::ports {

/// A port that the user gave one of the three bases, such as 378=/dev/parport1.
struct PortChoice {
  std::uint16_t base = 0;
  std::string device;         // the device file; empty for direct access
  std::uint16_t address = 0;  // direct access: the I/O address of the data register
  bool isLink = false;        // the device is a serial line with an adapter at its end

  [[nodiscard]] bool isDirect() const { return device.empty(); }
};

/// Reads BASE=DEVICE. BASE is 378, 278 or 3BC in any case; DEVICE a device file with its full path
/// ("/dev/parport1"), its last name alone ("parport1"), or an I/O address in hex with 0x before it
/// ("0xD010") for direct access, or a serial line with link: before it ("link:/dev/ttyACM0").
/// Throws std::invalid_argument with a text for the user.
[[nodiscard]] PortChoice parsePortChoice(std::string_view text);

}  // namespace kestrel::ports
