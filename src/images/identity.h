#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "images/checksums.h"

namespace kestrel::images {

/// What an image is known by.
struct Identity {
  std::size_t bytes = 0;
  std::uint32_t sum = 0;
  std::uint32_t crc32 = 0;
  std::string sha256;
  std::size_t blankBytes = 0;  ///< FFh
  std::size_t period = 0;      ///< the image repeats itself after so many; 0: it does not
  std::vector<std::string> looksLike = {};  ///< a sentence each
};

[[nodiscard]] Identity identify(ImageSpan image);

/// Every byte has the value; an image without bytes has any.
[[nodiscard]] bool isAll(ImageSpan image, std::uint8_t value);

/// The FFh bytes in percent of all, in whole tenths and rounded down: 100 means every byte.
[[nodiscard]] double blankPercent(const Identity& identity);

/// A run of printable characters in an image.
struct FoundText {
  std::uint32_t address = 0;
  std::string text;
};

/// The longest runs of printable ASCII characters, in the order of their addresses.
[[nodiscard]] std::vector<FoundText> findTexts(ImageSpan image, std::size_t most);

}  // namespace kestrel::images
