#include "ports/victim.h"

#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>

#include "hardware/ports/guard.h"
#include "hardware/ports/signal_stop.h"

namespace kestrel::test {
namespace {

using namespace std::chrono_literals;
using Time = std::chrono::steady_clock;

// Control codes that open a latch with its strobe, latches 0 to 4.
constexpr std::array<std::uint8_t, 5> kStrobe4{0x0B, 0x03, 0x09, 0x01, 0x0F};
constexpr std::array<std::uint8_t, 5> kStrobe56{0x04, 0x0C, 0x06, 0x0E, 0x00};

void load(PortAccess& port, std::uint8_t strobe, std::uint8_t value) {
  port.PortOut(0x378, value);
  port.PortOut(0x37A, strobe ^ 1U);
  port.PortOut(0x37A, strobe);
  port.PortOut(0x37A, strobe ^ 1U);
}

// Programming pulses: VPP stays on nearly all the time, on one pin or another.
void pulse(PortAccess& port, sim::Model model, unsigned byte) {
  const auto& strobe = model == sim::Model::kestrel4 ? kStrobe4 : kStrobe56;
  const auto low = static_cast<std::uint8_t>(byte & 0xFFU);
  load(port, strobe[0], (byte & 1U) != 0 ? 0x6C : 0xFF);
  load(port, strobe[2], low);
  load(port, strobe[4], static_cast<std::uint8_t>(~low));
  load(port, strobe[3], 0x00);
  load(port, strobe[3], 0x84);
}

[[noreturn]] void runProgram(Tape& tape, sim::Model model, std::chrono::microseconds runsFor,
                             const std::function<void()>& end) noexcept {
  constexpr rlimit kNoCore{0, 0};
  setrlimit(RLIMIT_CORE, &kNoCore);
  setpgid(0, 0);
  TapeKernel kernel(tape);
  ParportDevice port(kernel, "/dev/parport0", 0x378);
  const Guard guard(port);
  port.take();
  switchOffOnCrash();
  tape.isRunning = true;
  const auto endsAt = Time::now() + (end ? runsFor : 10s);
  for (unsigned byte = 0; Time::now() < endsAt; ++byte) pulse(port, model, byte);
  if (end) end();
  _exit(99);
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
  std::size_t end = written;
  int found = 0;
  while (end >= kSequence.size() && std::equal(kSequence.begin(), kSequence.end(),
                                               entries.begin() + static_cast<long>(end) - 7)) {
    end -= kSequence.size();
    ++found;
  }
  return found;
}

Death dieWhileProgramming(sim::Model model, std::chrono::microseconds runsFor,
                          const std::function<void(int process)>& kill,
                          const std::function<void()>& end) {
  // The guard, left behind by its program, becomes this process's child: it can be waited for.
  prctl(PR_SET_CHILD_SUBREAPER, 1);
  Tape* const tape = Tape::make();
  const pid_t program = fork();
  if (program == 0) runProgram(*tape, model, runsFor, end);
  while (!tape->isRunning) usleep(50);
  if (kill) {
    usleep(static_cast<useconds_t>(runsFor.count()));
    kill(program);
  }
  const auto killed = Time::now();
  waitpid(program, nullptr, 0);
  Death death;
  death.endedInTime = awaitAll(1s);
  death.guardTook = std::chrono::duration_cast<std::chrono::microseconds>(Time::now() - killed);
  sim::Bench bench;
  const sim::Board& board = bench.plug(model, 0x378);
  tape->playTo(bench);
  death.latch0 = board.latch(0);
  death.vppPins = board.vppPins();
  death.switchOffs = tape->switchOffsAtEnd();
  Tape::discard(tape);
  return death;
}

}  // namespace kestrel::test
