#pragma once

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "app/launch/program.h"
#include "simulator/bench.h"
#include "simulator/chip_factory.h"
#include "simulator/simulated_port.h"
#include "support/control_names.h"
#include "support/fakes.h"

namespace kestrel::test {

using Bytes = std::vector<std::uint8_t>;

/// What a rig may be given from outside: a stop switch that layers below share, the service of real
/// ports, the port's time.
struct RigParts {
  std::ostream* trace = nullptr;
  StopSwitch* stop = nullptr;
  PortService* service = nullptr;
  waveform::RecordingPort::Nanoseconds now = {};
};

/// The program over any port and waits.
struct FormRig : Surroundings {
  FormRig(PortAccess& port, Waits& waits, const RigParts& given = {})
      : stop(given.stop != nullptr ? *given.stop : ownStop),
        parts({.port = port,
               .waits = waits,
               .service = given.service != nullptr ? *given.service : noService,
               .now = given.now},
              {.sounds = sounds,
               .settings = settings,
               .help = help,
               .dialogs = dialogs,
               .screen = screen},
              stop, time, folders(), given.trace),
        form(parts.form()),
        controls(form.controls()),
        state(form.state()) {}

  /// The log's messages without their time stamps.
  [[nodiscard]] std::vector<std::string> log() const { return logMessages(controls); }
  [[nodiscard]] bool logged(const std::string& message) const {
    return std::ranges::count(log(), message) > 0;
  }
  void clearLog() { controls.SystemLog.setText(""); }

  /// Chooses the device by its whole name, such as "Eprom 27C256", "N/A" or not.
  void select(const std::string& name) {
    const auto& items = controls.Device.items();
    for (std::size_t i = 0; i < items.size(); ++i) {
      if ((items[i] + " ").find(name + " ") != std::string::npos) {
        result =
            form.runner().run([&] { controls.Device.setPosition(static_cast<std::int32_t>(i)); });
        return;
      }
    }
    throw std::invalid_argument("no device " + name);
  }

  /// Opens a code file with these contents.
  void openImage(const Bytes& image) {
    const std::string name = (folder / "image.bin").string();
    std::ofstream(name, std::ios::binary)
        .write(reinterpret_cast<const char*>(image.data()), std::ssize(image));
    dialogs.files.push_back(name);
    press("mnuFileOpenCode");
  }
  /// Presses Program, or another control that leads there, and says OK to the safety question.
  bool program(const std::string& control = "Program_button") {
    dialogs.answers.push_back(Answer::Ok);
    const bool pressed = press(control);
    dialogs.answers.clear();
    return pressed;
  }

  /// Presses a control by name; false when it is disabled. How it ended is in `result`.
  bool press(const std::string& name) {
    auto& button = dynamic_cast<Button&>(*controls.find(name));
    const bool isEnabled = button.enabled();
    result = form.runner().press(button);
    return isEnabled;
  }

  StopSwitch& stop;
  launch::Program parts;
  form::frmMain& form;
  Controls& controls;
  ProgrammerState& state;
  CommandResult result;
};

/// A bench with one board, and the trace of what a form asks of it: that of a whole chip would be
/// very long.
struct BoardOnBench {
  enum class Trace { On, Off };

  explicit BoardOnBench(sim::Model model, Trace tracing = Trace::On)
      : board(&bench.plug(model, 0x378)), isTraced(tracing == Trace::On) {}

  [[nodiscard]] std::ostream* traced() { return isTraced ? &trace : nullptr; }

  sim::Bench bench;
  sim::Board* board;
  bool isTraced;
  sim::SimulatedPort port{bench};
  std::ostringstream trace;

  /// Start-up; the findings of switching on (a chip beside latches at 0) are not the program's.
  void start(FormRig& rig) {
    rig.form.Form_Load();
    if (board->model() == sim::Model::kestrel6) rig.press("TestHardware_button");
    rig.clearLog();
    bench.findings().clear();
    trace.str("");
  }
  /// A chip of the type with the contents, or a blank one.
  void insert(const std::string& type, const Bytes& contents = {}) {
    board->insert(sim::makeChip(type));
    if (contents.empty()) {
      board->blankChip();
    } else {
      board->loadChip(contents);
    }
  }
  [[nodiscard]] Bytes chipContents() {
    if (board->chip() == nullptr) return {};
    const auto cells = board->chip()->contents();
    return {cells.begin(), cells.end()};
  }
};

/// The form on such a bench. start() runs the start-up.
struct SimulatedForm : BoardOnBench {
  explicit SimulatedForm(sim::Model model = sim::Model::kestrel5, Trace tracing = Trace::On)
      : BoardOnBench(model, tracing), rig(port, port, {.trace = traced()}) {}

  void start() { BoardOnBench::start(rig); }

  FormRig rig;
};

/// Bytes that look random and are the same in every run.
[[nodiscard]] inline Bytes randomBytes(std::size_t count, std::uint32_t seed) {
  Bytes bytes(count);
  for (std::uint8_t& byte : bytes) {
    seed = seed * 1664525U + 1013904223U;
    byte = static_cast<std::uint8_t>(seed >> 24U);
  }
  return bytes;
}

}  // namespace kestrel::test
