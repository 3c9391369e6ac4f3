#include "link/serial_line.h"

#include <fcntl.h>
#include <linux/serial.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "link/link_error.h"

namespace kestrel::link {
namespace {

// An adapter takes 100,000 bytes a second; a line that takes none for so long is dead.
constexpr std::chrono::milliseconds kWriteLimit{2000};

LinkProblem problemOfOpen(int errorNumber) {
  switch (errorNumber) {
    case EACCES:
    case EPERM:
      return LinkProblem::NoPermission;
    case EBUSY:
      return LinkProblem::Taken;
    case ENOENT:
    case ENXIO:
    case ENODEV:
      return LinkProblem::NoDevice;
    default:
      return LinkProblem::NotASerialLine;
  }
}

int openDevice(const std::string& device) {
  for (;;) {
    const int descriptor = ::open(device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor >= 0) return descriptor;
    if (errno == EINTR) continue;
    throw LinkError(problemOfOpen(errno), device + ": " + std::strerror(errno));
  }
}

// FTDI converters gather for 16 ms otherwise. Others do not know the request.
void askForLowLatency(int descriptor) {
  serial_struct settings{};
  if (::ioctl(descriptor, TIOCGSERIAL, &settings) != 0) return;
  settings.flags |= static_cast<int>(ASYNC_LOW_LATENCY);
  static_cast<void>(::ioctl(descriptor, TIOCSSERIAL, &settings));
}

}  // namespace

SerialLine::SerialLine(const std::string& device)
    : device_(device), descriptor_(openDevice(device)) {
  try {
    takeAlone();
    setUp();
  } catch (...) {
    ::close(descriptor_);
    throw;
  }
}

SerialLine::~SerialLine() {
  static_cast<void>(::ioctl(descriptor_, TIOCNXCL));
  ::close(descriptor_);
}

// The kernel's own exclusive mode does not keep root out; the lock is for programs that heed it.
void SerialLine::takeAlone() {
  if (::isatty(descriptor_) == 0) {
    throw LinkError(LinkProblem::NotASerialLine, device_ + " is no serial line");
  }
  if (::flock(descriptor_, LOCK_EX | LOCK_NB) != 0) {
    throw LinkError(LinkProblem::Taken, device_ + " is in use by another program");
  }
  static_cast<void>(::ioctl(descriptor_, TIOCEXCL));
}

void SerialLine::setUp() {
  termios settings{};
  bool isSet = ::tcgetattr(descriptor_, &settings) == 0;
  ::cfmakeraw(&settings);
  settings.c_cflag |= CLOCAL | CREAD;
  settings.c_cflag &= ~(HUPCL | CRTSCTS | CSTOPB);
  isSet = isSet && ::cfsetspeed(&settings, B1000000) == 0 &&
          ::tcsetattr(descriptor_, TCSANOW, &settings) == 0;
  if (!isSet) {
    throw LinkError(LinkProblem::NotASerialLine, device_ + " cannot be set to 1 Mbaud");
  }
  askForLowLatency(descriptor_);
  ::tcflush(descriptor_, TCIOFLUSH);
}

void SerialLine::failGone() const {
  throw LinkError(LinkProblem::Gone, device_ + ": the adapter is gone");
}

bool SerialLine::waitFor(short events, std::chrono::milliseconds limit) {
  pollfd watched{.fd = descriptor_, .events = events, .revents = 0};
  const int ready = ::poll(&watched, 1, static_cast<int>(limit.count()));
  if (ready < 0 && errno != EINTR) failGone();
  return ready > 0;
}

void SerialLine::write(std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
    if (written > 0) {
      bytes = bytes.subspan(static_cast<std::size_t>(written));
    } else if (written == 0 || errno == EAGAIN) {
      if (!waitFor(POLLOUT, kWriteLimit)) failGone();
    } else if (errno != EINTR) {
      failGone();
    }
  }
}

std::size_t SerialLine::read(std::span<std::uint8_t> bytes, std::chrono::milliseconds limit) {
  if (!waitFor(POLLIN, limit)) return 0;
  const ssize_t count = ::read(descriptor_, bytes.data(), bytes.size());
  if (count > 0) return static_cast<std::size_t>(count);
  if (count < 0 && (errno == EAGAIN || errno == EINTR)) return 0;
  failGone();  // a line that is ready to be read and gives nothing has no other end any more
}

void SerialLine::writeUrgently(std::uint8_t value) noexcept {
  const int savedError = errno;
  ::tcflush(descriptor_, TCOFLUSH);
  static_cast<void>(!::write(descriptor_, &value, 1));
  errno = savedError;
}

}  // namespace kestrel::link
