#include "guard/watch.h"

#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace kestrel::guard {
namespace {

using ports::GuardAct;
using ports::GuardMemory;

constexpr char kGone = 0;
constexpr char kSilence = ' ';
constexpr int kLookMs = 250;

void closeAllBut(int first, int second) noexcept {
  const auto low = static_cast<unsigned>(std::min(first, second));
  const auto high = static_cast<unsigned>(std::max(first, second));
  constexpr unsigned kFirstFile = STDERR_FILENO + 1;
  if (low > kFirstFile) close_range(kFirstFile, low - 1, 0);
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
void settleDown(const Post& post) noexcept {
  closeAllBut(post.link, post.port);
  static_cast<void>(!chdir("/"));
  askToBeSpared();
  mlockall(MCL_CURRENT | MCL_ONFAULT);
  const sched_param lowest{.sched_priority = sched_get_priority_min(SCHED_FIFO)};
  sched_setscheduler(0, SCHED_FIFO, &lowest);
  pthread_mutex_lock(&post.memory.duty);
}

// The next word from the program: kSilence when none came in time, kGone when none can come.
char hear(int link) noexcept {
  pollfd wait{.fd = link, .events = POLLIN, .revents = 0};
  if (poll(&wait, 1, kLookMs) <= 0) return kSilence;
  char word = kGone;
  const ssize_t got = ::read(link, &word, 1);
  if (got < 0 && errno == EINTR) return kSilence;
  return got == 1 ? word : kGone;
}

// Not when the program, awake again, has just taken the act back.
void actOnStandstill(const Post& post, GuardAct before) noexcept {
  GuardMemory& memory = post.memory;
  if (!memory.act.compare_exchange_strong(before, GuardAct::SwitchesOff)) return;
  const bool isOff = switchOffWithin(ports::kSwitchOffLimit, post.board);
  if (isOff) memory.isVoltageOn = false;
  memory.act = isOff ? GuardAct::SwitchedOff : GuardAct::Failed;
}

void look(const Post& post, Standstill& standstill) noexcept {
  const GuardAct act = post.memory.act;
  const bool isTooLong = standstill.look(post.memory.accesses, post.memory.isVoltageOn,
                                         std::chrono::steady_clock::now());
  if (isTooLong && act != GuardAct::SwitchedOff) actOnStandstill(post, act);
}

}  // namespace

int watch(const Post& post) noexcept {
  settleDown(post);
  send(post.link, &ports::kReadyWord, 1, MSG_NOSIGNAL);
  Standstill standstill;
  for (;;) {
    const char word = hear(post.link);
    if (word == ports::kGoodByeWord) return 0;
    if (word == kGone) return switchOffWithin(ports::kSwitchOffLimitAlone, post.board) ? 0 : 1;
    if (word == ports::kAlarmWord) switchOffWithin(ports::kSwitchOffLimit, post.board);
    if (word == kSilence) look(post, standstill);
  }
}

}  // namespace kestrel::guard
