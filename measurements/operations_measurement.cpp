// Whole operations on the simulated board. "timesReal" is the board's own time (1 us an access and
// the waits) over the time taken here.

#include <benchmark/benchmark.h>

#include <fstream>

#include "devices/chip_pins.h"
#include "support/form_rig.h"
#include "waveform/recording_port.h"

namespace kestrel {
namespace {

using Time = waveform::RecordingPort::Nanoseconds;

/// The form over the simulated port as the command line puts it together, without a trace; as the
/// window does, where it can be recorded.
struct UntracedForm {
  explicit UntracedForm(bool mayRecord = false)
      : board(bench.plug(sim::Model::kestrel5, 0x378)),
        rig(port, port, {.now = mayRecord ? [this] { return bench.now(); } : Time()}) {
    rig.form.Form_Load();
  }

  sim::Bench bench;
  sim::Board& board;
  sim::SimulatedPort port{bench};
  test::FormRig rig;
};

double secondsOf(sim::Nanoseconds time) { return static_cast<double>(time) * 1e-9; }

void read27C080(benchmark::State& state) {
  UntracedForm f;
  f.board.insert(sim::makeChip("27C080"));
  f.rig.select("Eprom 27C080");
  double real = 0;
  for (auto _ : state) {
    const sim::Nanoseconds before = f.bench.now();
    f.rig.press("Read_button");
    real += secondsOf(f.bench.now() - before);
  }
  state.counters["timesReal"] = benchmark::Counter(real, benchmark::Counter::kIsRate);
}
BENCHMARK(read27C080)->Unit(benchmark::kMillisecond)->UseRealTime();

// What the pins did, written into a wave file: the share of time that it takes.
void read27C256(benchmark::State& state, bool isRecorded) {
  UntracedForm f(true);
  waveform::RecordingPort& recorder = *f.rig.parts.recorder();
  f.board.insert(sim::makeChip("27C256"));
  f.board.loadChip(test::randomBytes(32'768, 7));
  f.rig.select("Eprom 27C256");
  std::ofstream file("/dev/null");
  std::uint64_t bytes = 0;
  for (auto _ : state) {
    const devices::ChipPins pins = devices::chipPinsOf(f.rig.state.FamilyCode);
    if (isRecorded) recorder.start(file, pins, "27C256", f.rig.state, f.rig.state);
    f.rig.press("Read_button");
    bytes = recorder.stop();
  }
  state.counters["bytes"] = static_cast<double>(bytes);
}
BENCHMARK_CAPTURE(read27C256, plain, false)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(read27C256, recorded, true)->Unit(benchmark::kMillisecond)->UseRealTime();

// The port accesses that the procedures prescribe for a whole programming run. A latch load is four
// accesses, a read two of two.
//   frame    two resets of four latches, the address, lamp on and off, bus and latch 0 set-up: 72
//   blinks   one latch load every 512 addresses
//   a byte   that is not FFh: the address, three loads, and its pulses
//   a pulse  27C256: ten loads and a read; 27C010: eight loads and a read
// A pulse of 202 counts is low for 9.35 us with the accesses around it, so that 100 us, what the
// chip wants, are 11 pulses.
constexpr double kFrame = 72;
constexpr double kAddress = 12;
constexpr double kPulses = 11;
constexpr double kPulse27C256 = 10 * 4 + 4;
constexpr double kPulse27C010 = 8 * 4 + 4;

double prescribed(std::size_t bytes, double programmed, double accessesPerPulse) {
  const double blinks = static_cast<double>(bytes) / 512 * 4;
  return kFrame + blinks + programmed * (kAddress + kPulses * accessesPerPulse);
}

void program(benchmark::State& state, const char* device, const char* chip, std::size_t bytes,
             double accessesPerPulse) {
  UntracedForm f;
  f.rig.select(device);
  const std::vector<std::uint8_t> image = test::randomBytes(bytes, 11);
  const auto programmed =
      static_cast<double>(bytes - static_cast<std::size_t>(std::ranges::count(image, 0xFF)));
  double real = 0;
  double accesses = 0;
  for (auto _ : state) {
    state.PauseTiming();
    f.board.insert(sim::makeChip(chip));
    std::ranges::copy(image, f.rig.state.CodeBuffer.begin());
    f.rig.controls.Program_button.setEnabled(true);  // as after a file was loaded
    f.rig.dialogs.answers = {Answer::Ok};
    state.ResumeTiming();
    const sim::Nanoseconds before = f.bench.now();
    const std::uint64_t accessesBefore = f.bench.accessCount();
    f.rig.press("Program_button");
    real += secondsOf(f.bench.now() - before);
    accesses += static_cast<double>(f.bench.accessCount() - accessesBefore);
  }
  if (!f.rig.logged("Programming Device Successfull")) state.SkipWithError("not programmed");
  state.counters["timesReal"] = benchmark::Counter(real, benchmark::Counter::kIsRate);
  state.counters["accesses"] = benchmark::Counter(accesses, benchmark::Counter::kAvgIterations);
  state.counters["prescribed"] = prescribed(bytes, programmed, accessesPerPulse);
}

void program27C256(benchmark::State& state) {
  program(state, "Eprom 27C256", "27C256", 32768, kPulse27C256);
}
BENCHMARK(program27C256)->Unit(benchmark::kMillisecond)->UseRealTime();

void program27C010(benchmark::State& state) {
  program(state, "Eprom 27C010", "27C010", 131072, kPulse27C010);
}
BENCHMARK(program27C010)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace kestrel
