#include "hardware/decode_tables.h"

#include <array>

namespace kestrel::hardware {
namespace {

// Model 4 wires the data bus to the status lines in no particular order. Index bits 0-3 are status
// bits 4-7 of the low half, index bits 4-7 those of the high half; entry n is the data bit of index
// bit n.
constexpr std::array<unsigned, 8> kModel4DataBit{3, 2, 0, 1, 7, 6, 4, 5};

// BUSY (status bit 7) is inverted at the connector: it carries data bits 1 and 5 (IEEE 1284).
constexpr unsigned kModel4Inverted = 0x22;

// Models 5 and 6 avoid BUSY: status bits 3-6 carry the nibble straight.
constexpr unsigned nibbleOf(unsigned status) { return (status >> 3U) & 0x0FU; }

constexpr std::uint8_t decodeModel4(unsigned index) {
  unsigned value = 0;
  for (unsigned bit = 0; bit < kModel4DataBit.size(); ++bit) {
    value |= ((index >> bit) & 1U) << kModel4DataBit[bit];
  }
  return static_cast<std::uint8_t>(value ^ kModel4Inverted);
}

}  // namespace

void resetAddressMaps(SelectionState& device) {
  for (std::size_t i = 0; i < device.AddrMapMid.size(); ++i) {
    device.AddrMapMid[i] = static_cast<std::int16_t>(i);
    device.AddrMapHigh[i] = static_cast<std::int16_t>(i);
  }
}

void BuildDecodeTables(LatchState& latches, SelectionState& device, ShellState& shell) {
  for (unsigned i = 0; i < 256; ++i) {
    latches.StatusDecodeLow[i] = static_cast<std::uint8_t>(nibbleOf(i));
    latches.StatusDecodeHigh[i] = static_cast<std::uint8_t>(nibbleOf(i) << 4U);
    latches.StatusDecode4[i] = decodeModel4(i);
  }
  resetAddressMaps(device);
  shell.PrintableChars =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz1234567890-=\\!@#$%^&*()_+|[]}{;:'/"
      "?.>,<";
}

}  // namespace kestrel::hardware
