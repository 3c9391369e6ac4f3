#pragma once

#include "link/emulated_adapter.h"
#include "support/real_form.h"

namespace kestrel::test {

/// A board at the end of a line. The line, the adapter with its own program, the board and the time
/// are emulated. `latencyCycles`: what a round trip takes beside the bytes themselves.
struct AdapterBoard : BoardOnBench {
  explicit AdapterBoard(sim::Model model, std::uint64_t latencyCycles = 0,
                        Trace tracing = Trace::On)
      : BoardOnBench(model, tracing), latency(latencyCycles) {}

  static constexpr auto kChoice = "378=link:/dev/adapter";
  [[nodiscard]] ports::LinkOptions linkUntil(const StopSwitch& stop) {
    const auto open = [this](const std::string&) {
      auto opened = std::make_unique<EmulatedLine>(adapter, latency);
      line = opened.get();
      return opened;
    };
    return {.open = open, .stop = &stop, .keepsAlive = false};
  }

  EmulatedLine* line = nullptr;  ///< the last one, as long as the port has it
  EmulatedAdapter adapter{KESTREL_LINK_PROGRAM, bench};
  std::uint64_t latency;
};
using LinkForm = FormOnPort<AdapterBoard>;

}  // namespace kestrel::test
