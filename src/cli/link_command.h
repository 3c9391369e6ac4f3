#pragma once

#include "cli/arguments.h"

namespace kestrel::cli {

/// Checks the adapter of --port BASE=link:DEVICE: its version, its lines by a loop-back plug, its
/// speed. Returns kNoBoard when it cannot be used, kFailed when a line is bad or there is no plug.
[[nodiscard]] int testLink(const Arguments& arguments);

}  // namespace kestrel::cli
