#include "images/record_writer.h"

#include <srecord/output/file/ascii_hex.h>
#include <srecord/output/file/emon52.h>
#include <srecord/output/file/intel.h>
#include <srecord/output/file/mos_tech.h>
#include <srecord/output/file/tektronix.h>
#include <srecord/output/file/tektronix_extended.h>
#include <srecord/output/file/ti_tagged.h>
#include <srecord/output/file/ti_txt.h>
#include <srecord/record.h>

#include <algorithm>

#include "images/memory_file.h"

namespace srecord {

// The library has this class; Debian's package of its headers leaves the one file out.
class output_file_motorola {  // NOLINT(readability-identifier-naming): its name
 public:
  static output_file::pointer create(const std::string& name);
};

}  // namespace srecord

namespace kestrel::images {
namespace {

using Output = srecord::output::pointer;

Output outputFor(FormatId format, const std::string& name) {
  switch (format) {
    case FormatId::IntelHex:
      return srecord::output_file_intel::create(name);
    case FormatId::MotorolaS:
      return srecord::output_file_motorola::create(name);
    case FormatId::Tektronix:
      return srecord::output_file_tektronix::create(name);
    case FormatId::TektronixExtended:
      return srecord::output_file_tektronix_extended::create(name);
    case FormatId::TiText:
      return srecord::output_file_ti_txt::create(name);
    case FormatId::TiTagged:
      return srecord::output_file_ti_tagged::create(name);
    case FormatId::AsciiHex:
      return srecord::output_file_ascii_hex::create(name);
    case FormatId::MosTechnology:
      return srecord::output_file_mos_tech::create(name);
    case FormatId::Emon52:
      return srecord::output_file_emon52::create(name);
    case FormatId::Binary:
    case FormatId::VerilogMem:
      break;
  }
  throw ImageError(std::string(formatOf(format).name) + " can be read, not written");
}

// The library's writers end the program when they cannot go on, and cannot be kept from it. What
// could stop them is looked for before: the address, memory, the limit of a file's size.
void checkAddresses(std::size_t size, std::uint32_t address, const Format& format) {
  const std::uint64_t last = std::uint64_t{address} + size - 1;
  if (size != 0 && last <= format.greatest) return;
  if (size == 0) throw ImageError("there is nothing to write");
  throw ImageError(std::string(format.title) + " has no addresses above " +
                   addressText(format.greatest) + "; use ihex, srec or --at");
}

/// No format takes more than four characters a byte, and as much again for what is around a line.
std::size_t roomFor(std::size_t bytes) { return 8 * bytes + 4096; }

void writeData(srecord::output& output, std::span<const std::uint8_t> bytes,
               std::uint32_t address) {
  const auto most = static_cast<std::size_t>(std::max(1, output.preferred_block_size_get()));
  while (!bytes.empty()) {
    const std::size_t count =
        std::min({most, bytes.size(), std::size_t{srecord::record::max_data_length}});
    output.write({srecord::record::type_data, address, bytes.data(), count});
    address += static_cast<std::uint32_t>(count);
    bytes = bytes.subspan(count);
  }
}

}  // namespace

Bytes writeRecords(std::span<const std::uint8_t> bytes, std::uint32_t address, const Format& format,
                   std::optional<std::uint32_t> startAddress) {
  checkAddresses(bytes.size(), address, format);
  if (format.id == FormatId::Binary) return {bytes.begin(), bytes.end()};
  const MemoryFile file(roomFor(bytes.size()));
  Output output = outputFor(format.id, file.name());
  writeData(*output, bytes, address);
  // To S-records and their like this is the end record; Intel HEX has another one.
  if (startAddress || format.id != FormatId::IntelHex) {
    const srecord::record start(srecord::record::type_execution_start_address,
                                startAddress.value_or(0));
    output->write_execution_start_address(&start);
  }
  output.reset();  // writes the end and closes
  return file.contents();
}

}  // namespace kestrel::images
