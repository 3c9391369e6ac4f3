#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "images/checksums.h"
#include "images/ranges.h"

namespace kestrel::images {

/// What the differences of a chip from its image point to.
enum class Meaning : std::uint8_t {
  Programmable,      ///< bits that must go from 1 to 0 alone
  NeedsErasing,      ///< a bit that must go from 0 to 1
  AllBlank,          ///< the chip reads FFh everywhere
  AllZero,           ///< the chip reads 00h everywhere
  DataLineStuck,     ///< one data line always has one level
  AddressLineStuck,  ///< one address line always has one level
  Aliased,       ///< two halves of every block of the chip are equal: an address line is missing
  Shifted,       ///< the image is there, some bytes away
  LanesSwapped,  ///< the two bytes of each word are exchanged
};

struct Finding {
  Meaning meaning;
  std::string text;  ///< for a person
};

/// All differences of two images, address by address. Where one is longer, its rest is not
/// compared, but its length is reported.
struct Comparison {
  std::size_t comparedBytes = 0;
  std::size_t chipBytes = 0;
  std::size_t imageBytes = 0;
  std::size_t differentBytes = 0;
  std::size_t bitsToProgram = 0;  ///< 1 in the chip, 0 in the image
  std::size_t bitsToErase = 0;    ///< 0 in the chip, 1 in the image
  std::vector<Range> ranges;      ///< neighbours in one
  std::vector<Finding> findings;  ///< empty when nothing differs

  [[nodiscard]] bool isEqual() const { return differentBytes == 0; }
};

[[nodiscard]] Comparison compare(ImageSpan chip, ImageSpan image);

/// What one range of differences looks like by itself, in a few words.
[[nodiscard]] std::string rangeMeaning(ImageSpan chip, ImageSpan image, const Range& range);

}  // namespace kestrel::images
