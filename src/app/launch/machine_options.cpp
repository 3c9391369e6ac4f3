#include "app/launch/machine_options.h"

#include <array>

namespace kestrel::launch {
namespace {

using Group = MachineOption::Group;

std::string named(const char* option, const std::string& text) {
  if (text.empty()) throw UsageError(std::string(option) + " is empty; give it a name");
  return text;
}

// clang-format off
constexpr auto kMachineOptions = std::to_array<MachineOption>({
    {.name = "--port", .value = "BASE=DEVICE", .help = "parallel port for 378, 278 or 3BC; repeatable", .isRepeatable = true,
     .set = [](auto& o, const auto& text) { o.ports.push_back(parsePort(text)); }},
    {.name = "--home", .value = "DIR", .help = "folder of kestrel6.ini",
     .set = [](auto& o, const auto& text) { o.home = named("--home", text); }},
    {.name = "--trace", .value = "FILE", .help = "write every port access and wait to FILE",
     .set = [](auto& o, const auto& text) { o.trace = named("--trace", text); }},
    {.name = "--waves", .value = "FILE", .help = "record the pins of the socket as a VCD wave file",
     .set = [](auto& o, const auto& text) { o.waves = named("--waves", text); }},
    {.name = "--count-ns", .value = "N", .help = "length of a delay-loop count in nanoseconds (25)",
     .set = [](auto& o, const auto& text) { o.countNs = parseCountNs(text); }},
    {.name = "--algorithms", .value = "classic|datasheet", .help = "how chips are programmed (classic)",
     .set = [](auto& o, const auto& text) { o.algorithms = parseAlgorithms(text); }},
    {.name = "--simulate", .value = "", .help = "work on a simulated board", .group = Group::SimulatedBoard,
     .set = [](auto& o, const auto&) { o.simulate = true; }},
    {.name = "--model", .value = "4|5|6", .help = "model of the simulated board (5)", .group = Group::SimulatedBoard,
     .set = [](auto& o, const auto& text) { o.model = parseModel(text); },
     .isGiven = [](const auto& o) { return o.model.has_value(); }},
    {.name = "--lpt", .value = "378|278|3BC", .help = "port of the simulated board (378)", .group = Group::SimulatedBoard,
     .set = [](auto& o, const auto& text) { o.lpt = parseLpt(text); },
     .isGiven = [](const auto& o) { return o.lpt.has_value(); }},
    {.name = "--chip", .value = "TYPE[=FILE]", .help = "chip in its socket; FILE holds its contents", .group = Group::SimulatedBoard,
     .set = [](auto& o, const auto& text) { o.chip = parseChip(text); },
     .isGiven = [](const auto& o) { return o.chip.has_value(); }},
    {.name = "--board-vpp", .value = "12.5|21|25", .help = "voltage set by hand on a simulated model 4", .group = Group::SimulatedBoard,
     .set = [](auto& o, const auto& text) { o.boardVppMillivolts = parseBoardVpp(text); },
     .isGiven = [](const auto& o) { return o.boardVppMillivolts.has_value(); }},
    {.name = "--fault", .value = "FAULT", .help = "weak:ADDR, stuck:BIT, unplug:N, empty; repeatable", .group = Group::SimulatedBoard, .isRepeatable = true,
     .set = [](auto& o, const auto& text) { o.faults.push_back(parseFault(text)); },
     .isGiven = [](const auto& o) { return !o.faults.empty(); }},
});
// clang-format on

}  // namespace

std::span<const MachineOption> machineOptions() { return kMachineOptions; }

void refuseSecond(const char* option, const std::vector<std::string>& values) {
  if (values.size() > 1) throw UsageError(std::string(option) + " is given twice; give it once");
}

void setOption(const MachineOption& option, const std::vector<std::string>& values,
               LaunchOptions& options) {
  if (!option.isRepeatable) refuseSecond(option.name, values);
  for (const std::string& value : values) option.set(options, value);
}

void checkTogether(const LaunchOptions& options) {
  if (options.simulate && !options.ports.empty()) {
    throw UsageError("--port names a real port; leave it out or leave out --simulate");
  }
  for (const MachineOption& option : kMachineOptions) {
    if (options.simulate || option.isGiven == nullptr || !option.isGiven(options)) continue;
    throw UsageError(std::string(option.name) + " is for the simulated board; add --simulate");
  }
  if (options.boardVppMillivolts && options.model != sim::Model::kestrel4) {
    throw UsageError("--board-vpp is set by hand on a model 4 only; add --model 4");
  }
}

}  // namespace kestrel::launch
