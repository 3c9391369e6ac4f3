#include "hardware/ports/parport_device.h"

#include <fcntl.h>
#include <linux/ppdev.h>
#include <sys/ioctl.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace kestrel::ports {
namespace {

PortProblem problemOfOpen(int errorNumber) {
  switch (errorNumber) {
    case ENOENT:
      return PortProblem::NoDevice;
    case ENXIO:
    case ENODEV:
      return PortProblem::NoHardware;
    case EACCES:
    case EPERM:
      return PortProblem::NoPermission;
    case EBUSY:
      return PortProblem::Taken;
    default:
      return PortProblem::Other;
  }
}

// A refused registration comes back as ENXIO, though the port is there.
PortProblem problemOfClaim(int errorNumber) {
  switch (errorNumber) {
    case ENXIO:
    case EBUSY:
    case EAGAIN:
      return PortProblem::Taken;
    case ENOTTY:
    case EINVAL:
      return PortProblem::NotAPort;
    case ENODEV:
      return PortProblem::NoHardware;
    default:
      return PortProblem::Other;
  }
}

// Read and written for its lines, never as a file; a device that is no port must not wait either.
constexpr int kOpenFlags = O_RDWR | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

int openDevice(SystemCalls& calls, const std::string& path) {
  for (;;) {
    const int descriptor = calls.open(path.c_str(), kOpenFlags);
    if (descriptor >= 0) return descriptor;
    if (errno != EINTR) throw PortError(problemOfOpen(errno), path, errno);
  }
}

}  // namespace

ParportDevice::ParportDevice(SystemCalls& calls, std::string path, std::uint16_t base)
    : RealPort(base),
      calls_(calls),
      path_(std::move(path)),
      descriptor_(openDevice(calls, path_)) {}

ParportDevice::~ParportDevice() {
  giveBack();
  // Not repeated: Linux has closed the file also when it says EINTR.
  calls_.close(descriptor_);
}

int ParportDevice::call(unsigned long request, void* argument) noexcept {
  for (;;) {
    const int result = calls_.ioctl(descriptor_, request, argument);
    if (result >= 0 || errno != EINTR) return result;
  }
}

bool ParportDevice::write(PortRegister target, std::uint8_t value) noexcept {
  if (target == PortRegister::Data) return call(PPWDATA, &value) >= 0;
  if (target != PortRegister::Control) return true;
  value &= kControlLines;
  return call(PPWCONTROL, &value) >= 0;
}

void ParportDevice::take() {
  for (const unsigned long request : {PPEXCL, PPCLAIM}) {
    if (call(request, nullptr) < 0) throw PortError(problemOfClaim(errno), path_, errno);
  }
  taken_ = true;
  if (!switchOff()) throwGone();
}

void ParportDevice::giveBack() noexcept {
  if (!taken_) return;
  taken_ = false;
  switchOff();
  call(PPRELEASE, nullptr);
}

void ParportDevice::throwGone() {
  gone_ = true;
  throw RuntimeError(kDeviceUnavailableError,
                     "Device unavailable: " + path_ + " (" + std::strerror(errno) + ")");
}

void ParportDevice::PortOut(std::int16_t port, std::uint8_t value) {
  if (!write(registerOf(port), value)) throwGone();
}

std::uint8_t ParportDevice::PortIn(std::int16_t port) {
  std::uint8_t value = 0xFF;
  if (registerOf(port) == PortRegister::Status && call(PPRSTATUS, &value) < 0) throwGone();
  return value;
}

}  // namespace kestrel::ports
