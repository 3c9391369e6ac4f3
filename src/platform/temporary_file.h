#pragma once

#include <filesystem>
#include <string>

#include "platform/descriptor.h"

namespace kestrel {

/// A file ".kestrel-XXXXXX" that is to take another one's place in its folder, and is removed when
/// it does not come to that. A lock on it (flock) tells it from what a killed program left behind;
/// that is removed here when the folder is next used.
class TemporaryFile {
 public:
  /// Makes it, with these permissions less those that the user's mask or the folder takes away.
  TemporaryFile(const std::filesystem::path& folder, mode_t mode);
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  /// 0, or the errno of a file that could not be made.
  [[nodiscard]] int error() const { return error_; }
  [[nodiscard]] const Descriptor& descriptor() const { return file_; }

  /// Gives it its place, in one step. 0 or errno.
  [[nodiscard]] int renameTo(const std::filesystem::path& name);

 private:
  static Descriptor make(std::string& name, mode_t mode);

  std::string name_;
  Descriptor file_;
  int error_;
};

}  // namespace kestrel
