#pragma once

#include <QFileInfo>
#include <QString>
#include <optional>
#include <string>
#include <utility>

#include "app/window/texts.h"
#include "app/work/image_options.h"

namespace kestrel::window {

/// A file and how the image is made of it; without options byte by byte.
struct ImageSource {
  std::string file;
  work::ImageOptions options = {};
};

/// Where the bytes of the code buffer come from, as far as the window's commands know, and whether
/// they stand in a file.
class CodeOrigin {
 public:
  /// It was opened or saved.
  void isInFile() { from_ = From::File; }
  /// It was made of this file, which is not the one to save into.
  void importedFrom(ImageSource source) {
    from_ = From::Import;
    imported_ = std::move(source);
  }
  void readFromChip() { from_ = From::Chip; }
  void erased() {
    if (from_ != From::Erased) beforeErase_ = from_;
    from_ = From::Erased;
    isErased_ = true;
  }

  /// A step was taken back or made again; what is erased then, and in no file, is known to be so.
  void follow(bool isErased, bool isChanged) {
    const bool wasErased = std::exchange(isErased_, isErased);
    if (isErased && !wasErased && isChanged) erased();
    if (!isErased && from_ == From::Erased) from_ = beforeErase_;
  }

  /// The buffer is not what the open file holds.
  [[nodiscard]] bool isChanged() const { return from_ == From::Chip || from_ == From::Erased; }
  /// It holds what may exist nowhere else.
  [[nodiscard]] bool isUnsavedRead() const { return from_ == From::Chip; }

  /// The file that the buffer was loaded from or saved to; `codeFile` is the one that is open.
  [[nodiscard]] std::optional<ImageSource> source(const std::string& codeFile) const {
    if (from_ == From::Import) return imported_;
    if (from_ == From::File && !codeFile.empty()) return ImageSource{.file = codeFile};
    return std::nullopt;
  }

  /// "game.bin", or what stands in its place; empty before the first file.
  [[nodiscard]] QString title(const std::string& codeFile) const {
    if (from_ == From::Chip) return "read from chip";
    if (from_ == From::Erased) return "buffer erased";
    const auto shown = source(codeFile);
    if (!shown) return {};
    const QString name = QFileInfo(QString::fromStdString(shown->file)).fileName();
    return onOneLine(name) + (from_ == From::Import ? " (imported)" : "");
  }

 private:
  enum class From { File, Import, Chip, Erased };
  From from_ = From::File;
  From beforeErase_ = From::File;
  bool isErased_ = false;  // also of a buffer that was saved since
  ImageSource imported_;
};

}  // namespace kestrel::window
