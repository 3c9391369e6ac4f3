#pragma once

#include <optional>
#include <string>
#include <vector>

#include "images/ranges.h"

namespace kestrel::images {

/// The changes of one image that can be taken back and made again. Of each the part that it changed
/// is kept, not the image: editing a byte of a megabyte costs a byte.
class EditHistory {
 public:
  /// Notes a change by its name. What could have been made again is forgotten. Nothing is noted
  /// for images that are the same.
  void note(std::string name, const Bytes& before, const Bytes& after);

  /// Takes the last change back, or makes the next one again. Gives its name; nothing, and the
  /// image stays as it is, when there is none.
  std::optional<std::string> undo(Bytes& image);
  std::optional<std::string> redo(Bytes& image);

  /// The image is now the one that a file holds.
  void markSaved() { savedAt_ = done_; }

  /// Something was changed since it was.
  [[nodiscard]] bool isChanged() const { return savedAt_ != done_; }

  void clear();

 private:
  struct Change {
    std::string name;
    std::size_t from = 0;  ///< the first byte that differs
    Bytes before;          ///< from there to the last that differs
    Bytes after;
  };

  static void put(Bytes& image, std::size_t from, const Bytes& there, const Bytes& instead);

  std::vector<Change> changes_;
  std::size_t done_ = 0;                    // those before it are made
  std::optional<std::size_t> savedAt_ = 0;  // empty: that state cannot be reached any more
};

}  // namespace kestrel::images
