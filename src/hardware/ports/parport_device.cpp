#include "hardware/ports/parport_device.h"

#include <fcntl.h>
#include <linux/ppdev.h>
#include <sys/ioctl.h>

#include <cerrno>

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
  int descriptor = -1;
  for (int i = 0; i < SystemCalls::kMostInterruptions && descriptor < 0; ++i) {
    descriptor = calls.open(path.c_str(), kOpenFlags);
    if (descriptor < 0 && errno != EINTR) break;
  }
  if (descriptor < 0) throw PortError(problemOfOpen(errno), path, errno);
  return descriptor;
}

}  // namespace

ParportDevice::ParportDevice(SystemCalls& calls, const std::string& path, std::uint16_t base)
    : RealPortOver(base, path, PpdevLines(calls, openDevice(calls, path))), calls_(calls) {}

ParportDevice::~ParportDevice() {
  giveBack();
  // Not repeated: Linux has closed the file also when it says EINTR.
  calls_.close(lines_.descriptor());
}

void ParportDevice::take() {
  for (const unsigned long request : {PPEXCL, PPCLAIM}) {
    if (lines_.call(request, nullptr) < 0) throw PortError(problemOfClaim(errno), name(), errno);
  }
  taken_ = true;
  begin();
}

bool ParportDevice::giveBack() noexcept {
  if (!taken_) return true;
  taken_ = false;
  if (!switchOff()) return false;
  lines_.call(PPRELEASE, nullptr);
  return true;
}

}  // namespace kestrel::ports
