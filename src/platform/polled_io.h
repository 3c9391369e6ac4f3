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

/// For reading. A pipe is open at once; its writer is waited for by readSome().
[[nodiscard]] Descriptor openToRead(const std::filesystem::path& path, const StopSwitch* stop);

/// For writing what exists, without shortening it. A pipe's reader is waited for.
[[nodiscard]] Descriptor openToWrite(const std::filesystem::path& path, const StopSwitch* stop);

/// The number of bytes read, 0 at the end, -1 on failure.
[[nodiscard]] ssize_t readSome(const Descriptor& file, std::span<std::uint8_t> bytes,
                               const StopSwitch* stop);

/// 0, or the errno that ended the writing.
[[nodiscard]] int writeAll(const Descriptor& file, std::span<const std::uint8_t> bytes,
                           const StopSwitch* stop);

}  // namespace kestrel
