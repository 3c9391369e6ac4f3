#include "display/hex_line.h"

#include "app/state/text_format.h"

namespace kestrel::display {
namespace {

constexpr std::size_t kGroupBytes = 4;

}  // namespace

ShownCharacters charactersIn(std::string_view list) {
  ShownCharacters shown;
  for (const char c : list) shown.set(static_cast<std::uint8_t>(c));
  return shown;
}

ShownCharacters deviceCharacters() {
  ShownCharacters shown;
  for (std::size_t code = 32; code <= 122; ++code) shown.set(code);
  return shown;
}

std::string hexLine(std::int32_t address, std::span<const std::uint8_t> bytes,
                    const ShownCharacters& shown) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string line = "\r\n" + hexText(address, 6) + "| ";
  std::string characters;
  for (std::size_t i = 0; i < kLineBytes; ++i) {
    if (i < bytes.size()) {
      line += {kDigits[bytes[i] >> 4U], kDigits[bytes[i] & 0x0FU]};
      characters += shown[bytes[i]] ? static_cast<char>(bytes[i]) : '.';
    } else {
      line += "  ";
    }
    if (i % kGroupBytes == kGroupBytes - 1) line += ' ';
  }
  return line + "| " + characters;
}

}  // namespace kestrel::display
