#pragma once

#include <linux/ppdev.h>
#include <sys/ioctl.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "hardware/ports/system_calls.h"
#include "platform/port_access.h"

namespace kestrel::test {

/// Stands in for the kernel and its driver ppdev: device files with a port behind them, and I/O
/// ports reached directly. It keeps the driver's rules: a port that another has registered cannot
/// be had exclusively, nothing is written before the claim, and the claim itself writes 0Ch to the
/// control lines. Every call is noted, such as "open /dev/parport0", "PPCLAIM", "data 40".
class StandInKernel final : public SystemCalls {
 public:
  struct Device {
    PortAccess* lines = nullptr;  // what is connected; addressed at `base`
    std::uint16_t base = 0x378;
    bool hasPrinterDriver = false;
    int holder = -1;  // the open file that has claimed it
  };

  /// The next calls of this kind fail with these errors, in order; 0 lets one pass.
  std::map<std::string, std::vector<int>> failures;
  std::map<std::string, Device> devices;
  std::vector<std::string> calls;
  PortAccess* ioPorts = nullptr;  // what direct access reaches
  bool isIoPermitted = false;

  int open(const char* path, int /*flags*/) noexcept override {
    if (!passes("open", "open " + std::string(path))) return -1;
    if (!devices.contains(path)) return refuse(ENOENT);
    files_.push_back({.device = &devices[path], .isExclusive = false});
    return kFirstFile + static_cast<int>(files_.size()) - 1;
  }

  int ioctl(int descriptor, unsigned long request, void* argument) noexcept override {
    auto* const value = static_cast<std::uint8_t*>(argument);
    OpenFile& file = files_[static_cast<std::size_t>(descriptor - kFirstFile)];
    switch (request) {
      case PPEXCL:
        if (!passes("PPEXCL", "PPEXCL")) return -1;
        file.isExclusive = true;
        return 0;
      case PPCLAIM:
        return passes("PPCLAIM", "PPCLAIM") ? claim(file, descriptor) : -1;
      case PPRELEASE:
        if (file.device->holder == descriptor) file.device->holder = -1;
        return passes("PPRELEASE", "PPRELEASE") ? 0 : -1;
      case PPWDATA:
        return write(descriptor, "data", 0, *value);
      case PPWCONTROL:
        return write(descriptor, "control", 2, *value);
      case PPRSTATUS:
        if (!passes("status", "status") || !isClaimed(descriptor)) return -1;
        *value = file.device->lines->PortIn(static_cast<std::int16_t>(file.device->base + 1));
        return 0;
      default:
        return refuse(ENOTTY);
    }
  }

  int close(int descriptor) noexcept override {
    calls.emplace_back("close");
    Device& device = *files_[static_cast<std::size_t>(descriptor - kFirstFile)].device;
    if (device.holder == descriptor) device.holder = -1;
    return 0;
  }

  int ioperm(unsigned long first, unsigned long count, bool permit) noexcept override {
    calls.push_back((permit ? "permit " : "forbid ") + hex(first) + "+" + std::to_string(count));
    return isIoPermitted ? 0 : refuse(EPERM);
  }
  void outByte(std::uint16_t port, std::uint8_t value) noexcept override {
    calls.push_back("outb " + hex(port) + " " + hex(value));
    ioPorts->PortOut(static_cast<std::int16_t>(port), value);
  }
  std::uint8_t inByte(std::uint16_t port) noexcept override {
    calls.push_back("inb " + hex(port));
    return ioPorts->PortIn(static_cast<std::int16_t>(port));
  }

 private:
  struct OpenFile {
    Device* device;
    bool isExclusive;
  };
  static constexpr int kFirstFile = 900;

  static std::string hex(unsigned long number) {
    char text[20];
    std::snprintf(text, sizeof text, "%02lX", number);
    return text;
  }

  static int refuse(int reason) noexcept {
    errno = reason;
    return -1;
  }

  bool passes(const std::string& kind, const std::string& call) {
    calls.push_back(call);
    std::vector<int>& planned = failures[kind];
    if (planned.empty()) return true;
    errno = planned.front();
    planned.erase(planned.begin());
    return errno == 0;
  }

  int claim(const OpenFile& file, int descriptor) {
    Device& device = *file.device;
    const bool othersRegistered = device.hasPrinterDriver || device.holder >= 0;
    if (file.isExclusive && othersRegistered) return refuse(ENXIO);
    device.holder = descriptor;
    device.lines->PortOut(static_cast<std::int16_t>(device.base + 2), 0x0C);
    return 0;
  }

  bool isClaimed(int descriptor) {
    if (files_[static_cast<std::size_t>(descriptor - kFirstFile)].device->holder == descriptor) {
      return true;
    }
    errno = EINVAL;
    return false;
  }

  int write(int descriptor, const char* kind, int offset, std::uint8_t value) {
    if (!passes(kind, std::string(kind) + " " + hex(value)) || !isClaimed(descriptor)) return -1;
    const Device& device = *files_[static_cast<std::size_t>(descriptor - kFirstFile)].device;
    device.lines->PortOut(static_cast<std::int16_t>(device.base + offset), value);
    return 0;
  }

  std::vector<OpenFile> files_;
};

}  // namespace kestrel::test
