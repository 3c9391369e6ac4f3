#include "app/launch/program.h"

#include <cerrno>

#include "app/launch/program_folders.h"
#include "platform/file_attributes.h"
#include "platform/runtime_error.h"

namespace kestrel::launch {
Program::Program(const Ground& ground, const FrontEnd& frontEnd, StopSwitch& stop,
                 const TimeOfDay& time, const Folders& folders, std::ostream* trace)
    : interruptible_(ground.port, ground.waits, stop, frontEnd.screen),
      trace_(trace == nullptr ? std::nullopt
                              : std::optional<ports::TracingPort>(std::in_place, interruptible_,
                                                                  interruptible_, *trace)),
      recorder_(ground.now
                    ? std::optional<waveform::RecordingPort>(std::in_place, portBelow(), ground.now)
                    : std::nullopt),
      form_({.port = port(),
             .waits = waits(),
             .portService = ground.service,
             .time = time,
             .sounds = frontEnd.sounds,
             .settings = frontEnd.settings,
             .help = frontEnd.help,
             .dialogs = frontEnd.dialogs,
             .screen = frontEnd.screen,
             .stop = stop,
             .folders = folders}) {}

PortAccess& Program::portBelow() {
  if (trace_) return *trace_;
  return interruptible_;
}

PortAccess& Program::port() {
  if (recorder_) return *recorder_;
  return portBelow();
}

Waits& Program::waits() {
  if (trace_) return *trace_;
  return interruptible_;
}

TraceFile::TraceFile(const LaunchOptions& options, const StopSwitch& stop) : stream_(nullptr) {
  if (options.trace.empty()) return;
  stream_.rdbuf(&buffer_.emplace(options.trace, stop));
}

void TraceFile::finish() {
  if (buffer_) buffer_->finish();
}

LaunchedProgram::LaunchedProgram(const LaunchOptions& options, std::string_view defaultChip,
                                 const FrontEnd& frontEnd, StopSwitch& stop,
                                 const std::optional<Folders>& folders)
    : ports_(options, defaultChip, stop),
      trace_(options, stop),
      folders_(folders ? *folders : programFolders(options)),
      program_({.port = ports_.port(),
                .waits = ports_.waits(),
                .service = ports_,
                .now = options.mayRecord || !options.waves.empty()
                           ? [this] { return ports_.nowNs(); }
                           : waveform::RecordingPort::Nanoseconds()},
               frontEnd, stop, time_, folders_, trace_.isOpen() ? &trace_.stream() : nullptr) {
  // Before the start-up, whose search for a board goes by it.
  if (options.algorithms == Algorithms::DataSheet) {
    (void)form().runner().run([this] { form().controls().AlgorithmSelection[1].press(); });
  }
  if (program_.recorder() == nullptr) return;
  waves_.emplace(*program_.recorder(), program_.form(), stop);
  if (!options.waves.empty()) waves_->begin(options.waves);
}

bool launchProgram(std::optional<LaunchedProgram>& program, const LaunchOptions& options,
                   std::string_view defaultChip, const FrontEnd& frontEnd, StopSwitch& stop) {
  try {
    program.emplace(options, defaultChip, frontEnd, stop);
    return true;
  } catch (const OperationStopped&) {
    return false;
  }
}

}  // namespace kestrel::launch
