#include "images/record_formats.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "images/ranges.h"

namespace kestrel::images {
namespace {

constexpr std::uint32_t k16Bits = 0xFFFF;
constexpr std::uint32_t k20Bits = 0xF'FFFF;  // of the processor that TI text is for
constexpr std::uint32_t k32Bits = 0xFFFFFFFF;

// clang-format off
constexpr std::array<Format, 11> kFormats{{
    {FormatId::Binary,            "binary",    "binary",                  " bin rom img ",       false, k32Bits, true},
    {FormatId::IntelHex,          "ihex",      "Intel HEX",               " hex ihex ihx ",      true,  k32Bits, true},
    {FormatId::MotorolaS,         "srec",      "Motorola S-records",      " s19 s28 s37 srec mot s ", true, k32Bits, true},
    {FormatId::Tektronix,         "tek",       "Tektronix hexadecimal",   " tek ",               true,  k16Bits, true},
    {FormatId::TektronixExtended, "tekx",      "extended Tektronix",      " tekx tekhex ",       true,  k32Bits, true},
    {FormatId::TiText,            "ti-txt",    "TI text",                 " ",                   false, k20Bits, true},
    {FormatId::TiTagged,          "ti-tagged", "TI tagged",               " ",                   true,  k16Bits, true},
    {FormatId::AsciiHex,          "ascii-hex", "ASCII space hexadecimal", " ",                   true,  k32Bits, true},
    {FormatId::MosTechnology,     "mos",       "MOS Technology",          " ",                   true,  k16Bits, true},
    {FormatId::Emon52,            "emon52",    "Elektor EMON52",          " ",                   true,  k16Bits, true},
    {FormatId::VerilogMem,        "vmem",      "Verilog memory",          " vmem ",              false, k32Bits, false},
}};
// clang-format on

bool isHexDigit(char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; }

bool isHexadecimal(std::string_view text) { return std::ranges::all_of(text, isHexDigit); }

/// Mark, then at least so many hexadecimal digits up to the end of the line.
bool isRecord(std::string_view line, std::string_view mark, std::size_t leastDigits) {
  if (!line.starts_with(mark)) return false;
  line.remove_prefix(mark.size());
  return line.size() >= leastDigits && isHexadecimal(line);
}

std::string_view firstLine(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(" \t\r\n");
  if (begin == std::string_view::npos) return {};
  text.remove_prefix(begin);
  std::string_view line = text.substr(0, text.find_first_of("\r\n"));
  while (line.ends_with(' ') || line.ends_with('\t')) line.remove_suffix(1);
  return line;
}

// "@1000" or "@00001000 DEAD BEEF": TI text has the address alone in its line and ends with a q.
const Format& addressedText(std::string_view line, std::string_view whole) {
  const std::size_t end = whole.find_last_not_of(" \t\r\n");
  const bool endsWithQ = whole[end] == 'q' || whole[end] == 'Q';
  return formatOf(isRecord(line, "@", 1) && endsWithQ ? FormatId::TiText : FormatId::VerilogMem);
}

bool isAddressed(std::string_view line) {
  const std::string_view word = line.substr(0, line.find_first_of(" \t"));
  const bool isText = std::ranges::all_of(
      line.substr(word.size()), [](char c) { return isHexDigit(c) || c == ' ' || c == '\t'; });
  return isRecord(word, "@", 1) && isText;
}

std::string names() {
  std::string list = "auto";
  for (const Format& format : kFormats) list += std::string(", ") + format.name;
  return list;
}

}  // namespace

std::span<const Format> formats() { return kFormats; }

const Format& formatOf(FormatId id) {
  return *std::ranges::find_if(kFormats, [&](const Format& f) { return f.id == id; });
}

const Format& formatNamed(std::string_view name) {
  const auto found =
      std::ranges::find_if(kFormats, [&](const Format& f) { return f.name == name; });
  if (found != kFormats.end()) return *found;
  throw ImageError("\"" + std::string(name) + "\" is no format; use one of " + names());
}

const Format& formatByLook(std::span<const std::uint8_t> file) {
  const std::string_view text(reinterpret_cast<const char*>(file.data()), file.size());
  const std::string_view line = firstLine(text);
  if (isRecord(line, ":", 10)) return formatOf(FormatId::IntelHex);
  if (line.size() > 1 && line[1] >= '0' && line[1] <= '9' && isRecord(line, "S", 9)) {
    return formatOf(FormatId::MotorolaS);
  }
  if (isRecord(line, "/", 8)) return formatOf(FormatId::Tektronix);
  if (isRecord(line, "%", 8)) return formatOf(FormatId::TektronixExtended);
  if (isRecord(line, ";", 10)) return formatOf(FormatId::MosTechnology);
  if (isAddressed(line)) return addressedText(line, text);
  return formatOf(FormatId::Binary);
}

const Format& formatByName(std::string_view fileName) {
  const std::size_t dot = fileName.rfind('.');
  if (dot == std::string_view::npos) return formatOf(FormatId::Binary);
  std::string ending(fileName.substr(dot + 1));
  std::ranges::transform(ending, ending.begin(),
                         [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  const std::string word = " " + ending + " ";
  const auto found = std::ranges::find_if(kFormats, [&](const Format& f) {
    return std::string_view(f.endings).find(word) != std::string_view::npos;
  });
  return found == kFormats.end() ? formatOf(FormatId::Binary) : *found;
}

}  // namespace kestrel::images
