#include "app/window/end_signals.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <csignal>

namespace kestrel {
namespace {

constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP};

// A signal handler may do no more than write a byte; the event loop hears of it from the pipe.
std::array<int, 2> pipeEnds{-1, -1};

void wake(int) {
  const char byte = 0;
  [[maybe_unused]] const ssize_t ignored = ::write(pipeEnds[1], &byte, 1);
}

}  // namespace

EndSignals::EndSignals(std::function<void()> end) {
  if (::pipe2(pipeEnds.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
  notifier_ = std::make_unique<QSocketNotifier>(pipeEnds[0], QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                   [end = std::move(end)] {
                     char byte = 0;
                     while (::read(pipeEnds[0], &byte, 1) > 0) {
                     }
                     end();
                   });
  for (const int signal : kSignals) std::signal(signal, wake);
}

EndSignals::~EndSignals() {
  for (const int signal : kSignals) std::signal(signal, SIG_DFL);
  notifier_.reset();
  for (int& end : pipeEnds) {
    if (end != -1) ::close(end);
    end = -1;
  }
}

}  // namespace kestrel
