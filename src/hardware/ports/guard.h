#pragma once

#include <sys/types.h>

#include <array>
#include <filesystem>

#include "hardware/ports/guard_protocol.h"
#include "hardware/ports/real_port.h"

namespace kestrel::ports {

/// The guard program's file, and the guard in the process list. The name is not the program's, so
/// that ending the program by name leaves the guard to do its work.
inline constexpr const char* kGuardName = "vpp-guard";

/// Where this program's guard is: libexec/kestrel beside an installed program's folder, else the
/// folder of the program itself. Never looked for in the user's search path.
[[nodiscard]] std::filesystem::path guardProgram();

/// A small process that switches the board off when this program is gone without a good-bye, or
/// stands still with a voltage on.
///
/// It is a program of its own, started before the port is taken, and inherits the open port (a
/// second open could not claim it), in a session of its own with every signal blocked, so that
/// neither Ctrl-C nor a closed terminal reaches it, and with no other file open. Then it waits on a
/// link to this program. When the link closes, however the program ended (SIGKILL and the
/// out-of-memory killer included), it writes the port's switch-off sequence and ends. Beside that
/// it looks at the port's counter of accesses (guard_protocol.h).
class Guard {
 public:
  /// A guard that says nothing for so long does not work.
  static constexpr std::chrono::milliseconds kReadyLimit{2'000};

  /// Starts the process. The port is open and outlives the guard. Throws RuntimeError when no
  /// process can be made or it is not ready in time: then the port must not be taken.
  explicit Guard(RealPort& port, const std::filesystem::path& program = guardProgram());

  /// Without a good-bye: the guard switches off by itself, trying for a while if it must.
  ~Guard();
  Guard(const Guard&) = delete;
  Guard& operator=(const Guard&) = delete;

  /// The good-bye, for a board that is switched off. Waits until the process is gone, so that the
  /// port is free for the next.
  void dismiss() noexcept;

  [[nodiscard]] pid_t process() const { return process_; }

 private:
  void start(const std::filesystem::path& program, int guardsEnd);
  void awaitReady(const std::filesystem::path& program);

  RealPort& port_;
  SharedGuardMemory shared_;
  int link_ = -1;
  pid_t process_ = -1;
};

/// Has every guard of this program switch off at once, and again at the program's end. For the
/// handler of a crash, which may take long to die (a core file). Async-signal-safe.
void alarmGuards() noexcept;

}  // namespace kestrel::ports
