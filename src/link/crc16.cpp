#include "link/crc16.h"

namespace kestrel::link {
namespace {

constexpr unsigned kPolynomial = 0x8408;  // 1021h, bits reversed

unsigned addByte(unsigned check, std::uint8_t value) {
  check ^= value;
  for (int bit = 0; bit < 8; ++bit) check = (check >> 1) ^ ((check & 1U) != 0 ? kPolynomial : 0U);
  return check;
}

}  // namespace

std::uint16_t crc16(std::span<const std::uint8_t> bytes) {
  unsigned check = 0xFFFF;
  for (const std::uint8_t value : bytes) check = addByte(check, value);
  return static_cast<std::uint16_t>(check);
}

}  // namespace kestrel::link
