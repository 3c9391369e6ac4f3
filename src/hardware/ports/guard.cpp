#include "hardware/ports/guard.h"

#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <ctime>

namespace kestrel::ports {
namespace {

constexpr char kReady = 'r';
constexpr char kGoodBye = 'q';
constexpr char kAlarm = '!';

// The links of the guards that stand: what a signal handler, which has no argument, can reach.
std::array<std::atomic<int>, 8> standingLinks{-1, -1, -1, -1, -1, -1, -1, -1};

void replaceLink(int before, int after) noexcept {
  for (std::atomic<int>& each : standingLinks) {
    int expected = before;
    if (each.compare_exchange_strong(expected, after)) return;
  }
}

constexpr int kGone = -1;

// The next word from the other end, or kGone.
int hear(int link) noexcept {
  for (;;) {
    char word = 0;
    const ssize_t got = ::read(link, &word, 1);
    if (got == 1) return word;
    if (got == 0 || errno != EINTR) return kGone;
  }
}

// From here to the end of watch(): the guard process. The program may have had other threads when
// it was forked, so only async-signal-safe calls are allowed.

void closeAllBut(int first, int second) noexcept {
  const auto low = static_cast<unsigned>(std::min(first, second));
  const auto high = static_cast<unsigned>(std::max(first, second));
  if (low > 0) close_range(0, low - 1, 0);
  if (high > low + 1) close_range(low + 1, high - 1, 0);
  close_range(high + 1, ~0U, 0);
}

// The kernel's out-of-memory killer is asked to look elsewhere; only root is heard.
void askToBeSpared() noexcept {
  const int file = ::open("/proc/self/oom_score_adj", O_WRONLY | O_CLOEXEC);
  if (file < 0) return;
  static_cast<void>(!::write(file, "-1000", 5));
  ::close(file);
}

// Ready to act at once, as far as this user may.
void settleDown() noexcept {
  setsid();
  static_cast<void>(!chdir("/"));
  prctl(PR_SET_NAME, kGuardName);
  askToBeSpared();
  mlockall(MCL_CURRENT | MCL_ONFAULT);
  const sched_param lowest{.sched_priority = sched_get_priority_min(SCHED_FIFO)};
  sched_setscheduler(0, SCHED_FIFO, &lowest);
}

[[noreturn]] void watch(int link, RealPort& port) noexcept {
  settleDown();
  closeAllBut(link, port.descriptor() < 0 ? link : port.descriptor());
  send(link, &kReady, 1, MSG_NOSIGNAL);
  for (;;) {
    const int word = hear(link);
    if (word == kGoodBye) _exit(0);
    port.switchOff();
    if (word == kGone) _exit(0);
  }
}

// A fork with every signal blocked: none may reach the program's handlers in the child.
pid_t forkQuietly() noexcept {
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  const pid_t process = fork();
  const int reason = errno;
  if (process != 0) pthread_sigmask(SIG_SETMASK, &before, nullptr);
  errno = reason;
  return process;
}

[[noreturn]] void throwNoGuard() {
  throw RuntimeError(kDeviceUnavailableError,
                     std::string("The guard process cannot be started: ") + std::strerror(errno));
}

// A guard that was stopped by hand must not keep the program from ending.
void awaitEnd(pid_t process) noexcept {
  constexpr std::timespec kPause{.tv_sec = 0, .tv_nsec = 1'000'000};
  for (int i = 0; i < 1000; ++i) {
    const pid_t ended = waitpid(process, nullptr, WNOHANG);
    if (ended == process || (ended < 0 && errno != EINTR)) return;
    nanosleep(&kPause, nullptr);
  }
}

}  // namespace

Guard::Guard(RealPort& port) {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) throwNoGuard();
  process_ = forkQuietly();
  if (process_ == 0) watch(ends[1], port);
  const int reason = errno;
  ::close(ends[1]);
  link_ = ends[0];
  // Ready means: out of reach of what is sent to the program's process group.
  if (process_ < 0 || hear(link_) != kReady) {
    ::close(link_);
    errno = process_ < 0 ? reason : ECHILD;
    throwNoGuard();
  }
  replaceLink(-1, link_);
}

Guard::~Guard() {
  replaceLink(link_, -1);
  // No SIGPIPE: the guard may have been ended by hand.
  send(link_, &kGoodBye, 1, MSG_NOSIGNAL);
  awaitEnd(process_);
  ::close(link_);
}

void alarmGuards() noexcept {
  for (const std::atomic<int>& each : standingLinks) {
    const int link = each.load();
    if (link >= 0) send(link, &kAlarm, 1, MSG_NOSIGNAL | MSG_DONTWAIT);
  }
}

}  // namespace kestrel::ports
