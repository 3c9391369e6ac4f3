#include "display/memory_map.h"

#include <algorithm>

#include "app/state/programmer_state.h"
#include "app/state/text_format.h"
#include "display/hex_line.h"
#include "images/identity.h"

namespace kestrel::display {
namespace {

constexpr std::size_t kMostRanges = 8;
constexpr int kAddressDigits = 5;

CellKind kindOf(std::span<const std::uint8_t> bytes) {
  if (images::isAll(bytes, kErased)) return CellKind::Blank;
  return images::isAll(bytes, 0x00) ? CellKind::Zero : CellKind::Data;
}

const char* wordOf(CellKind kind) {
  if (kind == CellKind::Data) return "data ";
  return kind == CellKind::Blank ? "blank " : "zero ";
}

}  // namespace

AddressRange rangeOf(std::size_t piece, std::size_t pieces, std::size_t bytes) {
  const std::size_t begin = piece * bytes / pieces;
  const std::size_t end = (piece + 1) * bytes / pieces;
  return {.begin = static_cast<std::int32_t>(begin), .end = static_cast<std::int32_t>(end)};
}

std::vector<CellKind> memoryMap(std::span<const std::uint8_t> bytes, std::size_t pieces) {
  pieces = std::min(pieces, bytes.size());
  std::vector<CellKind> map;
  map.reserve(pieces);
  for (std::size_t piece = 0; piece < pieces; ++piece) {
    const AddressRange range = rangeOf(piece, pieces, bytes.size());
    const auto begin = static_cast<std::size_t>(range.begin);
    map.push_back(kindOf(bytes.subspan(begin, static_cast<std::size_t>(range.end) - begin)));
  }
  return map;
}

std::string memoryMapText(std::span<const std::uint8_t> bytes) {
  constexpr auto kPage = static_cast<std::size_t>(kPageBytes);
  const std::size_t pages = (bytes.size() + kPage - 1) / kPage;
  const std::vector<CellKind> map = memoryMap(bytes, pages);
  std::string text;
  std::size_t ranges = 0;
  for (std::size_t page = 0; page < map.size();) {
    std::size_t next = page;
    while (next < map.size() && map[next] == map[page]) ++next;
    if (++ranges > kMostRanges) return text + ", ...";
    const AddressRange first = rangeOf(page, map.size(), bytes.size());
    const AddressRange last = rangeOf(next - 1, map.size(), bytes.size());
    if (!text.empty()) text += ", ";
    text += wordOf(map[page]) + hexText(first.begin, kAddressDigits) + "h-" +
            hexText(last.end - 1, kAddressDigits) + "h";
    page = next;
  }
  return text;
}

}  // namespace kestrel::display
