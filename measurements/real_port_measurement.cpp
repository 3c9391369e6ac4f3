// What the real ports cost beyond the system call, how true the pulses are, and how long a voltage
// stays on after the program was killed.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <vector>

#include "hardware/ports/guard.h"
#include "hardware/ports/monotonic_clock.h"
#include "hardware/ports/parport_device.h"
#include "port_out.h"
#include "support/victim.h"

namespace kestrel {
namespace {

/// A kernel that answers at once.
class InstantKernel final : public ports::SystemCalls {
 public:
  int open(const char*, int flags) noexcept override { return ::open("/dev/null", flags); }
  int ioctl(int, unsigned long, void*) noexcept override { return 0; }
  int close(int file) noexcept override { return ::close(file); }
  int ioperm(unsigned long, unsigned long, bool) noexcept override { return 0; }
  void outByte(std::uint16_t, std::uint8_t) noexcept override {}
  std::uint8_t inByte(std::uint16_t) noexcept override { return 0xFF; }
};

/// All layers from the procedures down to the system call.
void portOutWithoutTheSystemCall(benchmark::State& state) {
  InstantKernel kernel;
  ports::ParportDevice device(kernel, "/dev/parport0", 0x378);
  const ports::Guard guard(device, TAPE_GUARD);
  device.take();
  ports::MonotonicClock clock;
  measurePortOut(state, device, clock);
}
BENCHMARK(portOutWithoutTheSystemCall);

/// Pulses of so many counts: what they last above the time asked for, the middle one and the worst
/// of a hundred.
void pulseAboveAsked(benchmark::State& state) {
  ports::MonotonicClock clock;
  const std::chrono::nanoseconds asked(state.range(0) * kDefaultCountNs);
  std::vector<double> aboveNs;
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    clock.Spin(state.range(0));
    const std::chrono::nanoseconds got = std::chrono::steady_clock::now() - start;
    aboveNs.push_back(static_cast<double>((got - asked).count()));
  }
  std::sort(aboveNs.begin(), aboveNs.end());
  state.counters["median_ns"] = aboveNs[aboveNs.size() / 2];
  state.counters["p99_ns"] = aboveNs[aboveNs.size() * 99 / 100];
}
BENCHMARK(pulseAboveAsked)->Arg(300)->Arg(4'000)->Arg(40'002);

/// From SIGKILL to the guard's last write.
void voltageOffAfterKill(benchmark::State& state) {
  std::chrono::microseconds slowest{};
  for (auto _ : state) {
    const test::Death death = test::dieWhileProgramming(
        sim::Model::kestrel5, std::chrono::milliseconds(1),
        [](int process) { kill(process, SIGKILL); }, nullptr);
    if (death.latch0 != 0x40) state.SkipWithError("the voltage is still on");
    slowest = std::max(slowest, death.guardTook);
    state.SetIterationTime(std::chrono::duration<double>(death.guardTook).count());
  }
  state.counters["worst_us"] = static_cast<double>(slowest.count());
}
BENCHMARK(voltageOffAfterKill)->UseManualTime()->Iterations(50)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace kestrel
