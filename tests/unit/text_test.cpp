// Texts and numbers: print forms, leading numbers, lines, hex lines, checksums.

#include <gtest/gtest.h>

#include <cmath>

#include "app/state/text_format.h"
#include "buffers/checksum.h"
#include "display/hex_line.h"
#include "hardware/decode_tables.h"
#include "platform/runtime_error.h"

namespace kestrel {
namespace {

TEST(Texts, ofNumbersAndLines) {
  EXPECT_EQ(hexText(0x3BC), "3BC");
  EXPECT_EQ(hexText(0x12345, 4), "2345");
  EXPECT_EQ(printForm(6), " 6");
  EXPECT_EQ(printForm(-7), "-7");
  EXPECT_EQ(printForm(3'000'000'000.0), " 3000000000");
  EXPECT_EQ(linesOf("a\r\nb\rc\nd"), (std::vector<std::string>{"a", "b", "c", "d"}));
  EXPECT_EQ(trimmed(" \t a b  "), "a b");
  EXPECT_EQ(upperCase("/tmp/a\xC3\xA4z{"), "/TMP/A\xC3\xA4Z{");
  EXPECT_EQ(buffers::checksumText(buffers::addToChecksum(0x2A00, 0xD4)), "2AD4");
  EXPECT_EQ(buffers::checksumText(buffers::addToChecksum(65535, 1)), "0000");
}

TEST(LeadingNumbers, areReadAsFarAsTheyGoAndStayInRange) {
  EXPECT_EQ(leadingNumber("  -12.5 apples"), -12.5);
  EXPECT_EQ(leadingNumber("+.5"), 0.5);
  for (const char* const none : {"", "x7", "inf", "-", "+-3"}) EXPECT_EQ(leadingNumber(none), 0);
  EXPECT_EQ(leadingNumber("-1e999"), -HUGE_VAL);
  EXPECT_EQ(roundedInt16(2.5), 2);
  EXPECT_EQ(roundedInt16(3.5), 4);
  EXPECT_THROW((void)roundedInt16(32767.5), RuntimeError);
  EXPECT_THROW((void)roundedInt32(2147483648.0), RuntimeError);
  EXPECT_EQ(clampedInt32(1e300), 2147483647);
  EXPECT_EQ(leadingHex16("ffff"), -1);
  EXPECT_EQ(leadingHex16("-378"), 0);
}

TEST(HexLine, hasSixDigitsFourGroupsAndTheCharactersOfItsDisplay) {
  ProgrammerState state;
  hardware::BuildDecodeTables(state);
  const display::ShownCharacters buffer = display::charactersIn(state.PrintableChars);
  EXPECT_EQ(buffer.count(), 91U);
  const std::vector<std::uint8_t> bytes{' ', '"', '`',  '~', 0x7F, 0x80, 0xFF, 0x00,
                                        'z', '{', '\\', '|', '<',  0x1F, 0x0F, '9'};
  EXPECT_EQ(display::hexLine(0x1FFFF0, bytes, buffer),
            "\r\n1FFFF0| 2022607E 7F80FF00 7A7B5C7C 3C1F0F39 | ........z{\\|<..9");
  EXPECT_EQ(display::hexLine(0, bytes, display::deviceCharacters()),
            "\r\n000000| 2022607E 7F80FF00 7A7B5C7C 3C1F0F39 |  \"`.....z.\\.<..9");
}

}  // namespace
}  // namespace kestrel
