#pragma once

#include <cstddef>

#include "support/form_rig.h"

namespace kestrel::test {

/// A device and the chip that fits it.
struct Part {
  const char* device;
  const char* chip;
  std::size_t bytes;
  std::size_t voltage = 1;  ///< Voltage_button: 1 = 12.5 V, 2 = 21 V, 3 = 25 V
};

// clang-format off
inline constexpr Part kParts[]{
    {"Eprom 2732A", "2732A", 0x1000, 2},   {"Eprom 2732B", "2732B", 0x1000},     {"Eprom 2732", "2732", 0x1000, 3},
    {"Eprom 27C32", "27C32", 0x1000, 3},   {"Eprom 2764", "2764", 0x2000, 2},    {"Eprom 27C64", "27C64", 0x2000},
    {"Eprom 27128", "27128", 0x4000, 2},   {"Eprom 27C128", "27C128", 0x4000},   {"Eprom 27256", "27256", 0x8000},
    {"Eprom 27C256", "27C256", 0x8000},    {"Eprom 27C259", "27C259", 0x8000},   {"Eprom 27C512", "27C512", 0x10000},
    {"Eprom 27C1001", "27C1001", 0x20000}, {"Eprom 27C010", "27C010", 0x20000},  {"Eprom 27C2001", "27C2001", 0x40000},
    {"Eprom 27C020", "27C020", 0x40000},   {"Eprom 27C040", "27C040", 0x80000},  {"Eprom 27C080 OTP", "27C080-OTP", 0x100000},
    {"Eeprom XICOR X28C256", "X28C256", 0x8000, 0},           {"Eeprom Catalyst CAT28C256", "CAT28C256", 0x8000, 0},
    {"Eeprom Catalyst CAT28C257", "CAT28C257", 0x8000, 0},    {"Flash Atmel AT29C256", "AT29C256", 0x8000, 0},
    {"Eeprom 24C08 Serial", "24C08", 0x400, 0},               {"Eeprom 24C16 Serial", "24C16", 0x800, 0},
    {"Eeprom 24C32 Serial", "24C32", 0x1000, 0},              {"Eeprom 24C256 Serial", "24C256", 0x8000, 0},
    {"Flash AMD AM29F010", "AM29F010", 0x20000, 0},           {"Flash AMD AM29F020", "AM29F020", 0x40000, 0},
    {"Flash AMD AM29F040", "AM29F040", 0x80000, 0},           {"Flash AMIC A29040", "A29040", 0x80000, 0},
    {"Flash EON EN29F040", "EN29F040", 0x80000, 0},           {"Flash Catalyst CAT28F010", "CAT28F010", 0x20000, 0},
    {"Flash Catalyst CAT28F020", "CAT28F020", 0x40000, 0},
};
// clang-format on

/// Some 256 bytes of a chip, every address line in both states, and the ends of it and of its 64 KB
/// banks.
[[nodiscard]] inline Bytes sparse(std::size_t bytes) {
  const Bytes random = randomBytes(bytes, 9);
  Bytes image(bytes, 0xFF);
  const std::size_t step = bytes / 256 + 1;
  for (std::size_t i = 0; i < bytes; i += step) image[i] = random[i];
  for (std::size_t i = 0xFFFF; i < bytes; i += 0x10000) image[i] = random[i];
  image.back() = 0x5A;
  return image;
}

}  // namespace kestrel::test
