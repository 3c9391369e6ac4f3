#include "images/checksums.h"

#include <gcrypt.h>
#include <srecord/crc16.h>
#include <srecord/crc32.h>

#include <algorithm>

namespace kestrel::images {

std::uint32_t sum16(ImageSpan bytes) {
  std::uint32_t sum = 0;
  for (const std::uint8_t byte : bytes) sum = (sum + byte) & 0xFFFFU;
  return sum;
}

// The library calls the usual way to begin, 16 ones before the first byte, "broken".
std::uint32_t crc16(ImageSpan bytes) {
  srecord::crc16 crc(srecord::crc16::seed_mode_broken);
  crc.nextbuf(bytes.data(), bytes.size());
  return crc.get();
}

std::uint32_t crc32(ImageSpan bytes) {
  srecord::crc32 crc;
  crc.nextbuf(bytes.data(), bytes.size());
  return static_cast<std::uint32_t>(crc.get() & 0xFFFFFFFFU);
}

std::string sha256(ImageSpan bytes) {
  // The library wants to be asked for its version before anything else.
  static const bool isReady = gcry_check_version(nullptr) != nullptr;
  if (!isReady) throw ImageError("SHA-256 cannot be had: libgcrypt did not start");
  std::array<std::uint8_t, 32> digest{};
  gcry_md_hash_buffer(GCRY_MD_SHA256, digest.data(), bytes.data(), bytes.size());
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : digest) {
    text += kDigits[byte >> 4U];
    text += kDigits[byte & 0x0FU];
  }
  return text;
}

const ChecksumKind& checksumNamed(std::string_view name) {
  const auto found =
      std::ranges::find_if(kChecksumKinds, [&](const auto& kind) { return kind.name == name; });
  if (found != kChecksumKinds.end()) return *found;
  throw ImageError("\"" + std::string(name) + "\" is no checksum; use sum, crc16 or crc32");
}

}  // namespace kestrel::images
