#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/stop_switch.h"

namespace kestrel {

/// Reads a whole regular file (or pipe, or device that ends). While a pipe keeps it waiting, a
/// thrown switch ends it by OperationStopped, and where none is given any signal by FileError.
/// Throws FileError when it cannot be opened or read, is a folder, or holds more than `maxBytes`.
[[nodiscard]] std::vector<std::uint8_t> readWholeFile(const std::filesystem::path& path,
                                                      std::size_t maxBytes,
                                                      const StopSwitch* stop = nullptr);

/// The same as text; kestrel's own text files are far below the limit of 1 MB.
[[nodiscard]] std::string readWholeTextFile(const std::filesystem::path& path,
                                            const StopSwitch* stop = nullptr);

/// Tries and writes a file in one go (see FileTarget): it has the whole new contents afterwards,
/// or the whole earlier ones. Throws FileError, and OperationStopped at a pipe or device.
void writeFileAtomically(const std::filesystem::path& path, std::span<const std::uint8_t> bytes,
                         const StopSwitch* stop = nullptr);
void writeFileAtomically(const std::filesystem::path& path, std::string_view text);

}  // namespace kestrel
