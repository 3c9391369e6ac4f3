#include "platform/output_buffer.h"

#include <limits.h>
#include <poll.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/polled_io.h"
#include "platform/runtime_error.h"

namespace kestrel {
namespace {

constexpr int kStepMs = 50;  // a signal cuts it short

}  // namespace

OutputBuffer::OutputBuffer(const std::filesystem::path& path, const StopSwitch& stop)
    : OutputBuffer(openNew(path, &stop), path.string(), stop) {
  if (!file_.isOpen()) throw FileError("write", name_, errno);
}

OutputBuffer::OutputBuffer(Descriptor file, std::string name, const StopSwitch& stop)
    : name_(std::move(name)), file_(std::move(file)), stop_(stop) {
  setp(text_.data(), text_.data() + text_.size());
  struct stat status {};
  if (!file_.isOpen()) return;  // errno tells why and has to last
  isRegular_ = ::fstat(file_.number(), &status) == 0 && S_ISREG(status.st_mode);
}

OutputBuffer::~OutputBuffer() { sync(); }

void OutputBuffer::finish() {
  sync();
  if (error_ != 0) throw FileError("write", name_, error_);
}

OutputBuffer::int_type OutputBuffer::overflow(int_type next) {
  if (sync() != 0) return traits_type::eof();
  if (!traits_type::eq_int_type(next, traits_type::eof())) sputc(traits_type::to_char_type(next));
  return traits_type::not_eof(next);
}

int OutputBuffer::sync() {
  write({pbase(), pptr()});
  setp(text_.data(), text_.data() + text_.size());
  return error_ == 0 ? 0 : -1;
}

bool OutputBuffer::isReady() const {
  pollfd waited{.fd = file_.number(), .events = POLLOUT, .revents = 0};
  while (::poll(&waited, 1, 0) <= 0) {
    if (stop_.isThrown()) return false;
    if (::poll(&waited, 1, kStepMs) == 0) stop_.stillWaiting();
  }
  return true;
}

std::streamsize OutputBuffer::xsputn(const char* text, std::streamsize size) {
  const auto bytes = static_cast<std::size_t>(size);
  if (bytes < text_.size()) return std::streambuf::xsputn(text, size);
  sync();
  write({text, bytes});
  return error_ == 0 ? size : 0;
}

// A pipe that is ready takes PIPE_BUF bytes without waiting; a file never keeps anybody waiting.
void OutputBuffer::write(std::span<const char> text) {
  while (!text.empty() && error_ == 0) {
    if (!isRegular_ && !isReady()) {
      error_ = EINTR;
      return;
    }
    const std::size_t most =
        isRegular_ ? text.size() : std::min<std::size_t>(text.size(), PIPE_BUF);
    const ssize_t written = ::write(file_.number(), text.data(), most);
    if (written > 0) text = text.subspan(static_cast<std::size_t>(written));
    if (written < 0 && errno != EAGAIN && errno != EINTR) error_ = errno;
  }
}

}  // namespace kestrel
