#pragma once

#include <optional>
#include <ostream>
#include <string_view>

#include "app/form/frm_main.h"
#include "app/launch/machine_ports.h"
#include "app/launch/option_values.h"
#include "app/launch/wave_file.h"
#include "hardware/ports/interruptible_port.h"
#include "hardware/ports/tracing_port.h"
#include "platform/dialogs.h"
#include "platform/folders.h"
#include "platform/help_viewer.h"
#include "platform/output_buffer.h"
#include "platform/port_access.h"
#include "platform/port_service.h"
#include "platform/screen.h"
#include "platform/settings_store.h"
#include "platform/sound_player.h"
#include "platform/stop_switch.h"
#include "platform/time_of_day.h"
#include "platform/waits.h"
#include "waveform/recording_port.h"

namespace kestrel::launch {

/// What a front end brings with it: how the program speaks to the person. It outlives the program.
struct FrontEnd {
  SoundPlayer& sounds;
  SettingsStore& settings;
  HelpViewer& help;
  Dialogs& dialogs;
  Screen& screen;
};

/// What the program stands on: the port and the waits below all layers. It outlives the program.
struct Ground {
  PortAccess& port;
  Waits& waits;
  PortService& service;
  waveform::RecordingPort::Nanoseconds now = {};  ///< the port's time, for what can be recorded
};

/// The program, put together: the form over the layers that every port gets.
///
///   recording port (with a time) wave files
///   trace (if asked for)        what the procedures ask for
///   interruptible port          Stop, turns of the screen, long waits in slices
///   ground                      the real ports, the simulated board, or a test's port
class Program {
 public:
  /// The trace, if any, outlives the program, and so do switch and clock.
  Program(const Ground& ground, const FrontEnd& frontEnd, StopSwitch& stop, const TimeOfDay& time,
          const Folders& folders, std::ostream* trace = nullptr);

  [[nodiscard]] form::frmMain& form() { return form_; }

  /// What records wave files; nullptr where the ground has no time.
  [[nodiscard]] waveform::RecordingPort* recorder() { return recorder_ ? &*recorder_ : nullptr; }

  /// The topmost port: what the procedures address.
  [[nodiscard]] PortAccess& port();

 private:
  [[nodiscard]] Waits& waits();
  [[nodiscard]] PortAccess& portBelow();

  ports::InterruptiblePort interruptible_;
  std::optional<ports::TracingPort> trace_;
  std::optional<waveform::RecordingPort> recorder_;
  form::frmMain form_;
};

/// The file of --trace; without one the stream is in a failed state.
class TraceFile {
 public:
  /// Throws FileError, and OperationStopped where a pipe has no reader.
  TraceFile(const LaunchOptions& options, const StopSwitch& stop);

  [[nodiscard]] bool isOpen() const { return buffer_.has_value(); }
  [[nodiscard]] std::ostream& stream() { return stream_; }

  /// Throws FileError when any of the trace was lost.
  void finish();

 private:
  std::optional<OutputBuffer> buffer_;
  std::ostream stream_;
};

/// The program on the machine that the options ask for.
class LaunchedProgram {
 public:
  /// `defaultChip` is in the simulated socket when no --chip is given; without `folders` the
  /// program's own are used (program_folders.h). Throws UsageError, for a chip or trace file
  /// FileError, and OperationStopped where one keeps it waiting.
  LaunchedProgram(const LaunchOptions& options, std::string_view defaultChip,
                  const FrontEnd& frontEnd, StopSwitch& stop,
                  const std::optional<Folders>& folders = {});

  [[nodiscard]] form::frmMain& form() { return program_.form(); }
  [[nodiscard]] TraceFile& trace() { return trace_; }
  [[nodiscard]] const Folders& folders() const { return folders_; }

  /// The simulated machine; nullptr with real ports.
  [[nodiscard]] SimulatedBoard* simulated() { return ports_.simulated(); }

  /// The wave file; nullptr where none was asked for and none may be.
  [[nodiscard]] WaveFile* waves() { return waves_ ? &*waves_ : nullptr; }

  /// Another adapter, or none, from the next hardware test on.
  void chooseLink(const std::optional<ports::PortChoice>& choice) { ports_.chooseLink(choice); }

 private:
  const TimeOfDay time_;
  MachinePorts ports_;
  TraceFile trace_;
  const Folders folders_;
  Program program_;
  std::optional<WaveFile> waves_;
};

/// Puts the program together in `program`; false when it was stopped while a pipe that was to be a
/// file of the options kept it waiting. Throws the errors of LaunchedProgram.
[[nodiscard]] bool launchProgram(std::optional<LaunchedProgram>& program,
                                 const LaunchOptions& options, std::string_view defaultChip,
                                 const FrontEnd& frontEnd, StopSwitch& stop);

}  // namespace kestrel::launch
