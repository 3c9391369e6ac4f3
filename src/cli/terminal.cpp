#include "cli/terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace kestrel::cli {

// Opened anew: the flag not to wait belongs to the open file, which the shell shares. A terminal of
// another user cannot be opened again; then what poll() says must do.
Terminal::Terminal()
    : descriptor_(::open("/proc/self/fd/2", O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)) {}

Terminal::~Terminal() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

bool Terminal::writePiece(std::string_view& text) const {
  const int descriptor = descriptor_ >= 0 ? descriptor_ : STDERR_FILENO;
  pollfd ready{.fd = descriptor, .events = POLLOUT, .revents = 0};
  if (::poll(&ready, 1, 0) != 1 || (ready.revents & POLLOUT) == 0) return false;
  const ssize_t written = ::write(descriptor, text.data(), text.size());
  if (written <= 0) return false;
  text.remove_prefix(static_cast<std::size_t>(written));
  return true;
}

void Terminal::write(std::string_view text) {
  std::string_view rest = left_;
  while (!rest.empty() && writePiece(rest)) continue;
  left_ = std::string(rest);
  if (!left_.empty()) return;
  rest = text;
  while (!rest.empty() && writePiece(rest)) continue;
  if (rest.size() < text.size()) left_ = rest;
}

}  // namespace kestrel::cli
