#pragma once

#include <filesystem>
#include <fstream>
#include <functional>

#include "hardware/ports/real_ports.h"
#include "support/form_rig.h"
#include "support/stand_in_kernel.h"

namespace kestrel::test {

/// The lines between a stand-in kernel and the board: something may happen at each access.
struct WatchedLines final : PortAccess {
  explicit WatchedLines(PortAccess& given) : lines(given) {}
  void PortOut(std::int16_t port, std::uint8_t value) override {
    if (onAccess) onAccess();
    lines.PortOut(port, value);
  }
  std::uint8_t PortIn(std::int16_t port) override {
    if (onAccess) onAccess();
    return lines.PortIn(port);
  }

  PortAccess& lines;
  std::function<void()> onAccess;
};

/// Looks after real ports as the programs do.
struct CareOf final : PortCare {
  explicit CareOf(RealPorts& given) : ports(given) {}
  void takeMissing() override { ports.takeMissing(); }
  [[nodiscard]] std::vector<std::string> diagnosis() const override { return ports.diagnosis(); }

  RealPorts& ports;
};

/// The form over the whole code of the real ports, in the layers of the programs: trace,
/// attendance, filter, ppdev. The kernel is stood in for; behind it are a simulated board and its
/// time.
struct RealForm : BoardOnBench {
  explicit RealForm(sim::Model model = sim::Model::kestrel5) : BoardOnBench(model) {
    kernel.takesNotes = false;
  }

  void start() { BoardOnBench::start(rig); }

  /// The ports of one more program on this machine.
  [[nodiscard]] std::unique_ptr<RealPorts> openPorts() {
    const auto folder = root / "proc/sys/dev/parport/parport0";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "base-addr") << "888\t0\n";
    kernel.devices["/dev/parport0"].lines = &lines;
    return openRealPorts(kernel, {{}, root.path(), root.path()});
  }

  TemporaryFolder root;
  WatchedLines lines{port};
  StandInKernel kernel;
  std::unique_ptr<RealPorts> ports = openPorts();
  CareOf care{*ports};
  StopSwitch stop;
  FakeScreen screen;
  AttendedPort attended{ports->port(), port, stop, screen};
  TracingPort traced{attended, attended, trace};
  FormRig rig{traced, traced, &stop, &care};
};

}  // namespace kestrel::test
