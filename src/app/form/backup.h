#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "app/form/frm_main.h"

namespace kestrel::form {

/// Keeps what a chip holds in a file of its own in the folder, named by device, time and sum. A
/// blank one leaves no file.
CommandResult keepContents(frmMain& form, const std::filesystem::path& folder,
                           const std::vector<std::uint8_t>& chip);

}  // namespace kestrel::form
