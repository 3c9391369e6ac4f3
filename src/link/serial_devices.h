#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace kestrel::link {

/// A serial line that an adapter may be at the end of.
struct SerialDevice {
  std::string device;   // /dev/ttyACM0
  std::string name;     // a name that stays when it is plugged in elsewhere; else the same
  std::string product;  // what it says of itself; may be empty
};

/// The serial lines on USB plugs, by their devices. `root` is "/" but in tests.
[[nodiscard]] std::vector<SerialDevice> listSerialDevices(const std::filesystem::path& root = "/");

}  // namespace kestrel::link
