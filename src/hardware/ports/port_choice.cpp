#include "hardware/ports/port_choice.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <stdexcept>

#include "hardware/ports/direct_port.h"
#include "hardware/ports/lpt_filter.h"

namespace kestrel::ports {
namespace {

constexpr std::string_view kHexMark = "0x";
constexpr std::string_view kLinkMark = "link:";

std::optional<std::uint16_t> hexNumber(std::string_view text) {
  std::uint16_t number = 0;
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number, 16);
  if (result.ec != std::errc{} || result.ptr != end) return std::nullopt;
  return number;
}

std::uint16_t baseFrom(std::string_view text) {
  const auto base = hexNumber(text);
  if (!base || std::find(kLptBases.begin(), kLptBases.end(), *base) == kLptBases.end()) {
    throw std::invalid_argument("the port must be 378, 278 or 3BC, not \"" + std::string(text) +
                                "\"");
  }
  return *base;
}

std::uint16_t addressFrom(std::string_view text) {
  const auto address = hexNumber(text.substr(kHexMark.size()));
  if (!address || *address < DirectPort::kLowest || *address > DirectPort::kHighest) {
    throw std::invalid_argument("no port can be at the address \"" + std::string(text) + "\"");
  }
  return *address;
}

std::string serialDeviceFrom(std::string_view text) {
  if (text.empty()) {
    throw std::invalid_argument("an adapter is given as link:DEVICE, such as link:/dev/ttyACM0");
  }
  return text.starts_with('/') ? std::string(text) : "/dev/" + std::string(text);
}

}  // namespace

PortChoice parsePortChoice(std::string_view text) {
  const std::size_t equals = text.find('=');
  if (equals == std::string_view::npos) {
    throw std::invalid_argument("a port is given as BASE=DEVICE, such as 378=/dev/parport1");
  }
  const std::string_view device = text.substr(equals + 1);
  PortChoice choice{.base = baseFrom(text.substr(0, equals)), .device = {}};
  if (device.starts_with(kHexMark)) {
    choice.address = addressFrom(device);
  } else if (device.starts_with(kLinkMark)) {
    choice.device = serialDeviceFrom(device.substr(kLinkMark.size()));
    choice.isLink = true;
  } else if (device.starts_with("parport")) {
    choice.device = "/dev/" + std::string(device);
  } else if (device.starts_with('/')) {
    choice.device = device;
  } else {
    throw std::invalid_argument(
        "\"" + std::string(device) +
        "\" is neither a device file nor an address with 0x nor link: and a "
        "serial line");
  }
  return choice;
}

}  // namespace kestrel::ports
