#pragma once

#include <fcntl.h>
#include <linux/ppdev.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <functional>
#include <map>
#include <string>

#include "hardware/ports/system_calls.h"
#include "platform/port_access.h"

namespace kestrel::test {

/// Stands in for the kernel and its driver ppdev: device files with a port behind them, and I/O
/// ports reached directly. It keeps the driver's rules: a port that another has registered cannot
/// be had exclusively, nothing is written before the claim, and the claim itself writes 0Ch to the
/// control lines. Every call is noted, such as "open /dev/parport0", "PPCLAIM", "data 40".
class StandInKernel final : public ports::SystemCalls {
 public:
  struct Device {
    PortAccess* lines = nullptr;  // what is connected; addressed at `base`
    std::uint16_t base = 0x378;
    bool hasPrinterDriver = false;
    int file = -1;    // open files of the device are duplicates of this one, if there is one
    int holder = -1;  // the open file that has claimed it
  };

  std::map<std::string, Device> devices;
  /// The next calls of this name fail with these errors, in order; 0 lets one pass.
  std::map<std::string, std::deque<int>> failures;
  std::string calls;       // each with a comma and a space after it
  bool takesNotes = true;  // not for whole commands: they are millions of calls
  std::function<void()> onAccess;
  PortAccess* ioPorts = nullptr;  // what direct access reaches, once permitted
  bool isIoPermitted = false;

  int open(const char* path, int /*flags*/) noexcept override {
    if (!passes("open", path)) return -1;
    if (!devices.contains(path)) return refuse(ENOENT);
    Device& device = devices[path];
    // A true file, which the guard can inherit.
    const int descriptor = device.file < 0 ? ::open("/dev/null", O_RDWR | O_CLOEXEC)
                                           : ::fcntl(device.file, F_DUPFD_CLOEXEC, 0);
    files_[descriptor] = {&device};
    return descriptor;
  }

  int ioctl(int descriptor, unsigned long request, void* argument) noexcept override {
    if (onAccess) onAccess();
    auto* const value = static_cast<std::uint8_t*>(argument);
    File& file = fileOf(descriptor);
    const bool isHeld = file.device->holder == descriptor;
    switch (request) {
      case PPEXCL:
        file.isExclusive = true;
        return passes("PPEXCL") ? 0 : -1;
      case PPCLAIM:
        return passes("PPCLAIM") ? claim(file, descriptor) : -1;
      case PPRELEASE:
        leave(file, descriptor);
        return passes("PPRELEASE") ? 0 : -1;
      case PPWDATA:
      case PPWCONTROL:
        if (!passes(request == PPWDATA ? "data" : "control", hex(*value))) return -1;
        return isHeld ? write(*file.device, request == PPWDATA ? 0 : 2, *value) : refuse(EINVAL);
      case PPRSTATUS:
        if (!passes("status") || !isHeld) return -1;
        *value = file.device->lines->PortIn(static_cast<std::int16_t>(file.device->base + 1));
        return 0;
      default:
        return refuse(ENOTTY);
    }
  }

  int close(int descriptor) noexcept override {
    calls += "close, ";
    leave(fileOf(descriptor), descriptor);
    return ::close(descriptor);
  }
  int ioperm(unsigned long first, unsigned long /*count*/, bool permit) noexcept override {
    calls += (permit ? "permit " : "forbid ") + hex(first) + ", ";
    return isIoPermitted ? 0 : refuse(EPERM);
  }
  void outByte(std::uint16_t port, std::uint8_t value) noexcept override {
    calls += "outb " + hex(port) + " " + hex(value) + ", ";
    ioPorts->PortOut(static_cast<std::int16_t>(port), value);
  }
  std::uint8_t inByte(std::uint16_t port) noexcept override {
    calls += "inb " + hex(port) + ", ";
    return ioPorts->PortIn(static_cast<std::int16_t>(port));
  }

 private:
  struct File {
    Device* device = nullptr;
    bool isExclusive = false;
  };

  File& fileOf(int descriptor) { return files_.at(descriptor); }

  static std::string hex(unsigned long number) {
    char text[20];
    std::snprintf(text, sizeof text, "%02lX", number);
    return text;
  }
  static int refuse(int reason) {
    errno = reason;
    return -1;
  }
  bool passes(const std::string& name, const std::string& detail = {}) {
    if (takesNotes) calls += name + (detail.empty() ? "" : " ") + detail + ", ";
    std::deque<int>& planned = failures[name];
    if (planned.empty()) return true;
    errno = planned.front();
    planned.pop_front();
    return errno == 0;
  }
  static int claim(const File& file, int descriptor) {
    Device& device = *file.device;
    const bool isOthers = device.holder >= 0 && device.holder != descriptor;
    if (file.isExclusive && (device.hasPrinterDriver || isOthers)) return refuse(ENXIO);
    device.holder = descriptor;
    return write(device, 2, 0x0C);
  }
  static void leave(const File& file, int descriptor) {
    if (file.device->holder == descriptor) file.device->holder = -1;
  }
  static int write(const Device& device, int offset, std::uint8_t value) {
    device.lines->PortOut(static_cast<std::int16_t>(device.base + offset), value);
    return 0;
  }

  std::map<int, File> files_;
};

}  // namespace kestrel::test
