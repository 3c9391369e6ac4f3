#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace kestrel::images {

/// A format of image files. Its reader and writer are those of libsrecord, looked up by its row in
/// record_reader.cpp and record_writer.cpp.
enum class FormatId : std::uint8_t {
  Binary,
  IntelHex,
  MotorolaS,
  Tektronix,
  TektronixExtended,
  TiText,
  TiTagged,
  AsciiHex,
  MosTechnology,
  Emon52,
  VerilogMem,
};

struct Format {
  FormatId id;
  const char* name;        ///< as --format takes it
  const char* title;       ///< in words
  const char* endings;     ///< of file names, each between blanks
  bool hasChecksums;       ///< in its records or at its end
  std::uint32_t greatest;  ///< address that it can name
  bool isWritten;          ///< false: read only
};

/// All of them, binary first.
[[nodiscard]] std::span<const Format> formats();

[[nodiscard]] const Format& formatOf(FormatId id);

/// The format of this name. Throws ImageError that names them all.
[[nodiscard]] const Format& formatNamed(std::string_view name);

/// What the first record says: its mark and the shape of the line behind it. Binary when it has
/// the shape of none. A damaged record later on changes nothing: that is for the reader to report.
[[nodiscard]] const Format& formatByLook(std::span<const std::uint8_t> file);

/// By the ending of a file's name; binary for one that is nobody's.
[[nodiscard]] const Format& formatByName(std::string_view fileName);

}  // namespace kestrel::images
