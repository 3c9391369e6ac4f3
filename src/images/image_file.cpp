#include "images/image_file.h"

#include <algorithm>

#include "images/record_writer.h"
#include "platform/atomic_file.h"
#include "platform/runtime_error.h"

namespace kestrel::images {
namespace {

constexpr std::uint8_t kHole = 0xFF;
constexpr std::size_t kMostFileBytes = 16'000'000;  // the longest image in the longest format

/// The part of the block that the range names.
std::optional<Block> partInside(const Block& block, const std::optional<Range>& range) {
  if (!range) return block;
  const std::uint32_t first = std::max(range->first, block.range().first);
  const std::uint32_t last = std::min(range->last, block.range().last);
  if (first > last) return std::nullopt;
  const auto begin = block.bytes.begin() + (first - block.address);
  return Block{.address = first, .bytes = Bytes(begin, begin + (last - first) + 1)};
}

std::vector<Block> taken(const Records& records, const Placement& placement) {
  std::vector<Block> blocks;
  for (const Block& block : records.blocks) {
    if (std::optional<Block> inside = partInside(block, placement.range)) {
      blocks.push_back(std::move(*inside));
    }
  }
  if (blocks.empty()) {
    throw ImageError("nothing of it is at " + rangeText(*placement.range) + "; it holds " +
                     rangesText(records.ranges()));
  }
  return blocks;
}

/// Puts the first byte taken at the address wanted.
void move(std::vector<Block>& blocks, const Placement& placement) {
  if (!placement.at) return;
  const std::uint32_t from = placement.range ? placement.range->first : blocks.front().address;
  for (Block& block : blocks) {
    const std::uint64_t moved = std::uint64_t{block.address} - from + *placement.at;
    block.address = static_cast<std::uint32_t>(std::min<std::uint64_t>(moved, 0xFFFFFFFF));
  }
}

void checkFits(const std::vector<Block>& blocks, std::size_t size, bool isChip) {
  for (const Block& block : blocks) {
    if (std::uint64_t{block.address} + block.bytes.size() <= size) continue;
    throw ImageError("it has data at " + rangeText(block.range()) + ", " +
                     (isChip ? "the chip" : "the largest image") + " ends at " +
                     addressText(static_cast<std::uint32_t>(size - 1)) +
                     "; a range FROM-TO takes a part of it, an address to put it at moves it");
  }
}

std::string counted(std::size_t count, const char* word) {
  return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
}

}  // namespace

Records readImageFile(const std::filesystem::path& path, const Format* format,
                      const StopSwitch* stop) {
  const Bytes file = readWholeFile(path, kMostFileBytes, stop);
  const Format& used = format != nullptr ? *format : formatByLook(file);
  try {
    return readRecords(file, used);
  } catch (const ImageError& error) {
    throw FileError("import", path.string(),
                    std::string(error.what()) + " (" + used.title + "; nothing was loaded)");
  }
}

Bytes place(const Records& records, const Placement& placement, std::size_t chipBytes) {
  std::vector<Block> blocks = taken(records, placement);
  move(blocks, placement);
  checkFits(blocks, chipBytes != 0 ? chipBytes : kMostImageBytes, chipBytes != 0);
  const Block& last = blocks.back();
  Bytes image(chipBytes != 0 ? chipBytes : last.address + last.bytes.size(), kHole);
  for (const Block& block : blocks) {
    std::ranges::copy(block.bytes, image.begin() + block.address);
  }
  return image;
}

Bytes exported(std::span<const std::uint8_t> image, const Placement& placement,
               const Format& format) {
  std::uint32_t address = placement.at.value_or(0);
  if (placement.range) {
    checkInside(*placement.range, image.size());
    image = image.subspan(placement.range->first, placement.range->size());
    address = placement.at.value_or(placement.range->first);
  }
  return writeRecords(image, address, format);
}

std::string describe(const Records& records) {
  const Format& format = formatOf(records.format);
  std::string text = std::string(format.title) + ", " + counted(records.dataBytes(), "byte");
  if (records.format == FormatId::Binary) return text;
  text += " at " + rangesText(records.ranges());
  const std::vector<Range> holes = records.holes();
  if (!holes.empty()) text += ", " + counted(holes.size(), "hole") + ": " + rangesText(holes);
  if (records.startAddress) text += ", start address " + addressText(*records.startAddress);
  return text + ", " + counted(records.dataRecords, "record") +
         (format.hasChecksums ? ", checksums right" : ", a format without checksums");
}

const Format& readImageLook(const std::filesystem::path& path) {
  return formatByLook(readWholeFile(path, kMostFileBytes));
}

const Format* recordsByLook(std::span<const std::uint8_t> file) {
  const Format& look = formatByLook(file);
  const bool isClear = look.id == FormatId::IntelHex || look.id == FormatId::MotorolaS ||
                       look.id == FormatId::TektronixExtended;
  return isClear ? &look : nullptr;
}

std::string hintForRaw(std::span<const std::uint8_t> file) {
  const Format* const look = recordsByLook(file);
  if (look == nullptr) return {};
  return std::string("it has the look of ") + look->title +
         " and was taken byte by byte; --format " + look->name + " imports it";
}

}  // namespace kestrel::images
