#include "hardware/ports/guard.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

namespace kestrel::ports {
namespace {

// The links of the guards that stand: what a signal handler, which has no argument, can reach.
std::array<std::atomic<int>, 8> standingLinks{-1, -1, -1, -1, -1, -1, -1, -1};

void replaceLink(int before, int after) noexcept {
  for (std::atomic<int>& each : standingLinks) {
    int expected = before;
    if (each.compare_exchange_strong(expected, after)) return;
  }
}

[[noreturn]] void throwNoGuard(const std::string& program, const std::string& reason) {
  throw RuntimeError(kDeviceUnavailableError,
                     "The guard process " + program + " cannot be started: " + reason);
}

[[noreturn]] void throwNoGuard(const std::string& program, int errorNumber) {
  throwNoGuard(program, std::strerror(errorNumber));
}

/// How the guard is started: its files, its session, its signals.
class Preparation {
 public:
  Preparation() noexcept {
    posix_spawn_file_actions_init(&files_);
    posix_spawnattr_init(&attributes_);
    sigset_t all;
    sigfillset(&all);
    posix_spawnattr_setsigmask(&attributes_, &all);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
      posix_spawn_file_actions_addopen(&files_, standard, "/dev/null", O_RDWR, 0);
    }
  }
  ~Preparation() {
    posix_spawn_file_actions_destroy(&files_);
    posix_spawnattr_destroy(&attributes_);
  }
  Preparation(const Preparation&) = delete;
  Preparation& operator=(const Preparation&) = delete;

  /// Duplicated onto itself, a file stays open in the program that is started.
  void inherit(int descriptor) noexcept {
    posix_spawn_file_actions_adddup2(&files_, descriptor, descriptor);
  }

  /// 0, or an error number.
  int run(const std::vector<std::string>& words, pid_t& process) const {
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (const std::string& each : words) arguments.push_back(const_cast<char*>(each.c_str()));
    arguments.push_back(nullptr);
    return posix_spawn(&process, arguments[0], &files_, &attributes_, arguments.data(), environ);
  }

 private:
  posix_spawn_file_actions_t files_{};
  posix_spawnattr_t attributes_{};
};

// A guard that was stopped by hand must not keep the program from ending.
void awaitEnd(pid_t process) noexcept {
  constexpr std::timespec kPause{.tv_sec = 0, .tv_nsec = 1'000'000};
  for (int i = 0; i < 1000; ++i) {
    const pid_t ended = waitpid(process, nullptr, WNOHANG);
    if (ended == process || (ended < 0 && errno != EINTR)) return;
    nanosleep(&kPause, nullptr);
  }
}

// True when the link has something to read, or was closed, within the limit.
bool awaitWord(int link, std::chrono::milliseconds limit) noexcept {
  const auto end = std::chrono::steady_clock::now() + limit;
  for (;;) {
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    if (left.count() <= 0) return false;
    pollfd wait{.fd = link, .events = POLLIN, .revents = 0};
    if (poll(&wait, 1, static_cast<int>(left.count())) > 0) return true;
  }
}

}  // namespace

std::filesystem::path guardProgram() {
  std::error_code ignored;
  const auto programs = std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path();
  const auto installed = programs.parent_path() / "libexec" / "kestrel" / kGuardName;
  return std::filesystem::exists(installed, ignored) ? installed : programs / kGuardName;
}

Guard::Guard(RealPort& port, const std::filesystem::path& program) : port_(port) {
  if (shared_.memory() == nullptr) throwNoGuard(program, errno);
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    throwNoGuard(program, errno);
  }
  link_ = ends[0];
  try {
    start(program, ends[1]);
    awaitReady(program);
  } catch (...) {
    ::close(link_);
    throw;
  }
  port_.setGuard(shared_.memory());
  replaceLink(-1, link_);
}

void Guard::start(const std::filesystem::path& program, int guardsEnd) {
  Preparation preparation;
  std::vector<std::string> words{program.string()};
  for (const int descriptor : {guardsEnd, shared_.descriptor(), port_.descriptor()}) {
    preparation.inherit(descriptor);
    words.push_back(std::to_string(descriptor));
  }
  for (std::string& each : port_.guardArguments()) words.push_back(std::move(each));
  const int problem = preparation.run(words, process_);
  ::close(guardsEnd);
  if (problem != 0) throwNoGuard(program, problem);
}

// Ready means: out of reach of what is sent to the program's process group.
void Guard::awaitReady(const std::filesystem::path& program) {
  const bool spoke = awaitWord(link_, kReadyLimit);
  char word = 0;
  if (spoke && ::read(link_, &word, 1) == 1 && word == kReadyWord) return;
  kill(process_, SIGKILL);
  awaitEnd(process_);
  throwNoGuard(program, spoke ? "it ended at once" : "it was not ready within 2 s");
}

void Guard::dismiss() noexcept {
  replaceLink(link_, -1);
  // No SIGPIPE: the guard may have been ended by hand.
  send(link_, &kGoodByeWord, 1, MSG_NOSIGNAL);
  awaitEnd(process_);
}

Guard::~Guard() {
  replaceLink(link_, -1);
  port_.setGuard(nullptr);
  ::close(link_);
}

void alarmGuards() noexcept {
  for (const std::atomic<int>& each : standingLinks) {
    const int link = each.load();
    if (link >= 0) send(link, &kAlarmWord, 1, MSG_NOSIGNAL | MSG_DONTWAIT);
  }
}

}  // namespace kestrel::ports
