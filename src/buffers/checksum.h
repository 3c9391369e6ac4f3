#pragma once

#include <cstdint>
#include <string>

namespace kestrel::buffers {

/// The sum with one byte added, modulo 65536. Files and devices are summed alike.
[[nodiscard]] constexpr std::int32_t addToChecksum(std::int32_t sum, std::uint8_t byte) {
  sum += byte;
  return sum > 65535 ? sum - 65536 : sum;
}

/// Exactly four upper-case hexadecimal digits.
[[nodiscard]] std::string checksumText(std::int32_t sum);

}  // namespace kestrel::buffers
