// Texts and numbers; what the controls do by themselves.

#include <gtest/gtest.h>

#include <cmath>

#include "app/state/controls.h"
#include "app/state/text_format.h"
#include "buffers/checksum.h"
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

TEST(Buttons, ofAGroupGoOffBeforeTheHandlerRunsAndDisabledOnesCannotBePressed) {
  Controls c;
  int runs = 0;
  c.Voltage_button[2].onClick([&] {
    ++runs;
    EXPECT_FALSE(c.Voltage_button[1].value());
  });
  c.Voltage_button[1].setValue(true);
  for (const bool value : {true, true, false}) c.Voltage_button[2].setValue(value);
  EXPECT_FALSE(c.Voltage_button[2].value());
  EXPECT_EQ(runs, 1);
  c.HiLow_button[0].setValue(false);
  EXPECT_TRUE(c.HiLow_button[0].value()) << "one lane is always set";
  runs = 0;
  c.Read_button.onPress([&] { ++runs; });
  EXPECT_FALSE(c.Read_button.press());
  EXPECT_FALSE(c.Voltage_button[1].press());
  EXPECT_FALSE(c.Voltage_button[1].value());
  c.Read_button.setEnabled(true);
  EXPECT_TRUE(c.Read_button.press());
  EXPECT_EQ(runs, 1);
  c.VerifyAfterProgramming.setValue(2);
  EXPECT_TRUE(c.VerifyAfterProgramming.press());
  EXPECT_EQ(c.VerifyAfterProgramming.value(), 1) << "a greyed box is not ticked";
}

TEST(RangesAndList, runTheirHandlersForANewValueAloneAndAtEverySetting) {
  Controls c;
  std::vector<int> seen;
  c.VScroll1.onChange([&] { seen.push_back(c.VScroll1.value()); });
  c.VScroll1.setMaximum(127);
  for (const int value : {0, 100, 100, 999, -5, 9}) c.VScroll1.setValue(value);
  c.VScroll1.setMaximum(-1);
  EXPECT_EQ(seen, (std::vector<int>{100, 127, 0, 9, 0}));
  for (const char* const item : {"zero", "one", "two"}) c.Device.addItem(item);
  seen.clear();
  c.Device.onClick([&] {
    seen.push_back(c.Device.position());
    if (c.Device.position() == 1) c.Device.setPosition(-1);
  });
  for (const int position : {2, 2, 1, -1}) c.Device.setPosition(position);
  EXPECT_EQ(seen, (std::vector<int>{2, 2, 1, -1}));
  EXPECT_THROW(c.Device.setPosition(3), RuntimeError);
}

}  // namespace
}  // namespace kestrel
