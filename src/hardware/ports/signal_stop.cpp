#include "hardware/ports/signal_stop.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>

#include "hardware/ports/guard.h"

namespace kestrel::ports {
namespace {

constexpr std::array kStopSignals{SIGINT, SIGTERM, SIGHUP};
constexpr std::array kSleepSignals{SIGTSTP, SIGTTOU, SIGTTIN};
constexpr std::array kCrashSignals{SIGSEGV, SIGBUS,  SIGILL, SIGFPE, SIGABRT,
                                   SIGTRAP, SIGQUIT, SIGSYS, SIGXCPU};

std::atomic<StopSwitch*> switchToThrow{nullptr};
std::atomic<int> firstSignal{0};
std::atomic<int> wakeUp{-1};
static_assert(std::atomic<StopSwitch*>::is_always_lock_free);

void install(int number, void (*handler)(int), int flags) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = flags;
  sigemptyset(&action.sa_mask);
  sigaction(number, &action, nullptr);
}

// The default is in place again and the signal not blocked, so this ends the program. The guards
// come first, since dying may take its time.
void dieOf(int number) noexcept {
  alarmGuards();
  install(number, SIG_DFL, 0);
  sigset_t only;
  sigemptyset(&only);
  sigaddset(&only, number);
  pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
  raise(number);
}

void stopOrDie(int number) {
  const int reason = errno;
  int none = 0;
  if (!firstSignal.compare_exchange_strong(none, number)) dieOf(number);
  if (StopSwitch* const stop = switchToThrow.load()) stop->endProgram();
  const std::uint64_t once = 1;
  static_cast<void>(!::write(wakeUp.load(), &once, sizeof once));
  errno = reason;
}

void crash(int number) { dieOf(number); }

bool isIgnored(int number) {
  struct sigaction action {};
  sigaction(number, nullptr, &action);
  return action.sa_handler == SIG_IGN;
}

}  // namespace

SignalStop::SignalStop(StopSwitch& stop) : descriptor_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  switchToThrow = &stop;
  firstSignal = 0;
  wakeUp = descriptor_;
  // No SA_RESTART: a wait for the terminal must end too.
  for (const int number : kStopSignals) {
    if (number == SIGTERM || !isIgnored(number)) install(number, stopOrDie, 0);
  }
  for (const int number : kSleepSignals) install(number, SIG_IGN, 0);
}

SignalStop::~SignalStop() {
  for (const int number : kStopSignals) {
    if (!isIgnored(number)) install(number, SIG_DFL, 0);
  }
  for (const int number : kSleepSignals) install(number, SIG_DFL, 0);
  switchToThrow = nullptr;
  wakeUp = -1;
  ::close(descriptor_);
}

int SignalStop::signal() const { return firstSignal; }

void switchOffOnCrash() {
  // A handler cannot run on a stack that has overflowed.
  constexpr std::size_t kStackBytes = 65'536;
  static std::array<char, kStackBytes> stack;
  const stack_t own{.ss_sp = stack.data(), .ss_flags = 0, .ss_size = stack.size()};
  sigaltstack(&own, nullptr);
  for (const int number : kCrashSignals) install(number, crash, SA_ONSTACK);
}

// A file gets the lowest number that is free, which is the missing one.
void openMissingStandardFiles() {
  for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(standard, F_GETFD) < 0) static_cast<void>(!::open("/dev/null", O_RDWR));
  }
}

}  // namespace kestrel::ports
