// Page-write chips and flash on the simulated board.

#include <gtest/gtest.h>

#include "driver/prepared_form.h"

namespace kestrel::test {
namespace {

TEST(FlashIdentification, namesTrueChipsInTheSocket) {
  struct Case {
    const char *chip, *name, *rawCode;
  };
  // clang-format off
  constexpr Case kCases[]{
      {"AM29F010", "0120 - AMD am29F010 Flash Memory", "FFFF"},
      {"AM29F040", "01A4 - AMD am29F040 Flash Memory", "FFFF"},
      {"A29040", "3786 - AMIC A29040 Flash Memory", "FFFF"},
      // Answers 1C04h only with A8 high, which identification leaves low: the continuation code.
      {"EN29F040", "7F7F -  Not Valid!!!", "FFFF"},
      // Its command leaves the data latch on the bus, so that F0h stands there in the second read.
      {"AT29C256", "1FDC - ATMEL 29C256 Flash Memory", "F0F0"},
  };
  // clang-format on
  for (const Case& c : kCases) {
    for (const sim::Model model : {sim::Model::kestrel4, sim::Model::kestrel5}) {
      PreparedForm s(c.chip, {}, model);
      ASSERT_TRUE(s.rig.press("menuFlashShowCodeID"));
      EXPECT_EQ(s.rig.log().back(), std::string("Device ID# ") + c.name);
      EXPECT_EQ(s.rig.state.FlashRawCode, c.rawCode);
    }
  }
}

/// The hexadecimal digits of a page on the display, without their blanks.
std::string digitsOf(const std::string& page) {
  std::string hex;
  std::istringstream lines(page);
  for (std::string line; std::getline(lines, line);) {
    if (line.size() > 44) hex += line.substr(8, 36);
  }
  std::erase(hex, ' ');
  return hex;
}

TEST(DeviceDisplay, drawsTheBytesThatAReadGives) {
  for (const auto& [chip, bytes] :
       {std::pair{"2732A", 4096U}, {"27C020", 262144U}, {"28C256", 32768U}}) {
    PreparedForm s(chip, {}, sim::Model::kestrel5, randomBytes(bytes, 71));
    const Bytes contents = s.chipContents();
    s.rig.press("Display_button");
    for (const std::size_t page : {0U, bytes / 256 - 1, bytes / 512 + 3}) {
      s.rig.controls.VScroll1.setValue(static_cast<std::int32_t>(page));
      const std::string hex = digitsOf(s.rig.controls.BufferDisplay.text());
      ASSERT_EQ(hex.size(), 512U);
      for (std::size_t i = 0; i < 256; ++i) {
        ASSERT_EQ(std::stoul(hex.substr(2 * i, 2), nullptr, 16), contents[page * 256 + i])
            << chip << " page " << page << " byte " << i;
      }
    }
  }
}

class PageWriteChips : public testing::TestWithParam<sim::Model> {};

TEST_P(PageWriteChips, areProgrammedVerifiedReadBackAndErased) {
  for (const std::string chip : {"28C256", "AT29C256"}) {
    PreparedForm s(chip, randomBytes(32768, 51), GetParam());
    s.board->setChip({.softwareProtection = GetParam() != sim::Model::kestrel5});
    s.rig.controls.VerifyAfterProgramming.press();
    ASSERT_TRUE(s.rig.program());
    EXPECT_TRUE(s.rig.logged("Device Contents MATCHES with Buffer Contents"));
    EXPECT_TRUE(s.chipContents() == s.image);
    EXPECT_TRUE(s.read(32768) == s.image);
    EXPECT_TRUE(s.bench.findings().empty());
    EXPECT_EQ(s.board->latch(0), 0x40);
    ASSERT_TRUE(s.rig.press("EraseFlash_button"));  // nothing is done to the flash
    EXPECT_TRUE(s.chipContents() == (chip == "28C256" ? Bytes(32768, 0xFF) : s.image));
    for (const auto* buffer : {&s.rig.state.CodeBuffer, &s.rig.state.ProgramBuffer}) {
      EXPECT_TRUE(std::equal(s.image.begin(), s.image.end(), buffer->begin()));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Models, PageWriteChips, testing::ValuesIn(kModels));

// The wait after a page is 23 ms less the slider's value: at 18, 12 and 1 it is 5, 11 and 22 ms.
// Below 10 the bytes come too slowly for the load window of 100 us, whatever the wait.
TEST(PageWriteSpeed, hasToFitTheChipsLoadWindowAndWriteCycle) {
  for (const auto& [slider, writeCycleMs, succeeds] :
       {std::tuple{18, 7, false}, {12, 10, true}, {1, 3, false}}) {
    PreparedForm s("28C256", randomBytes(32768, 51));
    s.rig.controls.Slider1.setValue(slider);
    s.board->setChip({.writeCycle = sim::milliseconds(writeCycleMs)});
    s.rig.program();
    EXPECT_EQ(s.chipContents() == s.image, succeeds) << slider;
    EXPECT_EQ(s.rig.logged("*** Programming Failure ***"), !succeeds) << slider;
    EXPECT_EQ(s.board->latch(0), 0x40);
  }
}

}  // namespace
}  // namespace kestrel::test
