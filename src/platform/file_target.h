#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>

#include "platform/stop_switch.h"
#include "platform/temporary_file.h"

namespace kestrel {

/// A file that is to be written: made, and thereby tried, before work that may take minutes, and
/// written by commit() after it. Without a commit the file stays as it was.
///
/// A file is replaced in one step: the bytes go into a temporary file in the same folder, are
/// flushed to the disk and renamed over the old one, so that a crash or a full disk leaves the
/// earlier file whole. The new file has the old one's owner, group, extended attributes and
/// permissions, but runs as nobody else (no set-user-id). Links are followed, to a file that is not
/// there yet too.
///
/// What a new file could not stand for is written in place: a file with several names, one whose
/// owner, group or attributes cannot be given to another file, one in a folder that takes no new
/// file. Its space is taken before its contents are touched. A pipe or a device is written as such.
class FileTarget {
 public:
  /// Throws FileError when the file cannot be written. A pipe is not opened before commit().
  explicit FileTarget(std::filesystem::path path);

  /// Throws FileError, and OperationStopped where a pipe or a device keeps it waiting and the
  /// switch is thrown (without a switch any signal ends that wait by FileError).
  void commit(std::span<const std::uint8_t> bytes, const StopSwitch* stop = nullptr);

 private:
  using Status = std::optional<struct stat>;  ///< empty: there is no such file

  [[noreturn]] void fail(int error) const;
  [[nodiscard]] Status status() const;
  [[nodiscard]] bool isReplaceable(const Status& old) const;
  bool prepareTemporary(const Status& old);
  [[nodiscard]] int replace(std::span<const std::uint8_t> bytes);
  [[nodiscard]] int rewrite(std::span<const std::uint8_t> bytes, const struct stat& old);
  [[nodiscard]] int writeStream(std::span<const std::uint8_t> bytes, const StopSwitch* stop);

  std::filesystem::path path_;  ///< as it was given
  std::filesystem::path name_;  ///< where its links end
  std::optional<TemporaryFile> temporary_;
  bool isForNewFile_ = false;  ///< how the temporary file was made
};

}  // namespace kestrel
