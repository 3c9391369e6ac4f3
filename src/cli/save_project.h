#pragma once

#include "cli/arguments.h"

namespace kestrel::cli {

/// `save-project FILE`: writes the options given into the project; its other lines stay. Throws
/// FileError.
[[nodiscard]] int saveProject(const Arguments& arguments);

}  // namespace kestrel::cli
