#pragma once

#include <sys/types.h>

#include "hardware/ports/real_port.h"

namespace kestrel::ports {

/// The guard process as the process list shows it. The name is not the program's, so that ending
/// the program by name leaves the guard to do its work.
inline constexpr const char* kGuardName = "vpp-guard";

/// A small process that switches the board off when this program is gone without a good-bye.
///
/// It is forked before the port is taken and inherits it (a second open could not), in a session
/// of its own with every signal blocked, so that neither Ctrl-C nor a closed terminal reaches it,
/// and with no other file open. Then it waits on a link to this program. When the link closes,
/// however the program ended (SIGKILL and the out-of-memory killer included), it writes the
/// port's switch-off sequence and ends. It does nothing else.
class Guard {
 public:
  /// Starts the process. The port is open and outlives the guard. Throws RuntimeError when no
  /// process can be made: then the port must not be taken.
  explicit Guard(RealPort& port);

  /// Says good-bye and waits until the process is gone, so that the port is free for the next.
  ~Guard();
  Guard(const Guard&) = delete;
  Guard& operator=(const Guard&) = delete;

  [[nodiscard]] pid_t process() const { return process_; }

 private:
  int link_;
  pid_t process_;
};

/// Has every guard of this program switch off at once, and again at the program's end. For the
/// handler of a crash, which may take long to die (a core file). Async-signal-safe.
void alarmGuards() noexcept;

}  // namespace kestrel::ports
