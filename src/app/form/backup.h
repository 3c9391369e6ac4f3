#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "app/form/frm_main.h"

namespace kestrel::form {

/// The local date and time, for example 2026-11-21T17:05:09.
[[nodiscard]] std::string dateAndTime();

/// A blank chip has nothing to keep.
[[nodiscard]] bool isBlank(const std::vector<std::uint8_t>& chip);

/// Keeps what a chip holds in a file of its own in the folder, named by device, time and sum. A
/// blank one leaves no file.
CommandResult keepContents(frmMain& form, const std::filesystem::path& folder,
                           const std::vector<std::uint8_t>& chip);

}  // namespace kestrel::form
