#include "app/launch/machine_ports.h"

#include <cerrno>
#include <utility>

#include "platform/runtime_error.h"

namespace kestrel {
namespace {

std::unique_ptr<SimulatedBench> simulatedBench(const LaunchOptions& options,
                                               std::string_view defaultChip) {
  return options.simulate ? std::make_unique<SimulatedBench>(options, defaultChip) : nullptr;
}

std::unique_ptr<sim::SimulatedPort> simulatedPort(SimulatedBench* simulated,
                                                  const LaunchOptions& options) {
  if (simulated == nullptr) return nullptr;
  return std::make_unique<sim::SimulatedPort>(simulated->bench(), options.countNs);
}

}  // namespace

MachinePorts::MachinePorts(const LaunchOptions& options, std::string_view defaultChip,
                           const StopSwitch& stop, Screen& screen)
    : simulated_(simulatedBench(options, defaultChip)),
      simulatedPort_(simulatedPort(simulated_.get(), options)),
      monotonic_(options.countNs, &stop),
      attended_(lowestPort(options), lowestClock(), stop, screen) {
  if (options.trace.empty()) return;
  traceFile_.open(options.trace, std::ios::binary | std::ios::trunc);
  if (!traceFile_) throw FileError("write", options.trace.string(), errno);
  trace_ = std::make_unique<TracingPort>(attended_, attended_, traceFile_);
}

PortAccess& MachinePorts::lowestPort(const LaunchOptions& options) {
  if (simulatedPort_) return *simulatedPort_;
  lockMemory();
  PortOptions portOptions;
  portOptions.choices = options.ports;
  realPorts_ = openRealPorts(calls_, std::move(portOptions));
  return realPorts_->port();
}

Clock& MachinePorts::lowestClock() {
  if (simulatedPort_) return *simulatedPort_;
  return monotonic_;
}

void MachinePorts::beginCommand() {
  if (realPorts_) priority_.emplace();
}

void MachinePorts::takeMissing() {
  if (realPorts_) realPorts_->takeMissing();
}

std::vector<std::string> MachinePorts::diagnosis() const {
  return realPorts_ ? realPorts_->diagnosis() : std::vector<std::string>();
}

std::uint64_t MachinePorts::takeStretchedPulses() {
  const std::uint64_t pulses = monotonic_.stretchedPulses();
  monotonic_.resetStretchedPulses();
  return pulses;
}

PortAccess& MachinePorts::port() {
  if (trace_) return *trace_;
  return attended_;
}

Clock& MachinePorts::clock() {
  if (trace_) return *trace_;
  return attended_;
}

}  // namespace kestrel
