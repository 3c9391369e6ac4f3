#pragma once

#include "hardware/ports/monotonic_clock.h"
#include "link/emulated_adapter.h"
#include "support/real_form.h"

namespace kestrel::test {

using Bytes = std::vector<std::uint8_t>;

/// The form over the code of a port at the end of a line, in the layers of the programs; the line,
/// the adapter with its own program, the board and the time are emulated.
struct LinkForm : BoardOnBench {
  enum class Trace { On, Off };

  /// `latencyCycles`: what a round trip takes beside the bytes themselves.
  explicit LinkForm(sim::Model model = sim::Model::kestrel5, std::uint64_t latencyCycles = 0,
                    Trace tracing = Trace::On)
      : BoardOnBench(model),
        adapter(KESTREL_LINK_PROGRAM, bench),
        latency(latencyCycles),
        rig(ports->port(), waits,
            {.trace = tracing == Trace::On ? &trace : nullptr,
             .stop = &stop,
             .service = &service}) {
    ports->takeMissing();
  }

  void start() { BoardOnBench::start(rig); }

  /// The last line, as long as the port has it.
  EmulatedLine* line = nullptr;
  EmulatedAdapter adapter;
  std::uint64_t latency;
  TemporaryFolder root;
  StandInKernel kernel;
  StopSwitch stop;
  std::unique_ptr<ports::RealPorts> ports = ports::openRealPorts(
      kernel, {.choices = {ports::parsePortChoice("378=link:/dev/adapter")},
               .root = root.path(),
               .lockFolder = root.path(),
               .guard = TAPE_GUARD,
               .link = {.open =
                            [this](const std::string&) {
                              auto opened = std::make_unique<EmulatedLine>(adapter, latency);
                              line = opened.get();
                              return opened;
                            },
                        .stop = &stop,
                        .keepsAlive = false}});
  ports::MonotonicClock clock;
  ports::PortWaits waits{*ports, clock};
  ServiceOf service{*ports};
  FormRig rig;
};

}  // namespace kestrel::test
