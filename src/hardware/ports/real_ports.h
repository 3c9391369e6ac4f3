#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "hardware/ports/guard.h"
#include "hardware/ports/held_port.h"
#include "hardware/ports/link_port.h"
#include "hardware/ports/lpt_filter.h"
#include "hardware/ports/port_choice.h"
#include "hardware/ports/port_diagnosis.h"
#include "hardware/ports/real_port.h"
#include "hardware/ports/system_calls.h"
#include "platform/port_service.h"

namespace kestrel::ports {

struct PortOptions {
  std::vector<PortChoice> choices;                 // --port; the last one of a base counts
  std::filesystem::path root = "/";                // where the kernel's folders are
  std::filesystem::path lockFolder = "/run/lock";  // for direct access
  std::filesystem::path guard = guardProgram();
  LinkOptions link = {.open = openSerialLine};
};

/// The parallel ports of this machine, and adapters that stand in for one, each taken for this
/// program alone, with its voltages switched off and a guard beside it: a process, or the adapter
/// itself. They are given back, switched off again, when this
/// ends. A port that cannot be taken is as if it were not there; diagnosis() tells why.
class RealPorts final : public PortService {
 public:
  /// The calls outlive the ports. Does not throw for a port that cannot be taken.
  RealPorts(SystemCalls& calls, PortOptions options);
  ~RealPorts() override;
  RealPorts(const RealPorts&) = delete;
  RealPorts& operator=(const RealPorts&) = delete;

  /// The access to all of them, with everything else filtered away. Throws RuntimeError 68 when a
  /// port has vanished.
  [[nodiscard]] PortAccess& port() { return filter_; }

  /// Who keeps the time of the port that was addressed last; nullptr for the machine's clock.
  [[nodiscard]] Waits* timeOfLast() const { return filter_.timeOfLast(); }

  // For the adapters (LinkPort): an operation, and the end of a command.
  void beginOperation() override;
  void endOperation() override;
  void settle() override;

  /// The bases behind which a port works.
  [[nodiscard]] std::vector<std::uint16_t> taken() const;

  [[nodiscard]] bool holdsPort(std::int16_t base) const override;
  [[nodiscard]] bool mayVoltageBeOn() const override;
  void takeMissing() override;

  /// Another adapter, or none, from now on; whatever stood at its base is given back. To be taken
  /// by takeMissing.
  void chooseLink(const std::optional<PortChoice>& choice);

  /// Switches every port off by hand; true if there was one and it worked on all.
  bool switchOff() noexcept;

  [[nodiscard]] std::vector<std::string> diagnosis() const override;

 private:
  struct Slot {
    std::uint16_t base = 0;
    std::string device;  // empty: nothing to take
    bool isDirect = false;
    bool isLink = false;
    std::uint16_t address = 0;
    std::unique_ptr<HeldPort> port;
    LinkPort* link = nullptr;  // the same port, where it is one
    std::unique_ptr<Guard> guard;
    std::optional<PortProblem> problem;
    std::string reason;
    bool mayVoltageBeOn = false;  // as it was left behind by a port that is gone
  };

  void find(Slot& slot, const std::vector<ListedPort>& listed) const;
  void take(Slot& slot, const std::vector<ListedPort>& listed);
  void giveBack(Slot& slot);
  void open(Slot& slot, const std::vector<ListedPort>& listed);
  void openLink(Slot& slot);
  [[nodiscard]] std::unique_ptr<RealPort> openHere(const Slot& slot,
                                                   const std::vector<ListedPort>& listed);
  [[nodiscard]] bool isChosen(const std::string& device) const;
  [[nodiscard]] PortFinding findingOf(const Slot& slot) const;

  SystemCalls& calls_;
  PortOptions options_;
  LptFilter filter_;
  std::vector<Slot> slots_;
};

/// The time between the accesses: kept by the port that was addressed last, where that is an
/// adapter, else by the machine's clock.
class PortWaits final : public Waits {
 public:
  /// Both outlive it.
  PortWaits(RealPorts& ports, Waits& clock) : ports_(ports), clock_(clock) {}

  void Sleep(std::int32_t milliseconds) override { keeper().Sleep(milliseconds); }
  void Spin(std::int64_t counts) override { keeper().Spin(counts); }

 private:
  [[nodiscard]] Waits& keeper() {
    Waits* const own = ports_.timeOfLast();
    return own != nullptr ? *own : clock_;
  }

  RealPorts& ports_;
  Waits& clock_;
};

}  // namespace kestrel::ports
