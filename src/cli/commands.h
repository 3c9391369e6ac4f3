#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "cli/arguments.h"
#include "platform/stop_switch.h"

namespace kestrel::cli {

class Session;

/// A word of the command line and what it does.
struct Command {
  const char* name;
  const char* help;
  const char* options;                       ///< of those for the work: the ones that it uses
  const char* ownOption = "";                ///< those that are for this command
  void (*press)(Session&) = nullptr;         ///< what a person presses at the form; or:
  int (*alone)(const Arguments&) = nullptr;  ///< done without the form, returns the exit status
  bool needsBoard = true;                    ///< ends before its first step when no board is ready
  bool testsHardware = false;                ///< wants the socket empty
  bool worksOnMemory = false;                ///< on what CheckCode and CheckData tick
  const char* words = "";                    ///< what it wants behind its name
  bool writesChip = false;
};

/// All commands, in the order of the manual.
[[nodiscard]] std::span<const Command> commands();

/// The command of this name, which is one of them.
[[nodiscard]] const Command& commandNamed(std::string_view name);

/// Does what the command line asks for and returns the exit status. Throws UsageError, and
/// FileError for a chip or trace file. The switch is thrown by the signals that end the program.
[[nodiscard]] int runCommand(const Arguments& arguments, StopSwitch& stop);

}  // namespace kestrel::cli
