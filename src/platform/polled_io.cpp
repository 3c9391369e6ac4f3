#include "platform/polled_io.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>

#include <cerrno>

#include "platform/runtime_error.h"

namespace kestrel {
namespace {

// A signal cuts a wait short; the step is for a stop that comes from another thread.
constexpr int kStepMs = 50;

void endIfStopped(const StopSwitch* stop) {
  if (stop != nullptr && stop->isThrown()) throw OperationStopped();
}

bool isPipe(const std::filesystem::path& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
}

Descriptor openPolled(const std::filesystem::path& path, int access, const StopSwitch* stop) {
  for (;;) {
    endIfStopped(stop);
    const int number = ::open(path.c_str(), access | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (number >= 0) return Descriptor(number);
    // A pipe has no reader yet (ENXIO), or a file server has yet to give its lease back (EAGAIN).
    const int error = errno;
    const bool comes = error == EINTR || error == EAGAIN || (error == ENXIO && isPipe(path));
    if (!comes) {
      errno = error;
      return Descriptor();
    }
    ::poll(nullptr, 0, kStepMs);
  }
}

/// Returns when the file is ready, or has an end or an error to tell.
void waitFor(const Descriptor& file, short event, const StopSwitch* stop) {
  for (;;) {
    endIfStopped(stop);
    pollfd waited{.fd = file.number(), .events = event, .revents = 0};
    if (::poll(&waited, 1, kStepMs) > 0) return;
  }
}

bool isToBeTriedAgain(int error) { return error == EINTR || error == EAGAIN; }

}  // namespace

Descriptor openToRead(const std::filesystem::path& path, const StopSwitch* stop) {
  return openPolled(path, O_RDONLY, stop);
}

Descriptor openToWrite(const std::filesystem::path& path, const StopSwitch* stop) {
  return openPolled(path, O_WRONLY, stop);
}

ssize_t readSome(const Descriptor& file, std::span<std::uint8_t> bytes, const StopSwitch* stop) {
  for (;;) {
    waitFor(file, POLLIN, stop);
    const ssize_t count = ::read(file.number(), bytes.data(), bytes.size());
    if (count >= 0 || !isToBeTriedAgain(errno)) return count;
  }
}

int writeAll(const Descriptor& file, std::span<const std::uint8_t> bytes, const StopSwitch* stop) {
  while (!bytes.empty()) {
    waitFor(file, POLLOUT, stop);
    const ssize_t written = ::write(file.number(), bytes.data(), bytes.size());
    if (written < 0 && !isToBeTriedAgain(errno)) return errno;
    if (written > 0) bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
  return 0;
}

}  // namespace kestrel
