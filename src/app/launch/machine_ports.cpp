#include "app/launch/machine_ports.h"

#include <cerrno>

#include "platform/runtime_error.h"

namespace kestrel {
namespace {

std::unique_ptr<SimulatedBench> simulatedBench(const LaunchOptions& options,
                                               std::string_view defaultChip) {
  return options.simulate ? std::make_unique<SimulatedBench>(options, defaultChip) : nullptr;
}

}  // namespace

MachinePorts::MachinePorts(const LaunchOptions& options, std::string_view defaultChip,
                           const StopSwitch& stop, Screen& screen)
    : simulated_(simulatedBench(options, defaultChip)),
      monotonic_(options.countNs, &stop),
      attended_(lowestPort(options), lowestClock(), stop, screen) {
  if (options.trace.empty()) return;
  traceFile_.open(options.trace, std::ios::binary | std::ios::trunc);
  if (!traceFile_) throw FileError("write", options.trace.string(), errno);
  trace_ = std::make_unique<TracingPort>(attended_, attended_, traceFile_);
}

PortAccess& MachinePorts::lowestPort(const LaunchOptions& options) {
  if (!simulated_) return lptPorts_;
  simulatedPort_ = std::make_unique<sim::SimulatedPort>(simulated_->bench(), options.countNs);
  return *simulatedPort_;
}

Clock& MachinePorts::lowestClock() {
  if (simulatedPort_) return *simulatedPort_;
  return monotonic_;
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
