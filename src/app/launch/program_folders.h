#pragma once

#include "app/launch/option_values.h"
#include "platform/folders.h"

namespace kestrel::launch {

/// Where this start's files are.
///
/// Configuration: `--home`, else the folder "kestrel" in the user's configuration folder
/// (XDG_CONFIG_HOME, ~/.config; without HOME the password entry names it); a simulated board has
/// its own below it, "simulator/MODEL-PORT", so that it is never taken for a real or for another
/// simulated one. The folder is created; a failure shows when something is written there. The
/// superuser's start with a user's HOME leaves it to that user. Throws UsageError when there is no
/// home folder.
///
/// Data: "../share/kestrel" beside an installed program, else the "data" folder of the source tree
/// that the program was built in.
[[nodiscard]] Folders programFolders(const LaunchOptions& options);

}  // namespace kestrel::launch
