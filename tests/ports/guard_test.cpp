#include "hardware/ports/guard.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>

#include "hardware/ports/parport_device.h"
#include "hardware/ports/signal_stop.h"
#include "support/victim.h"

namespace kestrel {
namespace {

using namespace std::chrono_literals;
using test::Death;

constexpr std::array kModels{sim::Model::kestrel4, sim::Model::kestrel5, sim::Model::kestrel6};

void expectSafe(const Death& death, int end, const std::string& how) {
  EXPECT_TRUE(death.endedInTime) << how << ": the guard did not end";
  EXPECT_EQ(death.latch0, 0x40) << how;
  EXPECT_EQ(death.vppPins, 0U) << how;
  EXPECT_EQ(death.end, end) << how;
}

class Killed : public testing::TestWithParam<int> {};

TEST_P(Killed, programLeavesTheBoardOffAtAnyMoment) {
  const int number = GetParam();
  const bool endsInOrder = number == SIGTERM || number == SIGINT || number == SIGHUP;
  std::mt19937 random(static_cast<unsigned>(number));
  std::uniform_int_distribution<int> moment(0, 8'000);
  int underVpp = 0;
  for (int i = 0; i < 100; ++i) {
    const auto runsFor = std::chrono::microseconds(moment(random));
    // To the whole process group, as the terminal does it.
    const Death death = test::dieWhileProgramming(
        kModels[static_cast<std::size_t>(i) % kModels.size()], runsFor,
        [number](int process) { kill(-process, number); }, nullptr);
    expectSafe(death, endsInOrder ? 128 + number : -number,
               "after " + std::to_string(runsFor.count()) + " us");
    underVpp += death.wasUnderVpp ? 1 : 0;
  }
  EXPECT_GT(underVpp, 20) << "of a hundred";
}

INSTANTIATE_TEST_SUITE_P(EverySignal, Killed,
                         testing::Values(SIGTERM, SIGINT, SIGHUP, SIGABRT, SIGSEGV, SIGKILL),
                         [](const auto& signal) { return sigabbrev_np(signal.param); });

unsigned overflowStack(unsigned depth) {
  volatile char frame[4096];
  frame[depth % sizeof frame] = 1;
  return depth == ~0U ? 0 : overflowStack(depth + 1) + static_cast<unsigned>(frame[0]);
}

TEST(Ended, programLeavesTheBoardOff) {
  const struct {
    const char* name;
    void (*how)();
    int end, switchOffs;  // a crash has the guard switch off before the program is gone, and after
  } cases[]{{"without a word", [] { _exit(7); }, 7, 1},
            {"an uncaught exception", [] { throw std::runtime_error(""); }, -SIGABRT, 2},
            {"a stack overflow", [] { _exit(static_cast<int>(overflowStack(0))); }, -SIGSEGV, 2},
            {"Ctrl-\\", [] { raise(SIGQUIT); }, -SIGQUIT, 2}};
  for (const auto& [name, how, end, switchOffs] : cases) {
    const Death death = test::dieWhileProgramming(sim::Model::kestrel5, 50ms, nullptr, how);
    expectSafe(death, end, name);
    EXPECT_EQ(death.switchOffs, switchOffs) << name;
  }
}

TEST(Guard, holdsNothingDoesNothingAndGoesAfterAGoodBye) {
  test::Tape* const tape = test::Tape::make();
  test::StandInKernel kernel;
  kernel.devices["/dev/parport0"].lines = tape;
  ports::ParportDevice port(kernel, "/dev/parport0", 0x378);
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  auto guard = std::make_unique<ports::Guard>(port);
  const pid_t process = guard->process();
  close(ends[1]);
  pollfd hangUp{.fd = ends[0], .events = 0, .revents = 0};
  EXPECT_EQ(poll(&hangUp, 1, 5'000), 1) << "the guard holds the other end of the pipe";
  guard.reset();
  EXPECT_EQ(kill(process, 0), -1) << "still there";
  EXPECT_EQ(tape->written, 0U);
  const ports::Guard second(port);
  kill(second.process(), SIGKILL);
  ports::alarmGuards();  // must not end this program
}

// What a program of its own ends with: its exit status, or the signal as a negative number.
int endOf(const std::function<int(const StopSwitch&, const ports::SignalStop&)>& program) {
  const pid_t process = fork();
  if (process == 0) {
    StopSwitch stop;
    const ports::SignalStop signals(stop);
    _exit(program(stop, signals));
  }
  int status = 0;
  waitpid(process, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

TEST(SignalStop, throwsTheSwitchFirstAndEndsTheProgramThen) {
  const auto stopped = [](const StopSwitch& stop, const ports::SignalStop& signals) {
    raise(SIGTSTP);  // ignored: no sleep with a voltage on
    if (signals.isEndRequested()) return 1;
    raise(SIGHUP);
    pollfd wait{.fd = signals.descriptor(), .events = POLLIN, .revents = 0};
    return stop.isThrown() && poll(&wait, 1, 0) == 1 ? signals.exitStatus() : 0;
  };
  EXPECT_EQ(endOf(stopped), 129);
  EXPECT_EQ(endOf([](const auto&...) { return raise(SIGINT) + raise(SIGTERM); }), -SIGTERM);
  std::signal(SIGHUP, SIG_IGN);
  EXPECT_EQ(endOf(stopped), 0) << "nohup";
  std::signal(SIGHUP, SIG_DFL);
}

}  // namespace
}  // namespace kestrel
