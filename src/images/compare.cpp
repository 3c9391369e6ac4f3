#include "images/compare.h"

#include <algorithm>
#include <bit>
#include <functional>
#include <optional>

#include "images/identity.h"

namespace kestrel::images {
namespace {

constexpr unsigned kDataLines = 8;
constexpr std::size_t kMostShift = 1024;  // a header of a file, a block of a loader

/// The part that both have.
struct Pair {
  ImageSpan chip;
  ImageSpan image;

  [[nodiscard]] std::size_t size() const { return chip.size(); }

  /// The chip holds at each address what `expected` says; an address without one is passed over.
  [[nodiscard]] bool chipIs(
      const std::function<std::optional<std::uint8_t>(std::size_t)>& expected) const {
    for (std::size_t i = 0; i < size(); ++i) {
      const auto byte = expected(i);
      if (byte && *byte != chip[i]) return false;
    }
    return true;
  }
};

void count(const Pair& pair, Comparison& result) {
  for (std::size_t i = 0; i < pair.size(); ++i) {
    const unsigned chip = pair.chip[i];
    const unsigned image = pair.image[i];
    if (chip == image) continue;
    ++result.differentBytes;
    result.bitsToProgram += static_cast<std::size_t>(std::popcount(chip & ~image));
    result.bitsToErase += static_cast<std::size_t>(std::popcount(~chip & image));
    addAddress(result.ranges, static_cast<std::uint32_t>(i));
  }
}

// The image must have both levels there, or the line could be a good one.
void findStuckDataLine(const Pair& pair, std::vector<Finding>& found) {
  for (unsigned line = 0; line < kDataLines; ++line) {
    const auto bit = static_cast<std::uint8_t>(1U << line);
    const auto others = static_cast<std::uint8_t>(~bit);
    for (const bool isHigh : {false, true}) {
      const auto expected = [&](std::size_t i) -> std::optional<std::uint8_t> {
        return static_cast<std::uint8_t>((pair.image[i] & others) | (isHigh ? bit : 0));
      };
      if (pair.chipIs(expected)) {
        found.push_back({Meaning::DataLineStuck, "data line D" + std::to_string(line) +
                                                     " is always " + (isHigh ? "1" : "0") +
                                                     ": a bent pin or a bad contact"});
      }
    }
  }
}

void findStuckAddressLine(const Pair& pair, std::vector<Finding>& found) {
  for (std::size_t line = 0; (std::size_t{1} << line) < pair.size(); ++line) {
    const std::size_t bit = std::size_t{1} << line;
    const std::string name = "address line A" + std::to_string(line);
    for (const bool isHigh : {false, true}) {
      const auto expected = [&](std::size_t i) -> std::optional<std::uint8_t> {
        const std::size_t seen = isHigh ? i | bit : i & ~bit;
        if (seen >= pair.size()) return std::nullopt;
        return pair.image[seen];
      };
      if (pair.chipIs(expected)) {
        found.push_back(
            {Meaning::AddressLineStuck, name + " is always " + (isHigh ? "1" : "0") +
                                            ": a bent pin, a bad contact or the wrong device"});
        return;
      }
    }
  }
}

// The chip alone says it: whatever was written last stands in both halves.
void findAlias(const Pair& pair, std::vector<Finding>& found) {
  for (std::size_t line = 0; (std::size_t{1} << line) < pair.size(); ++line) {
    const std::size_t bit = std::size_t{1} << line;
    const auto twin = [&](ImageSpan bytes) {
      return [=](std::size_t i) -> std::optional<std::uint8_t> {
        if ((i ^ bit) >= bytes.size()) return std::nullopt;
        return bytes[i ^ bit];
      };
    };
    const Pair itself{.chip = pair.image, .image = pair.image};
    if (pair.chipIs(twin(pair.chip)) && !itself.chipIs(twin(pair.image))) {
      found.push_back({Meaning::Aliased, "the chip holds the same with A" + std::to_string(line) +
                                             " 0 and 1: that address line does not reach it"});
      return;
    }
  }
}

// A uniform image is shifted by anything.
void findShift(const Pair& pair, std::vector<Finding>& found) {
  for (std::size_t n = 1; n <= kMostShift && 2 * n < pair.size(); ++n) {
    const auto from = static_cast<std::ptrdiff_t>(n);
    const ImageSpan chip = pair.chip;
    const ImageSpan image = pair.image;
    const bool isLater = std::equal(chip.begin() + from, chip.end(), image.begin());
    const bool isEarlier = std::equal(image.begin() + from, image.end(), chip.begin());
    if (!isLater && !isEarlier) continue;
    found.push_back({Meaning::Shifted, "the image is in the chip " + std::to_string(n) +
                                           (n == 1 ? " byte " : " bytes ") +
                                           (isLater ? "later" : "earlier") +
                                           ": look at where the file begins"});
    return;
  }
}

void findSwappedLanes(const Pair& pair, std::vector<Finding>& found) {
  const auto other = [&](std::size_t i) -> std::optional<std::uint8_t> {
    if ((i ^ 1U) >= pair.size()) return std::nullopt;
    return pair.image[i ^ 1U];
  };
  if (pair.size() > 1 && pair.chipIs(other)) {
    found.push_back({Meaning::LanesSwapped, "the two bytes of each word are exchanged"});
  }
}

void findCauses(const Pair& pair, std::vector<Finding>& found) {
  if (isAll(pair.chip, 0xFF)) {
    found.push_back({Meaning::AllBlank,
                     "the chip reads FFh everywhere: it is blank, or there is "
                     "no chip or no supply"});
    return;
  }
  if (isAll(pair.chip, 0x00)) {
    found.push_back(
        {Meaning::AllZero, "the chip reads 00h everywhere: no contact, or a chip of another kind"});
    return;
  }
  findStuckDataLine(pair, found);
  findStuckAddressLine(pair, found);
  findAlias(pair, found);
  findShift(pair, found);
  findSwappedLanes(pair, found);
}

void noteBits(const Comparison& result, std::vector<Finding>& found) {
  if (result.bitsToErase == 0) {
    found.push_back({Meaning::Programmable,
                     "every difference is a 1 that has to be a 0: the chip "
                     "can be programmed as it is"});
  } else {
    found.push_back(
        {Meaning::NeedsErasing, std::to_string(result.bitsToErase) +
                                    " bits are 0 and have to be 1: the chip has to be erased"});
  }
}

}  // namespace

std::string rangeMeaning(ImageSpan chip, ImageSpan image, const Range& range) {
  constexpr std::size_t kEnough = 6;  // fewer bytes are found somewhere near by chance
  const ImageSpan held = chip.subspan(range.first, range.size());
  if (isAll(held, 0xFF)) return "FFh in the chip";
  const auto isThere = [&](std::size_t from) {
    return from + held.size() <= image.size() &&
           std::ranges::equal(held, image.subspan(from, held.size()));
  };
  for (std::size_t n = 1; n <= kMostShift && held.size() >= kEnough; ++n) {
    const bool isLater = range.first >= n && isThere(range.first - n);
    if (!isLater && !isThere(range.first + n)) continue;
    return "shifted, " + std::to_string(n) + (n == 1 ? " byte " : " bytes ") +
           (isLater ? "later" : "earlier");
  }
  for (std::size_t i = 0; i < held.size(); ++i) {
    if ((~held[i] & image[range.first + i]) != 0) return "needs erasing";
  }
  return "can be programmed";
}

Comparison compare(ImageSpan chip, ImageSpan image) {
  const std::size_t size = std::min(chip.size(), image.size());
  const Pair pair{.chip = chip.first(size), .image = image.first(size)};
  Comparison result{.comparedBytes = size,
                    .chipBytes = chip.size(),
                    .imageBytes = image.size(),
                    .ranges = {},
                    .findings = {}};
  count(pair, result);
  if (result.isEqual()) return result;
  findCauses(pair, result.findings);
  noteBits(result, result.findings);
  return result;
}

}  // namespace kestrel::images
