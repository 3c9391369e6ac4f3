#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace kestrel::guard {

/// What the guard is given on its command line:
///
///   vpp-guard LINK MEMORY PORT ppdev            a port by the driver ppdev
///   vpp-guard LINK MEMORY PORT direct ADDRESS   by direct access, at an address in hex
///
/// The first three are open files: the link to the program, the memory shared with it, and the
/// port, or the lock file that stands for it.
struct Arguments {
  enum class Way : std::uint8_t { Ppdev, Direct };

  int link = -1;
  int memory = -1;
  int port = -1;
  Way way = Way::Ppdev;
  std::uint16_t address = 0;
};

/// Without the program's name. Nothing when they are not as above.
[[nodiscard]] std::optional<Arguments> readArguments(std::span<const char* const> words);

}  // namespace kestrel::guard
