#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

/// Reads a whole regular file (or pipe, or device that ends).
/// Throws FileError when it cannot be opened or read, is a folder, or holds more than `maxBytes`.
[[nodiscard]] std::vector<std::uint8_t> readWholeFile(const std::filesystem::path& path,
                                                      std::size_t maxBytes);

/// The same as text; kestrel's own text files are far below the limit of 1 MB.
[[nodiscard]] std::string readWholeTextFile(const std::filesystem::path& path);

/// Replaces a file in one step: the bytes go into a temporary file in the same folder, are flushed
/// to the disk and renamed over the old file, so that a crash or a full disk leaves the earlier
/// file whole. Links are followed; what is no regular file (a pipe, a device) is written directly.
/// Throws FileError.
void writeFileAtomically(const std::filesystem::path& path, std::span<const std::uint8_t> bytes);
void writeFileAtomically(const std::filesystem::path& path, std::string_view text);

}  // namespace kestrel
