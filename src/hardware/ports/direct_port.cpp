#include "hardware/ports/direct_port.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

namespace kestrel::ports {
namespace {

// The lock is the open file's, so the guard process, which inherits the file, keeps it as well
// until it has switched off.
int openLock(const std::string& folder, const std::string& name) {
  const std::string path = folder + "/kestrel-" + name + ".lock";
  const int descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (descriptor < 0) {
    const bool denied = errno == EACCES || errno == EPERM;
    throw PortError(denied ? PortProblem::NotPermitted : PortProblem::Other, name, errno);
  }
  return descriptor;
}

}  // namespace

DirectPort::DirectPort(SystemCalls& calls, std::uint16_t address, std::uint16_t base,
                       const std::string& lockFolder)
    : RealPort(base),
      calls_(calls),
      address_(address),
      name_("0x" + addressText(address)),
      lock_(openLock(lockFolder, name_)) {
  try {
    lockAndPermit();
  } catch (...) {
    ::close(lock_);
    throw;
  }
}

DirectPort::~DirectPort() {
  giveBack();
  calls_.ioperm(address_, kRegisters, false);
  ::close(lock_);
}

// Before the guard process is made, which inherits both the lock and the permission.
void DirectPort::lockAndPermit() {
  if (address_ < kLowest || address_ > kHighest) {
    throw PortError(PortProblem::NotAPort, name_, EINVAL);
  }
  if (flock(lock_, LOCK_EX | LOCK_NB) != 0) throw PortError(PortProblem::Taken, name_, errno);
  if (calls_.ioperm(address_, kRegisters, true) != 0) {
    throw PortError(PortProblem::NotPermitted, name_, errno);
  }
}

void DirectPort::take() {
  taken_ = true;
  switchOff();
}

void DirectPort::giveBack() noexcept {
  if (!taken_) return;
  taken_ = false;
  switchOff();
}

bool DirectPort::write(PortRegister target, std::uint8_t value) noexcept {
  if (target == PortRegister::Data) calls_.outByte(address_, value);
  if (target == PortRegister::Control) {
    calls_.outByte(static_cast<std::uint16_t>(address_ + 2U), value & kControlLines);
  }
  return true;
}

void DirectPort::PortOut(std::int16_t port, std::uint8_t value) { write(registerOf(port), value); }

std::uint8_t DirectPort::PortIn(std::int16_t port) {
  if (registerOf(port) != PortRegister::Status) return 0xFF;
  return calls_.inByte(static_cast<std::uint16_t>(address_ + 1U));
}

}  // namespace kestrel::ports
