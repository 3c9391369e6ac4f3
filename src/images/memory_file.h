#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "images/ranges.h"
#include "platform/descriptor.h"

namespace kestrel::images {

/// A file in memory with a name, for a library that opens files by their names alone. What could
/// make such a file fail is found here, where it can be explained, and not in the library.
class MemoryFile {
 public:
  /// Holds these bytes. Throws FileError.
  explicit MemoryFile(std::span<const std::uint8_t> bytes);

  /// Empty, with room for so many bytes. Throws FileError.
  explicit MemoryFile(std::size_t room);

  /// A name by which this process opens it.
  [[nodiscard]] std::string name() const;

  [[nodiscard]] Bytes contents() const;

 private:
  void checkItOpens() const;

  Descriptor file_;
};

}  // namespace kestrel::images
