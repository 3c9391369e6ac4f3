#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "images/image_file.h"

namespace kestrel::work {

/// How the files of -i and -o hold their image: --format, --save-format, --at, --range. Without any
/// of them a file is taken and written byte by byte.
struct ImageOptions {
  std::optional<std::string> format = {};      ///< auto, or a format's name
  std::optional<std::string> saveFormat = {};  ///< of -o, where it is another
  images::Placement placement = {};            ///< of -i; without -i, of -o

  /// -i is not taken byte by byte.
  [[nodiscard]] bool isImport() const;
  /// -o is not written byte by byte.
  [[nodiscard]] bool isExport(bool hasInput) const;

  /// That of -i; nullptr: by its look.
  [[nodiscard]] const images::Format* formatToRead() const;
  /// That of -o: "auto" goes by the ending of its name.
  [[nodiscard]] const images::Format& formatToWrite(std::string_view fileName) const;
};

// One function an option. Each throws UsageError for a text that is no value of its option.
void setFormat(ImageOptions& options, const std::string& text);
void setSaveFormat(ImageOptions& options, const std::string& text);
void setAt(ImageOptions& options, const std::string& text);
void setRange(ImageOptions& options, const std::string& text);

}  // namespace kestrel::work
