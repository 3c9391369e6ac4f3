#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::ports {

// What the kernel knows of the machine's parallel ports. `root` is "/" but in tests.

/// A port that the kernel knows.
struct ListedPort {
  std::string name;                  // parport0; its device file is /dev/parport0
  std::uint16_t base = 0;            // its I/O address; 0 for one that has none (on USB)
  std::vector<std::string> drivers;  // who is registered at it: lp, ppdev0, ...

  [[nodiscard]] std::string device() const { return "/dev/" + name; }
  [[nodiscard]] bool isHeldByPrinterDriver() const;
};

/// All ports in /proc/sys/dev/parport, by name; none when there is no such folder.
[[nodiscard]] std::vector<ListedPort> listParallelPorts(const std::filesystem::path& root);

/// Whether a kernel module is loaded or built in (parport_pc, ppdev, lp).
[[nodiscard]] bool isModuleLoaded(const std::filesystem::path& root, std::string_view module);

/// Whether the kernel is locked down, which forbids direct access even to root.
[[nodiscard]] bool isLockedDown(const std::filesystem::path& root);

/// The first other process that has a device open, as "name, process 4711", a program before its
/// guard; empty when there is none that this user may look at.
[[nodiscard]] std::string holderOf(const std::filesystem::path& root, const std::string& device);

}  // namespace kestrel::ports
