#include "images/record_reader.h"

#include <srecord/input/file/ascii_hex.h>
#include <srecord/input/file/emon52.h>
#include <srecord/input/file/intel.h>
#include <srecord/input/file/mos_tech.h>
#include <srecord/input/file/tektronix.h>
#include <srecord/input/file/tektronix_extended.h>
#include <srecord/input/file/ti_tagged.h>
#include <srecord/input/file/ti_txt.h>
#include <srecord/input/file/vmem.h>
#include <srecord/quit.h>
#include <srecord/record.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>

#include "images/memory_file.h"

namespace srecord {

// The library has this class; Debian's package of its headers leaves the one file out.
class input_file_motorola {  // NOLINT(readability-identifier-naming): its name
 public:
  static input_file::pointer create(const std::string& name);
};

}  // namespace srecord

namespace kestrel::images {
namespace {

using Input = srecord::input::pointer;

Input inputFor(FormatId format, const std::string& name) {
  switch (format) {
    case FormatId::IntelHex:
      return srecord::input_file_intel::create(name);
    case FormatId::MotorolaS:
      return srecord::input_file_motorola::create(name);
    case FormatId::Tektronix:
      return srecord::input_file_tektronix::create(name);
    case FormatId::TektronixExtended:
      return srecord::input_file_tektronix_extended::create(name);
    case FormatId::TiText:
      return srecord::input_file_ti_txt::create(name);
    case FormatId::TiTagged:
      return srecord::input_file_ti_tagged::create(name);
    case FormatId::AsciiHex:
      return srecord::input_file_ascii_hex::create(name);
    case FormatId::MosTechnology:
      return srecord::input_file_mos_tech::create(name);
    case FormatId::Emon52:
      return srecord::input_file_emon52::create(name);
    case FormatId::VerilogMem:
      return srecord::input_file_vmem::create(name);
    case FormatId::Binary:
      break;
  }
  throw ImageError("a binary file has no records");
}

// Warnings that leave no doubt about the data.
constexpr std::array<std::string_view, 5> kHarmless{
    "no header record", "redundant header record", "address in header record ignored",
    "data in termination record ignored", "empty data record ignored"};

bool isHarmless(std::string_view text) {
  return std::ranges::any_of(kHarmless, [&](std::string_view known) {
    return text.find(known) != std::string_view::npos;
  });
}

/// What the library has to say becomes an exception. Its warnings too: "ignoring garbage lines" and
/// "no end-of-file record" are a file that was damaged or cut off, which must not become a chip.
class Complaints final : public srecord::quit {
 public:
  Complaints(std::string fileName, bool mayLackEnd)
      : fileName_(std::move(fileName)), mayLackEnd_(mayLackEnd) {}

 protected:
  // The text is "NAME: LINE: REASON".
  [[gnu::format(printf, 2, 0)]] void message_v(const char* format, va_list values) override {
    std::array<char, 400> text{};
    (void)std::vsnprintf(text.data(), text.size(), format, values);
    refuse(text.data());
  }
  void exit(int /*status*/) override { refuse("it cannot be read"); }

 private:
  void refuse(std::string text) const {
    if (isHarmless(text) || std::uncaught_exceptions() > 0) return;
    if (mayLackEnd_ && text.find("no execution start address record") != std::string::npos) return;
    if (text.starts_with(fileName_)) text.erase(0, fileName_.size() + 2);
    const std::size_t colon = text.find(": ");
    const bool hasLine = colon != std::string::npos && colon > 0 &&
                         std::all_of(text.begin(), text.begin() + static_cast<long>(colon),
                                     [](char c) { return c >= '0' && c <= '9'; });
    if (hasLine) text = "line " + text;
    if (const std::size_t mark = text.find("warning: "); mark != std::string::npos) {
      text.erase(mark, std::string_view("warning: ").size());
    }
    throw ImageError(text);
  }

  std::string fileName_;
  bool mayLackEnd_;
};

/// One record with data, in the order of the file.
struct Piece {
  std::uint32_t address = 0;
  std::string where;  ///< "line 12"
  Bytes bytes;

