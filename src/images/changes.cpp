#include "images/changes.h"

#include <algorithm>

#include "images/image_file.h"

namespace kestrel::images {
namespace {

std::uint8_t reversed(std::uint8_t byte) {
  unsigned bits = byte;
  bits = ((bits & 0xF0U) >> 4U) | ((bits & 0x0FU) << 4U);
  bits = ((bits & 0xCCU) >> 2U) | ((bits & 0x33U) << 2U);
  bits = ((bits & 0xAAU) >> 1U) | ((bits & 0x55U) << 1U);
  return static_cast<std::uint8_t>(bits);
}

std::span<std::uint8_t> bytesIn(Bytes& image, const Range& range) {
  checkInside(range, image.size());
  return std::span(image).subspan(range.first, range.size());
}

Range rangeAt(std::uint32_t at, std::size_t bytes) {
  const std::uint64_t last = std::uint64_t{at} + bytes - 1;
  if (last > 0xFFFFFFFF) throw ImageError(addressText(at) + " is too near to the last address");
  return {.first = at, .last = static_cast<std::uint32_t>(last)};
}

void checkEvenSize(const Bytes& image) {
  if (image.size() % 2 == 0 && !image.empty()) return;
  throw ImageError("the image has " + std::to_string(image.size()) +
                   " bytes, which has no halves; fill it up to an even number first");
}

}  // namespace

Range wholeOf(const Bytes& image) {
  if (image.empty()) throw ImageError("the image is empty");
  return {.first = 0, .last = static_cast<std::uint32_t>(image.size() - 1)};
}

Bytes fillRange(Bytes image, const Range& range, ImageSpan pattern) {
  if (pattern.empty()) throw ImageError("nothing to fill with; give a byte such as FF");
  const std::span<std::uint8_t> target = bytesIn(image, range);
  for (std::size_t i = 0; i < target.size(); ++i) target[i] = pattern[i % pattern.size()];
  return image;
}

Bytes copyRange(Bytes image, const Range& from, std::uint32_t to) {
  const std::span<const std::uint8_t> source = bytesIn(image, from);
  const Bytes kept(source.begin(), source.end());
  return insertAt(std::move(image), kept, to);
}

Bytes swapWordBytes(Bytes image, const Range& range) {
  if (range.first % 2 != 0 || range.size() % 2 != 0) {
    throw ImageError(rangeText(range) +
                     " is no row of whole words; begin at an even address and "
                     "end at an odd one");
  }
  const std::span<std::uint8_t> target = bytesIn(image, range);
  for (std::size_t i = 0; i < target.size(); i += 2) std::swap(target[i], target[i + 1]);
  return image;
}

Bytes reverseBits(Bytes image, const Range& range) {
  std::ranges::transform(bytesIn(image, range), bytesIn(image, range).begin(), reversed);
  return image;
}

Bytes splitLane(const Bytes& image, Lane lane) {
  checkEvenSize(image);
  Bytes bytes;
  bytes.reserve(image.size() / 2);
  for (std::size_t i = lane == Lane::Odd ? 1 : 0; i < image.size(); i += 2)
    bytes.push_back(image[i]);
  return bytes;
}

Bytes joinLanes(const Bytes& even, const Bytes& odd) {
  if (even.size() != odd.size()) {
    throw ImageError("the even bytes are " + std::to_string(even.size()) + ", the odd ones " +
                     std::to_string(odd.size()) + "; fill up the shorter file first");
  }
  Bytes image;
  image.reserve(2 * even.size());
  for (std::size_t i = 0; i < even.size(); ++i) image.insert(image.end(), {even[i], odd[i]});
  return image;
}

Bytes halve(const Bytes& image, Half half) {
  checkEvenSize(image);
  const auto middle = image.begin() + static_cast<std::ptrdiff_t>(image.size() / 2);
  return half == Half::Low ? Bytes(image.begin(), middle) : Bytes(middle, image.end());
}

Bytes twice(const Bytes& image) {
  if (2 * image.size() > kMostImageBytes) {
    throw ImageError("twice " + std::to_string(image.size()) + " bytes are more than any chip has");
  }
  Bytes both = image;
  both.insert(both.end(), image.begin(), image.end());
  return both;
}

Bytes putChecksum(Bytes image, const ChecksumKind& kind, const Range& range, std::uint32_t at,
                  ByteOrder order) {
  const Range place = rangeAt(at, kind.bytes);
  if (place.first <= range.last && range.first <= place.last) {
    throw ImageError("the checksum at " + rangeText(place) + " would be part of what it counts, " +
                     rangeText(range) + "; end the range before it");
  }
  const std::uint32_t value = kind.of(bytesIn(image, range));
  Bytes bytes;
  for (std::size_t i = 0; i < kind.bytes; ++i) {
    bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  }
  if (order == ByteOrder::BigEndian) std::ranges::reverse(bytes);
  return insertAt(std::move(image), bytes, at);
}

Bytes insertAt(Bytes image, ImageSpan bytes, std::uint32_t at) {
  if (bytes.empty()) return image;
  std::ranges::copy(bytes, bytesIn(image, rangeAt(at, bytes.size())).begin());
  return image;
}

}  // namespace kestrel::images
