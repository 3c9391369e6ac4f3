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
    : RealPortOver(base, "0x" + addressText(address), DirectLines(calls, address)),
      lock_(openLock(lockFolder, name())) {
  try {
    lockAndPermit();
  } catch (...) {
    ::close(lock_);
    throw;
  }
}

DirectPort::~DirectPort() {
  giveBack();
  lines_.permit(false);
  ::close(lock_);
}

std::vector<std::string> DirectPort::guardArguments() const {
  return {"direct", addressText(lines_.address())};
}

// Before the guard process is made, which inherits both the lock and the permission.
void DirectPort::lockAndPermit() {
  if (lines_.address() < kLowest || lines_.address() > kHighest) {
    throw PortError(PortProblem::NotAPort, name(), EINVAL);
  }
  if (flock(lock_, LOCK_EX | LOCK_NB) != 0) throw PortError(PortProblem::Taken, name(), errno);
  if (!lines_.permit(true)) throw PortError(PortProblem::NotPermitted, name(), errno);
}

void DirectPort::take() {
  taken_ = true;
  begin();
}

bool DirectPort::giveBack() noexcept {
  if (!taken_) return true;
  taken_ = false;
  return switchOff();
}

}  // namespace kestrel::ports