  [[nodiscard]] std::uint64_t end() const { return std::uint64_t{address} + bytes.size(); }
};

std::string lineOf(const srecord::input& input) {
  const std::string text = input.filename_and_line();
  const std::size_t colon = text.rfind(": ");
  return colon == std::string::npos ? std::string("a record") : "line " + text.substr(colon + 2);
}

/// Tektronix files come without a last record as often as with one. S-records may end with their
/// own number (S5, S6) in its place, which the library compares with what it read.
bool mayLackEnd(std::span<const std::uint8_t> file, FormatId format) {
  if (format == FormatId::Tektronix || format == FormatId::TektronixExtended) return true;
  const std::string_view text(reinterpret_cast<const char*>(file.data()), file.size());
  const std::size_t begin = text.rfind('S');
  const std::string_view line = begin == std::string_view::npos ? "" : text.substr(begin, 2);
  return line == "S5" || line == "S6";
}

std::vector<Piece> readPieces(srecord::input& input, Records& found) {
  std::vector<Piece> pieces;
  srecord::record record;
  while (input.read(record)) {
    if (record.get_type() == srecord::record::type_execution_start_address) {
      found.startAddress = record.get_address();
    }
    if (record.get_type() != srecord::record::type_data || record.get_length() == 0) continue;
    pieces.push_back({.address = record.get_address(),
                      .where = lineOf(input),
                      .bytes = Bytes(record.get_data(), record.get_data() + record.get_length())});
    if (pieces.back().end() > std::uint64_t{0x1'0000'0000}) {
      throw ImageError(pieces.back().where + ": the record goes beyond the last address, FFFFFFFF");
    }
  }
  return pieces;
}

/// Records that say the same of an address may overlap; the second one adds what is new.
void append(Block& block, const Piece& piece) {
  const std::size_t from = piece.address - block.address;
  const std::size_t known = std::min(piece.bytes.size(), block.bytes.size() - from);
  for (std::size_t i = 0; i < known; ++i) {
    if (block.bytes[from + i] == piece.bytes[i]) continue;
    throw ImageError(piece.where + ": address " +
                     addressText(static_cast<std::uint32_t>(piece.address + i)) +
                     " has another byte in another record");
  }
  block.bytes.insert(block.bytes.end(), piece.bytes.begin() + static_cast<std::ptrdiff_t>(known),
                     piece.bytes.end());
}

std::vector<Block> joined(std::vector<Piece> pieces) {
  std::ranges::stable_sort(pieces, {}, &Piece::address);
  std::vector<Block> blocks;
  for (const Piece& piece : pieces) {
    const bool isNew = blocks.empty() || piece.address > std::uint64_t{blocks.back().address} +
                                                             blocks.back().bytes.size();
    if (isNew) blocks.push_back({.address = piece.address, .bytes = {}});
    append(blocks.back(), piece);
  }
  return blocks;
}

}  // namespace

std::vector<Range> Records::ranges() const {
  std::vector<Range> found;
  for (const Block& block : blocks) found.push_back(block.range());
  return found;
}

std::vector<Range> Records::holes() const {
  std::vector<Range> found;
  for (std::size_t i = 1; i < blocks.size(); ++i) {
    found.push_back({.first = blocks[i - 1].range().last + 1, .last = blocks[i].address - 1});
  }
  return found;
}

std::size_t Records::dataBytes() const {
  std::size_t count = 0;
  for (const Block& block : blocks) count += block.bytes.size();
  return count;
}

Records readRecords(std::span<const std::uint8_t> file, const Format& format) {
  Records found;
  found.format = format.id;
  if (file.empty()) throw ImageError("the file is empty");
  if (format.id == FormatId::Binary) {
    found.blocks.push_back({.address = 0, .bytes = Bytes(file.begin(), file.end())});
    found.dataRecords = 1;
    return found;
  }
  const MemoryFile copy(file);
  Complaints complaints(
      copy.name(),
      mayLackEnd(file, format.id));  // outlives the reader, which speaks to it to its end
  const Input input = inputFor(format.id, copy.name());
  input->set_quit(complaints);
  std::vector<Piece> pieces = readPieces(*input, found);
  if (pieces.empty()) throw ImageError("the file has no record with data");
  found.dataRecords = pieces.size();
  found.blocks = joined(std::move(pieces));
  return found;
}

}  // namespace kestrel::images
