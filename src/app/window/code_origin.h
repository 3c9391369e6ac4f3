#pragma once

#include <QString>

namespace kestrel::window {

/// Where the bytes of the code buffer come from, as far as the window's commands tell, and whether
/// they stand in a file.
class CodeOrigin {
 public:
  /// It was opened or saved.
  void isInFile() { from_ = From::File; }
  /// It was made of this file, which is not the one to save into.
  void importedFrom(const QString& file) {
    from_ = From::Import;
    imported_ = file;
  }
  void readFromChip() { from_ = From::Chip; }
  void erased() { from_ = From::Erased; }

  /// The buffer is not what the open file holds.
  [[nodiscard]] bool isChanged() const { return from_ == From::Chip || from_ == From::Erased; }
  /// It holds what may exist nowhere else.
  [[nodiscard]] bool isUnsavedRead() const { return from_ == From::Chip; }

  /// "game.bin", or what stands in its place; empty before the first file.
  [[nodiscard]] QString title(const QString& fileName) const {
    if (from_ == From::Chip) return "read from chip";
    if (from_ == From::Erased) return "buffer erased";
    if (from_ == From::Import) return imported_ + " (imported)";
    return fileName;
  }

 private:
  enum class From { File, Import, Chip, Erased };
  From from_ = From::File;
  QString imported_;
};

}  // namespace kestrel::window
