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

PortAccess& Program::port() {
  if (trace_) return *trace_;
  return interruptible_;
}

Waits& Program::waits() {
  if (trace_) return *trace_;
  return interruptible_;
}

std::ofstream openTrace(const LaunchOptions& options) {
  if (options.trace.empty()) return {};
  std::ofstream file(options.trace, std::ios::binary | std::ios::trunc);
  if (!file) throw FileError("write", options.trace.string(), errno);
  giveToOwnerOfFolder(options.trace);
  return file;
}

LaunchedProgram::LaunchedProgram(const LaunchOptions& options, std::string_view defaultChip,
                                 const FrontEnd& frontEnd, StopSwitch& stop,
                                 const std::optional<Folders>& folders)
    : ports_(options, defaultChip, stop),
      traceFile_(openTrace(options)),
      folders_(folders ? *folders : programFolders(options)),
      program_({.port = ports_.port(), .waits = ports_.waits(), .service = ports_}, frontEnd, stop,
               time_, folders_, traceFile_.is_open() ? &traceFile_ : nullptr) {}

}  // namespace kestrel::launch
