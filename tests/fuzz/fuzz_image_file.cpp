// Any file in any format: it is refused by ImageError or gives blocks in order that are placed,
// written and read back as they are. The first byte chooses the format.

#include <cstdlib>

#include "images/image_file.h"
#include "images/record_writer.h"
#include "platform/runtime_error.h"

namespace {

using namespace kestrel::images;

void check(bool holds) {
  if (!holds) std::abort();
}

void writeAndReadBack(const Block& block) {
  for (const Format& format : formats()) {
    const bool fits = std::uint64_t{block.address} + block.bytes.size() <= format.greatest;
    if (!format.isWritten || !fits || format.id == FormatId::Binary) continue;
    const Records again = readRecords(writeRecords(block.bytes, block.address, format), format);
    check(again.blocks.size() == 1 && again.blocks[0].bytes == block.bytes &&
          again.blocks[0].address == block.address);
  }
}

void readAs(const Format& format, std::span<const std::uint8_t> file) {
  const Records records = readRecords(file, format);
  std::uint64_t end = 0;
  for (const Block& block : records.blocks) {
    check(!block.bytes.empty() && block.address >= end);
    end = std::uint64_t{block.address} + block.bytes.size() + 1;
  }
  check(place(records, {.at = 0, .range = {}}, 0).size() >= records.dataBytes());
  (void)describe(records);
  writeAndReadBack(records.blocks.front());
}

}  // namespace

// libsrecord frees the buffer of a tagged record in the reader's next call and so loses it where a
// bad record throws: some hundred bytes a refused file. Its leaks are not this program's.
// The sanitizer looks for the function by this name.
extern "C" const char* __lsan_default_suppressions();   // NOLINT(bugprone-reserved-identifier)
extern "C" const char* __lsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
  return "leak:libsrecord";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::span file(data + 1, size - 1);
  const std::size_t choice = *data % (formats().size() + 1);
  const Format& format = choice < formats().size() ? formats()[choice] : formatByLook(file);
  try {
    readAs(format, file);
  } catch (const ImageError&) {
    // Refused, with the line and the reason.
  }
  return 0;
}
