// Costs that must stay flat as the log and the buffer grow.

#include <benchmark/benchmark.h>

#include "app/state/reporting.h"
#include "display/memory_display.h"
#include "platform/atomic_file.h"
#include "support/form_rig.h"

namespace kestrel {
namespace {

void loadTheLargestFile(benchmark::State& state) {
  test::SimulatedForm s;
  s.start();
  const std::string file = s.rig.folder / "image.bin";
  writeFileAtomically(file, test::randomBytes(2'100'001, 3));
  for (auto _ : state) {
    s.rig.dialogs.files = {file};
    s.rig.press("mnuFileOpenCode");
  }
}
BENCHMARK(loadTheLargestFile)->Unit(benchmark::kMillisecond);

/// One more line to a log that already has so many.
void appendToALog(benchmark::State& state) {
  test::SimulatedForm s;
  s.start();
  test::FakeScreen screen;
  test::RecordingSounds sounds;
  const Folders folders{};
  const TimeOfDay time;
  Reporting reporting(s.rig.state, s.rig.controls, time, sounds, screen, folders);
  std::string text;
  for (std::int64_t line = 0; line < state.range(0); ++line) {
    text += "\r\n14:03:07>  Device Eprom 27C256 was Selected";
  }
  s.rig.controls.SystemLog.setText(text);
  for (auto _ : state) reporting.LogMessage("Device Eprom 27C256 was Selected");
}
BENCHMARK(appendToALog)->Arg(0)->Arg(100'000)->Iterations(20'000);

/// The first page and the last one of the buffer.
void drawAPage(benchmark::State& state) {
  test::SimulatedForm s;
  s.start();
  s.rig.controls.VScroll1.setMaximum(8202);
  s.rig.controls.VScroll1.setValue(static_cast<std::int32_t>(state.range(0)));
  ProgrammerState& record = s.rig.state;
  display::MemoryDisplay display(record, record, record, s.rig.controls);
  for (auto _ : state) display.DisplayCodeMemory();
}
BENCHMARK(drawAPage)->Arg(0)->Arg(8202);

}  // namespace
}  // namespace kestrel
