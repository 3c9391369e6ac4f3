#include "hardware/ports/signal_stop.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace kestrel {
namespace {

// Runs in a process of its own, whose signals are its own; its wait status.
int statusOf(const std::function<int()>& program) {
  const pid_t process = fork();
  if (process == 0) _exit(program());
  int status = 0;
  waitpid(process, &status, 0);
  return status;
}

int exitOf(const std::function<int()>& program) {
  const int status = statusOf(program);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

bool isReadable(int descriptor) {
  pollfd wait{.fd = descriptor, .events = POLLIN, .revents = 0};
  return poll(&wait, 1, 0) == 1;
}

class StopSignal : public testing::TestWithParam<int> {};

TEST_P(StopSignal, throwsTheSwitchAndAsksForTheEnd) {
  EXPECT_EQ(exitOf([] {
              StopSwitch stop;
              const SignalStop signals(stop);
              if (signals.isEndRequested() || isReadable(signals.descriptor())) return 1;
              raise(GetParam());
              if (!stop.isThrown() || !isReadable(signals.descriptor())) return 2;
              return signals.exitStatus();
            }),
            128 + GetParam());
}

TEST_P(StopSignal, endsTheProgramTheSecondTime) {
  EXPECT_EQ(exitOf([] {
              StopSwitch stop;
              const SignalStop signals(stop);
              raise(SIGINT);
              raise(GetParam());
              return 0;
            }),
            -GetParam());
}

INSTANTIATE_TEST_SUITE_P(Each, StopSignal, testing::Values(SIGINT, SIGTERM, SIGHUP),
                         [](const auto& signal) { return sigabbrev_np(signal.param); });

TEST(SignalStop, endsAWaitForTheTerminal) {
  EXPECT_EQ(exitOf([] {
              StopSwitch stop;
              const SignalStop signals(stop);
              int ends[2];
              if (pipe(ends) != 0) return 1;
              const pid_t program = getpid();
              if (fork() == 0) {
                usleep(20'000);
                _exit(kill(program, SIGINT));
              }
              char nothing = 0;
              return read(ends[0], &nothing, 1) == -1 ? signals.exitStatus() : 2;
            }),
            130);
}

TEST(SignalStop, leavesAnIgnoredHangUpIgnored) {
  EXPECT_EQ(exitOf([] {
              signal(SIGHUP, SIG_IGN);
              StopSwitch stop;
              const SignalStop signals(stop);
              raise(SIGHUP);
              raise(SIGTSTP);  // no sleep with a voltage on
              return stop.isThrown() ? 1 : 0;
            }),
            0);
}

TEST(SignalStop, givesTheSignalsBack) {
  EXPECT_EQ(exitOf([] {
              StopSwitch stop;
              { const SignalStop signals(stop); }
              raise(SIGTERM);
              return 0;
            }),
            -SIGTERM);
}

}  // namespace
}  // namespace kestrel
