#pragma once

#include <filesystem>
#include <span>
#include <string>

namespace kestrel::launch {

/// A file of the command line and the option that named it.
struct FileOption {
  std::string option;
  std::filesystem::path file;  ///< empty: the option was not given
};

/// Throws UsageError when two options name one file, by whatever names: one would write over what
/// the other reads or writes. A device such as /dev/null may serve several.
void checkSeparate(std::span<const FileOption> files);

}  // namespace kestrel::launch
