#include "app/launch/separate_files.h"

#include "app/launch/option_values.h"
#include "platform/file_names.h"

namespace kestrel::launch {
namespace {

bool isDevice(const std::filesystem::path& file) {
  std::error_code ignored;
  return std::filesystem::is_character_file(file, ignored);
}

void checkPair(const FileOption& a, const FileOption& b) {
  if (a.file.empty() || b.file.empty() || isDevice(a.file)) return;
  if (!isSameFile(a.file, b.file)) return;
  throw UsageError(a.option + " and " + b.option + " name one file (" + shownName(a.file.string()) +
                   "); each needs its own");
}

}  // namespace

void checkSeparate(std::span<const FileOption> files) {
  for (; !files.empty(); files = files.subspan(1)) {
    for (const FileOption& other : files.subspan(1)) checkPair(files.front(), other);
  }
}

}  // namespace kestrel::launch
