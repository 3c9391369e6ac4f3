#pragma once

#include "hardware/ports/real_ports.h"
#include "support/form_rig.h"
#include "support/stand_in_kernel.h"

namespace kestrel::test {

/// The form over the whole code of the real ports, in the layers of the programs: trace,
/// interruptible port, filter, port. The kernel is stood in for. What is connected is a
/// BoardOnBench that says how its port is chosen and the line to an adapter opened.
template <typename Connected>
struct FormOnPort : Connected {
  template <typename... Given>
  explicit FormOnPort(sim::Model model = sim::Model::kestrel5, Given... given)
      : Connected(model, given...) {
    kernel.takesNotes = false;
    kernel.devices["/dev/parport0"].lines = &this->port;
    ports.takeMissing();
  }

  void start() { BoardOnBench::start(rig); }

  TemporaryFolder root;
  StandInKernel kernel;
  StopSwitch stop;
  ports::RealPorts ports{kernel,
                         {.choices = {ports::parsePortChoice(Connected::kChoice)},
                          .root = root.path(),
                          .lockFolder = root.path(),
                          .guard = TAPE_GUARD,
                          .link = this->linkUntil(stop)}};
  ports::PortWaits waits{ports, this->port};
  FormRig rig{ports.port(), waits, {.trace = this->traced(), .stop = &stop, .service = &ports}};
};

struct ParportBoard : BoardOnBench {
  using BoardOnBench::BoardOnBench;
  static constexpr auto kChoice = "378=/dev/parport0";
  [[nodiscard]] static ports::LinkOptions linkUntil(const StopSwitch&) { return {}; }
};
using RealForm = FormOnPort<ParportBoard>;

}  // namespace kestrel::test
