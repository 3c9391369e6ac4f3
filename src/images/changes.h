#pragma once

#include <cstdint>

#include "images/checksums.h"
#include "images/ranges.h"

namespace kestrel::images {

// Changes of an image as functions of it: they give the new image and leave the old one as it was.
// Each throws ImageError for what it cannot do.

/// The range filled with the pattern, again and again.
[[nodiscard]] Bytes fillRange(Bytes image, const Range& range, ImageSpan pattern);

/// The range copied over what is at the address; the two may overlap.
[[nodiscard]] Bytes copyRange(Bytes image, const Range& from, std::uint32_t to);

/// The two bytes of each 16-bit word exchanged. The range begins at an even address and has an even
/// number of bytes.
[[nodiscard]] Bytes swapWordBytes(Bytes image, const Range& range);

/// Bit 0 exchanged with bit 7 and so on, for a data bus that is wired the other way round.
[[nodiscard]] Bytes reverseBits(Bytes image, const Range& range);

enum class Lane : std::uint8_t { Even, Odd };

/// Every other byte: the chip of one lane of a 16-bit machine.
[[nodiscard]] Bytes splitLane(const Bytes& image, Lane lane);

/// The image of both lanes. They are of one length.
[[nodiscard]] Bytes joinLanes(const Bytes& even, const Bytes& odd);

enum class Half : std::uint8_t { Low, High };
[[nodiscard]] Bytes halve(const Bytes& image, Half half);

/// The image twice, for a chip of twice the size.
[[nodiscard]] Bytes twice(const Bytes& image);

enum class ByteOrder : std::uint8_t { LittleEndian, BigEndian };

/// The checksum of the range at the address, which is outside of the range.
[[nodiscard]] Bytes putChecksum(Bytes image, const ChecksumKind& kind, const Range& range,
                                std::uint32_t at, ByteOrder order);

/// Other bytes over what is at the address.
[[nodiscard]] Bytes insertAt(Bytes image, ImageSpan bytes, std::uint32_t at);

/// The whole of an image that is not empty.
[[nodiscard]] Range wholeOf(const Bytes& image);

}  // namespace kestrel::images
