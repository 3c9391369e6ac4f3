#pragma once

#include "cli/arguments.h"

namespace kestrel::cli {

/// `image OPERATION WORD...`: describes a file or changes it, without a form and without a board.
/// Throws UsageError, FileError.
[[nodiscard]] int changeImage(const Arguments& arguments);

}  // namespace kestrel::cli
