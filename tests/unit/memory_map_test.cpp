#include "display/memory_map.h"

#include <gtest/gtest.h>

#include "display/byte_search.h"

namespace kestrel::display {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(MemoryMap, showsEveryByteInExactlyOnePiece) {
  Bytes memory(1'048'576, 0xFF);
  std::fill_n(memory.begin(), 524'288, 0x00);
  memory[1'048'575] = 0xFE;  // one byte at the very end of a blank half
  const auto map = memoryMap(memory, 1'000);
  EXPECT_EQ(map[0], CellKind::Zero);
  EXPECT_EQ(map[998], CellKind::Blank);
  EXPECT_EQ(map[999], CellKind::Data);
  EXPECT_EQ(rangeOf(999, 1'000, memory.size()).end, 1'048'576);
  EXPECT_EQ(rangeOf(499, 1'000, memory.size()).end, rangeOf(500, 1'000, memory.size()).begin);
  EXPECT_EQ(memoryMapText(memory), "zero 00000h-7FFFFh, blank 80000h-FFEFFh, data FFF00h-FFFFFh");
  EXPECT_EQ(memoryMap(Bytes(3), 100).size(), 3U) << "no more pieces than bytes";
  EXPECT_EQ(memoryMapText({}), "");
}

TEST(ByteSearch, takesHexPairsTextAndAddressesAsPeopleWriteThem) {
  EXPECT_EQ(bytesOf("4b 45 53"), (Bytes{0x4B, 0x45, 0x53}));
  EXPECT_EQ(bytesOf("KES"), (Bytes{0x4B, 0x45, 0x53}));
  EXPECT_EQ(bytesOf("\"4B\""), (Bytes{'4', 'B'}));
  EXPECT_EQ(bytesOf("-1"), (Bytes{'-', '1'}));
  for (const char* const typed : {"1a0", "0x1A0", "$1a0", "1A0h", " 01A0 "}) {
    EXPECT_EQ(addressOf(typed), 0x1A0) << typed;
  }
  for (const char* const typed : {"", "h", "-1", "12G", "1234567"}) {
    EXPECT_EQ(addressOf(typed), std::nullopt) << typed;
  }
}

TEST(ByteSearch, goesOnFromTheBeginningAndEndsWhereNothingIs) {
  const Bytes memory{1, 2, 3, 1, 2};
  EXPECT_EQ(findBytes(memory, Bytes{1, 2}, 1), 3);
  EXPECT_EQ(findBytes(memory, Bytes{1, 2}, 4), 0);
  EXPECT_EQ(findBytes(memory, Bytes{2, 1}, 0), std::nullopt);
  EXPECT_EQ(findBytes(memory, Bytes(6), 0), std::nullopt);
}

}  // namespace
}  // namespace kestrel::display
