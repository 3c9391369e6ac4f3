#pragma once

#include <string_view>

#include "devices/families.h"

namespace kestrel::devices {

// What is to be said about a device where it cannot do what others can: one home for the window's
// tips and the command line's errors.

/// Why the command is not offered for the family; empty when it is.
[[nodiscard]] std::string_view whyNoBlankCheck(const Family& family);
[[nodiscard]] std::string_view whyNoErase(const Family& family);
[[nodiscard]] std::string_view whyNoDisplay(const Family& family);

}  // namespace kestrel::devices
