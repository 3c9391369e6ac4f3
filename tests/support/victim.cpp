#include "support/victim.h"

#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <map>

#include "hardware/ports/lpt_filter.h"
#include "hardware/ports/real_ports.h"
#include "hardware/ports/signal_stop.h"
#include "support/child.h"
#include "support/form_rig.h"
#include "support/stand_in_kernel.h"

namespace kestrel::test {
namespace {

using namespace std::chrono_literals;
using Time = std::chrono::steady_clock;

/// The form ready to press Program. It is started once, on the simulated port; every victim
/// inherits it and goes on with its own real port to the same board.
struct Program : BoardOnBench {
  explicit Program(sim::Model model) : BoardOnBench(model) {
    turnout.connect(0x378, port);
    start(rig);
    insert("27C256");
    rig.select("Eprom 27C256");
    rig.openImage(randomBytes(32768, 51));
    rig.controls.Voltage_button[1].press();
  }
  ports::LptFilter turnout;
  StopSwitch stop;
  FormRig rig{turnout, port, {.stop = &stop}};
};

/// Writes all down before it reaches the simulated board.
struct TapedLines final : PortAccess {
  TapedLines(Tape& itsTape, PortAccess& itsBoard) : tape(itsTape), board(itsBoard) {}
  void PortOut(std::int16_t port, std::uint8_t value) override {
    tape.write(port - 0x378, value);
    board.PortOut(port, value);
  }
  std::uint8_t PortIn(std::int16_t port) override { return board.PortIn(port); }

  Tape& tape;
  PortAccess& board;
};

Program& readyProgram(sim::Model model) {
  static std::map<sim::Model, Program> ready;
  return ready.try_emplace(model, model).first->second;
}

// From the port's claim to the shut-down as the programs do it.
[[noreturn]] void run(Program& program, Tape& tape, int tapeFile, std::chrono::microseconds runsFor,
                      const std::function<void(Tape&)>& end) {
  constexpr rlimit kNoCore{0, 0};
  setrlimit(RLIMIT_CORE, &kNoCore);
  setpgid(0, 0);
  std::signal(SIGINT, SIG_DFL);  // however the tests were started
  ports::switchOffOnCrash();
  const ports::SignalStop signals(program.stop);
  TapedLines lines(tape, program.port);
  StandInKernel kernel;
  kernel.takesNotes = false;
  kernel.devices["/dev/parport0"] = {.lines = &lines, .file = tapeFile};
  auto ports = std::make_unique<ports::RealPorts>(
      kernel,
      ports::PortOptions{
          {ports::parsePortChoice("378=/dev/parport0")}, "/nowhere", "/nowhere", TAPE_GUARD});
  // On a busy machine the guard may not be ready within its limit, and the port is refused.
  while (!ports->holdsPort(0x378)) ports->takeMissing();
  program.turnout.connect(0x378, ports->port());
  tape.isRunning = true;
  const auto endsAt = Time::now() + (end ? runsFor : 10s);
  kernel.onAccess = [&] {
    // An access a microsecond, as on a real port.
    for (const auto from = Time::now(); Time::now() < from + 1us;) continue;
    if (Time::now() < endsAt || program.board->vppPins() == 0) return;
    end ? end(tape) : _exit(98);
  };
  int error = 0;
  while (!signals.isEndRequested() && error == 0) {
    program.rig.program();
    std::sscanf(program.rig.log().back().c_str(), "Run-time error %d", &error);
  }
  program.rig.form.Form_Unload();
  ports.reset();
  _exit(error != 0 ? error : signals.exitStatus());
}

bool awaitAll(std::chrono::milliseconds limit) {
  const auto end = Time::now() + limit;
  while (Time::now() < end) {
    if (waitpid(-1, nullptr, WNOHANG) < 0) return true;
    usleep(100);
  }
  return false;
}

}  // namespace

int Tape::switchOffsAtEnd() const {
  constexpr std::array<std::uint16_t, 7> kSequence{0x040, 0x205, 0x204, 0x205, 0x20A, 0x20B, 0x20A};
  int found = 0;
  for (std::size_t end = written; end >= oldest() + kSequence.size(); ++found) {
    end -= kSequence.size();
    for (std::size_t i = 0; i < kSequence.size(); ++i) {
      if (entry(end + i) != kSequence.at(i)) return found;
    }
  }
  return found;
}

Death dieWhileProgramming(sim::Model model, std::chrono::microseconds runsFor,
                          const std::function<void(int process)>& kill,
                          const std::function<void(Tape&)>& end) {
  // The guard, left behind by its program, becomes this process's child: it can be waited for.
  prctl(PR_SET_CHILD_SUBREAPER, 1);
  Program& ready = readyProgram(model);
  const int tapeFile = Tape::makeFile();
  Tape* const tape = Tape::map(tapeFile);
  const pid_t program = fork();
  if (program == 0) run(ready, *tape, tapeFile, runsFor, end);
  while (!tape->isRunning) usleep(50);
  if (kill) usleep(static_cast<useconds_t>(runsFor.count()));
  const std::size_t moment = tape->written;
  if (kill) kill(program);
  const auto killed = Time::now();
  Death death;
  death.end = endOf(program);
  death.endedInTime = awaitAll(1s);
  death.guardTook = std::chrono::duration_cast<std::chrono::microseconds>(Time::now() - killed);
  sim::Bench bench;
  const sim::Board& board = bench.plug(model, 0x378);
  for (std::size_t i = tape->oldest(); i < tape->written; ++i) {
    bench.portOut(static_cast<std::uint16_t>(0x378 + (tape->entry(i) >> 8)),
                  static_cast<std::uint8_t>(tape->entry(i) & 0xFF));
    if (i + 1 == moment) death.wasUnderVpp = board.vppPins() != 0;
  }
  death.latch0 = board.latch(0);
  death.vppPins = board.vppPins();
  death.switchOffs = tape->switchOffsAtEnd();
  munmap(tape, sizeof(Tape));
  close(tapeFile);
  return death;
}

}  // namespace kestrel::test
