#include "hardware/ports/system_calls.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>

#if defined(__x86_64__) || defined(__i386__)
#include <sys/io.h>
#define KESTREL_HAS_IO_PORTS 1
#endif

namespace kestrel::ports {

int LinuxCalls::open(const char* path, int flags) noexcept { return ::open(path, flags); }

int LinuxCalls::ioctl(int descriptor, unsigned long request, void* argument) noexcept {
  return ::ioctl(descriptor, request, argument);
}

int LinuxCalls::close(int descriptor) noexcept { return ::close(descriptor); }

#ifdef KESTREL_HAS_IO_PORTS

int LinuxCalls::ioperm(unsigned long first, unsigned long count, bool permit) noexcept {
  return ::ioperm(first, count, permit ? 1 : 0);
}

void LinuxCalls::outByte(std::uint16_t port, std::uint8_t value) noexcept { ::outb(value, port); }

std::uint8_t LinuxCalls::inByte(std::uint16_t port) noexcept { return ::inb(port); }

#else

int LinuxCalls::ioperm(unsigned long /*first*/, unsigned long /*count*/, bool /*permit*/) noexcept {
  errno = ENOSYS;
  return -1;
}

void LinuxCalls::outByte(std::uint16_t /*port*/, std::uint8_t /*value*/) noexcept {}

std::uint8_t LinuxCalls::inByte(std::uint16_t /*port*/) noexcept { return 0xFF; }

#endif

}  // namespace kestrel::ports
