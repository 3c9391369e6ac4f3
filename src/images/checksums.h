#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "images/ranges.h"

namespace kestrel::images {

using ImageSpan = std::span<const std::uint8_t>;

/// The bytes added up, modulo 65536: the sum that the log gives of files and devices.
[[nodiscard]] std::uint32_t sum16(ImageSpan bytes);

/// CRC-16/CCITT: polynomial 1021h, begins with FFFFh, most significant bit first.
[[nodiscard]] std::uint32_t crc16(ImageSpan bytes);

/// CRC-32 of Ethernet and ZIP (IEEE 802.3).
[[nodiscard]] std::uint32_t crc32(ImageSpan bytes);

/// SHA-256 (FIPS 180-4) in small hexadecimal digits, as sha256sum prints it.
[[nodiscard]] std::string sha256(ImageSpan bytes);

/// A checksum that can be put into an image.
struct ChecksumKind {
  const char* name;
  std::size_t bytes;
  std::uint32_t (*of)(ImageSpan);
};

inline constexpr std::array<ChecksumKind, 3> kChecksumKinds{
    {{"sum", 2, sum16}, {"crc16", 2, crc16}, {"crc32", 4, crc32}}};

/// Throws ImageError.
[[nodiscard]] const ChecksumKind& checksumNamed(std::string_view name);

}  // namespace kestrel::images
