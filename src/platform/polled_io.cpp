#include "platform/polled_io.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>

#include <cerrno>

#include "platform/file_attributes.h"
#include "platform/file_names.h"
#include "platform/runtime_error.h"

namespace kestrel {
namespace {

// A signal cuts a step short; its length is for a stop that comes from another thread.
constexpr int kStepMs = 50;

void endIfStopped(const StopSwitch* stop) {
  if (stop != nullptr && stop->isThrown()) throw OperationStopped();
}

bool isPipe(const std::filesystem::path& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
}

/// Waits for one step. False when a signal has come and there is no switch that tells its meaning.
bool mayGoOn(pollfd* waited, const StopSwitch* stop) {
  endIfStopped(stop);
  const int ready = ::poll(waited, waited == nullptr ? 0 : 1, kStepMs);
  if (ready == 0 && stop != nullptr) stop->stillWaiting();
  return ready >= 0 || errno != EINTR || stop != nullptr;
}

Descriptor openPolled(const std::filesystem::path& path, int access, const StopSwitch* stop) {
  for (;;) {
    const int number =
        ::open(path.c_str(), access | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, kNewFileMode);
    if (number >= 0) return Descriptor(number);
    // A pipe has no reader yet (ENXIO), or a file server has yet to give its lease back (EAGAIN).
    const int error = errno;
    const bool comes = error == EAGAIN || (error == ENXIO && isPipe(path));
    errno = error;
    if (!comes || !mayGoOn(nullptr, stop)) return Descriptor();
  }
}

Descriptor another(int standard) {
  return Descriptor(::fcntl(standard, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

/// After a read or a write: the file was not ready after all, or a network disk was interrupted.
bool isToBeTriedAgain() { return errno == EAGAIN || errno == EINTR; }

/// True when the file is ready, or is at its end or in error.
bool isReady(const Descriptor& file, short event, const StopSwitch* stop) {
  pollfd waited{.fd = file.number(), .events = event, .revents = 0};
  while (waited.revents == 0) {
    if (!mayGoOn(&waited, stop)) return false;
  }
  return true;
}

}  // namespace

Descriptor openToRead(const std::filesystem::path& path, const StopSwitch* stop) {
  if (path == kStandardInput) return another(STDIN_FILENO);
  return openPolled(path, O_RDONLY, stop);
}

Descriptor openToWrite(const std::filesystem::path& path, const StopSwitch* stop) {
  if (path == kStandardOutput) return another(STDOUT_FILENO);
  return openPolled(path, O_WRONLY, stop);
}

Descriptor openNew(const std::filesystem::path& path, const StopSwitch* stop) {
  std::error_code ignored;
  const bool isThere = std::filesystem::exists(path, ignored);
  Descriptor file = openPolled(path, O_WRONLY | O_CREAT | O_TRUNC, stop);
  if (!isThere && file.isOpen()) giveToOwnerOf(folderOf(path), file);
  return file;
}

ssize_t readSome(const Descriptor& file, std::span<std::uint8_t> bytes, const StopSwitch* stop) {
  while (isReady(file, POLLIN, stop)) {
    const ssize_t count = ::read(file.number(), bytes.data(), bytes.size());
    if (count >= 0 || !isToBeTriedAgain()) return count;
  }
  return -1;
}

int writeAll(const Descriptor& file, std::span<const std::uint8_t> bytes, const StopSwitch* stop) {
  while (!bytes.empty()) {
    if (!isReady(file, POLLOUT, stop)) return EINTR;
    const ssize_t written = ::write(file.number(), bytes.data(), bytes.size());
    if (written < 0 && !isToBeTriedAgain()) return errno;
    if (written > 0) bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
  return 0;
}

}  // namespace kestrel
