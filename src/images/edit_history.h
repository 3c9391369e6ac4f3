#pragma once

#include <deque>
#include <optional>
#include <string>

#include "images/ranges.h"

namespace kestrel::images {

/// How many bytes of a memory are the image, before a change of it and after.
struct Lengths {
  std::size_t before = 0;
  std::size_t after = 0;
};

/// The changes of a memory that can be taken back and made again. Of each the part that it changed
/// is kept, not the memory: editing a byte of a megabyte costs a byte. The oldest are forgotten
/// when all together are more than a limit.
class EditHistory {
 public:
  /// What undo and redo did.
  struct Step {
    std::string name;
    std::size_t first = 0;              ///< the first byte that is another now
    std::optional<std::size_t> length;  ///< of the image, where it is another now
  };

  static constexpr std::size_t kMostBytes = std::size_t{64} << 20U;

  explicit EditHistory(std::size_t mostBytes = kMostBytes) : mostBytes_(mostBytes) {}

  /// Notes a change by its name. What could have been made again is forgotten. Nothing is noted
  /// for memories that are the same.
  void note(std::string name, const Bytes& before, const Bytes& after, Lengths lengths = {});

  /// Notes the change of one byte. When it `goesOn`, and the last change was of the same byte, the
  /// two are one: the digits of a byte that is typed.
  void noteByte(std::string name, std::size_t at, std::uint8_t before, std::uint8_t after,
                Lengths lengths, bool goesOn);

  /// Takes the last change back, or makes the next one again; nothing, and the memory stays as it
  /// is, when there is none.
  std::optional<Step> undo(Bytes& memory);
  std::optional<Step> redo(Bytes& memory);

  /// Their names; nullptr when there is none.
  [[nodiscard]] const std::string* undoName() const;
  [[nodiscard]] const std::string* redoName() const;

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
    Lengths lengths;

    [[nodiscard]] std::size_t bytes() const {
      return sizeof(Change) + before.size() + after.size();
    }
  };

  void add(Change change);
  void forgetFirst();
  static void put(Bytes& memory, std::size_t from, const Bytes& there, const Bytes& instead);

  std::size_t mostBytes_;
  std::size_t bytes_ = 0;  // of all changes
  std::deque<Change> changes_;
  std::size_t done_ = 0;                    // those before it are made
  std::optional<std::size_t> savedAt_ = 0;  // empty: that state cannot be reached any more
};

}  // namespace kestrel::images
