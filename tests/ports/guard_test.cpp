#include "hardware/ports/guard.h"

#include <gmock/gmock.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <functional>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include "hardware/ports/parport_device.h"
#include "hardware/ports/signal_stop.h"
#include "support/child.h"
#include "support/port_script.h"
#include "support/stand_in_kernel.h"
#include "support/temporary_folder.h"
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
                         testing::Values(SIGTERM, SIGINT, SIGHUP, SIGABRT, SIGSEGV, SIGQUIT,
                                         SIGKILL),
                         [](const auto& signal) { return sigabbrev_np(signal.param); });

unsigned overflowStack(unsigned depth) {
  volatile char frame[4096];
  frame[depth % sizeof frame] = 1;
  return depth == ~0U ? 0 : overflowStack(depth + 1) + static_cast<unsigned>(frame[0]);
}

// The guard has switched off when the program, which could not, comes to itself.
void standStillOnce(const test::Tape& tape) {
  static bool hasStood = false;
  if (std::exchange(hasStood, true)) return;
  std::this_thread::sleep_for(2'300ms);
  if (tape.switchOffsAtEnd() != 0) _exit(90);  // a wait of the procedures may be as long
  std::this_thread::sleep_for(900ms);
  if (tape.switchOffsAtEnd() != 1) _exit(91);
}

TEST(Ended, programLeavesTheBoardOff) {
  const struct {
    const char* name;
    void (*how)(test::Tape&);
    int end, switchOffs;  // a crash has the guard switch off before the program is gone, and after
  } cases[]{{"without a word", [](auto&) { _exit(7); }, 7, 1},
            {"an uncaught exception", [](auto&) { throw std::runtime_error(""); }, -SIGABRT, 2},
            {"a stack overflow", [](auto&) { _exit(overflowStack(0) != 0); }, -SIGSEGV, 2},
            {"the port fails", [](auto& tape) { tape.guardFailures = 99, _exit(7); }, 7, 1},
            {"a standstill", [](auto& tape) { standStillOnce(tape); }, 57, 1}};
  for (const auto& [name, how, end, switchOffs] : cases) {
    const Death death = test::dieWhileProgramming(sim::Model::kestrel5, 50ms, nullptr, how);
    expectSafe(death, end, name);
    EXPECT_EQ(death.switchOffs, switchOffs) << name;
  }
}

TEST(Guard, holdsNothingDoesNothingAndGoesAfterAGoodBye) {
  test::StandInKernel kernel;
  const int tapeFile = test::Tape::makeFile();
  kernel.devices["/dev/parport0"].file = tapeFile;
  ports::ParportDevice port(kernel, "/dev/parport0", 0x378);
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  auto guard = std::make_unique<ports::Guard>(port, TAPE_GUARD);
  const pid_t process = guard->process();
  close(ends[1]);
  pollfd hangUp{.fd = ends[0], .events = 0, .revents = 0};
  EXPECT_EQ(poll(&hangUp, 1, 5'000), 1) << "the guard holds the other end of the pipe";
  guard->dismiss();
  EXPECT_EQ(kill(process, 0), -1) << "still there";
  EXPECT_EQ(test::Tape::map(tapeFile)->written, 0U);
}

TEST(Guard, thatIsKilledOrDoesNotWorkIsNoticed) {
  test::StandInKernel kernel;
  test::PortScript lines;
  kernel.devices["/dev/parport0"].lines = &lines;
  ports::ParportDevice port(kernel, "/dev/parport0", 0x378);
  const auto use = [&] {
    for (int i = 0; i < 300; ++i) port.PortOut(0x378, 0);
  };
  {
    const ports::Guard guard(port, TAPE_GUARD);
    port.take();
    use();
    kill(guard.process(), SIGKILL);
    siginfo_t end;
    waitid(P_PID, static_cast<id_t>(guard.process()), &end, WEXITED | WNOWAIT);
    ports::alarmGuards();  // must not end this program
    EXPECT_THROW(use(), RuntimeError);
    EXPECT_TRUE(port.isGone());
    use();  // the board can be put to rest
  }
  const test::TemporaryFolder folder;
  const std::string silent = (folder / "guard").string();
  std::ofstream(silent) << "#!/bin/sh\nexec sleep 60\n";
  std::filesystem::permissions(silent, std::filesystem::perms::owner_all);
  for (const auto& [program, reason] : {std::pair(silent, "not ready within 2 s"),
                                        {"/bin/true", "ended at once"},
                                        {"/nowhere", "No such file"}}) {
    EXPECT_THAT([&] { ports::Guard(port, program); },
                testing::ThrowsMessage<RuntimeError>(testing::HasSubstr(reason)));
    EXPECT_NE(::waitpid(-1, nullptr, WNOHANG), 0) << "a guard was left behind";
  }
}

int endOf(const std::function<int(const StopSwitch&, const ports::SignalStop&)>& program) {
  return test::endOf([&] {
    StopSwitch stop;
    const ports::SignalStop signals(stop);
    return program(stop, signals);
  });
}

TEST(SignalStop, throwsTheSwitchFirstAndEndsTheProgramThen) {
  std::signal(SIGINT, SIG_DFL);  // however the tests were started
  const auto stopped = [](const StopSwitch& stop, const ports::SignalStop& signals) {
    raise(SIGTSTP), raise(SIGTTOU), raise(SIGTTIN);  // no sleep with a voltage on
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
  std::signal(SIGINT, SIG_IGN);
  EXPECT_EQ(endOf([](const auto&...) { return raise(SIGINT); }), 0) << "in a script's background";
  std::signal(SIGINT, SIG_DFL);
}

}  // namespace
}  // namespace kestrel
