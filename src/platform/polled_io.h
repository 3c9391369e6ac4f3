#pragma once

#include <cstdint>
#include <filesystem>
#include <span>

#include "platform/descriptor.h"
#include "platform/stop_switch.h"

namespace kestrel {

// Opening, reading and writing that never sleep for good: a pipe without its other end and a slow
// device are waited for in short steps, and a thrown stop switch ends the wait by OperationStopped.
// `stop` may be nullptr: then a signal ends it, with EINTR. Each returns as the system call does.

// The names of the open standard streams. Another opening of what is behind them would start at
// its beginning, and may not be permitted.
inline constexpr const char* kStandardInput = "/dev/stdin";
inline constexpr const char* kStandardOutput = "/dev/stdout";

/// For reading. A pipe is open at once; its writer is waited for by readSome().
[[nodiscard]] Descriptor openToRead(const std::filesystem::path& path, const StopSwitch* stop);

/// For writing what exists, without shortening it. A pipe's reader is waited for.
[[nodiscard]] Descriptor openToWrite(const std::filesystem::path& path, const StopSwitch* stop);

/// The same, made anew or emptied.
[[nodiscard]] Descriptor openNew(const std::filesystem::path& path, const StopSwitch* stop);

/// The number of bytes read, 0 at the end, -1 on failure.
[[nodiscard]] ssize_t readSome(const Descriptor& file, std::span<std::uint8_t> bytes,
                               const StopSwitch* stop);

/// 0, or the errno that ended the writing.
[[nodiscard]] int writeAll(const Descriptor& file, std::span<const std::uint8_t> bytes,
                           const StopSwitch* stop);

}  // namespace kestrel
