#pragma once

#include "hardware/ports/real_ports.h"
#include "support/form_rig.h"
#include "support/stand_in_kernel.h"

namespace kestrel::test {

/// Looks after real ports as the programs do.
struct ServiceOf final : PortService {
  explicit ServiceOf(ports::RealPorts& given) : ports(given) {}
  void beginOperation() override { ports.beginOperation(); }
  void endOperation() override { ports.endOperation(); }
  void settle() override { ports.settle(); }
  void takeMissing() override { ports.takeMissing(); }
  [[nodiscard]] std::vector<std::string> diagnosis() const override { return ports.diagnosis(); }

  ports::RealPorts& ports;
};

/// The form over the whole code of the real ports, in the layers of the programs: trace,
/// interruptible port, filter, ppdev. The kernel is stood in for; behind it are a simulated board
/// and its time.
struct RealForm : BoardOnBench {
  explicit RealForm(sim::Model model = sim::Model::kestrel5) : BoardOnBench(model) {
    kernel.takesNotes = false;
    kernel.devices["/dev/parport0"].lines = &port;
    ports->takeMissing();
  }

  void start() { BoardOnBench::start(rig); }

  TemporaryFolder root;
  StandInKernel kernel;
  std::unique_ptr<ports::RealPorts> ports = ports::openRealPorts(
      kernel,
      {{ports::parsePortChoice("378=/dev/parport0")}, root.path(), root.path(), TAPE_GUARD});
  ServiceOf service{*ports};
  StopSwitch stop;
  FormRig rig{ports->port(), port, {.trace = &trace, .stop = &stop, .service = &service}};
};

}  // namespace kestrel::test
