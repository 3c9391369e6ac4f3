// Page-write chips and flash on the simulated board, and the chip's pages on the display.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "driver/prepared_form.h"

namespace kestrel::test {
namespace {

using testing::ElementsAre;

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
      s.rig.controls.Slider1.setValue(1);
      const auto before = s.bench.now();
      ASSERT_TRUE(s.rig.press("LoopFlashTest"));
      EXPECT_GE(s.bench.now() - before, sim::milliseconds(250)) << "1000 rounds of 10000 counts";
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

TEST(DeviceDisplay, hasItsOwnCharactersAndDrawsPage0) {
  Bytes contents(8192, 0xFF);
  const std::string text =
      "A \"`z{~\x1F"
      "01234567";
  std::copy(text.begin(), text.end(), contents.begin() + 0x10);
  PreparedForm s("27C64", {}, sim::Model::kestrel5, contents);
  s.rig.controls.VScroll1.setValue(3);
  const auto before = s.bench.now();
  s.rig.press("Display_button");
  EXPECT_GE(s.bench.now() - before, sim::milliseconds(500)) << "the supply settles";
  EXPECT_EQ(s.rig.controls.VScroll1.value(), 0);
  EXPECT_NE(s.rig.controls.BufferDisplay.text().find(
                "\r\n000010| 41202260 7A7B7E1F 30313233 34353637 | A \"`z...01234567\r\n000020| "),
            std::string::npos);
  EXPECT_EQ(s.rig.controls.Frame3.caption(), "Device Memory Hex/Ascii Display");
  EXPECT_THAT(s.rig.log(), ElementsAre("Fetching Device Binary Contents to Screen"));
  // Chip and outputs are off afterwards.
  EXPECT_EQ(s.board->latch(0), 0x40);
  EXPECT_EQ(s.board->latch(3) & 0xC0, 0xC0);
  EXPECT_EQ(s.board->latch(2), 0xFF);
}

class PageWriteChips : public testing::TestWithParam<sim::Model> {};

TEST_P(PageWriteChips, areProgrammedVerifiedReadBackAndErased) {
  for (const auto& [chip, success] :
       {std::pair{"28C256", "XICOR 28C256 Programmed Sucessfully"},
        std::pair{"AT29C256", "FLASH Atmel AT29C256 Programmed Sucessfully"}}) {
    PreparedForm s(chip, randomBytes(32768, 51), GetParam());
    s.board->setChip({.softwareProtection = GetParam() != sim::Model::kestrel5});
    s.rig.controls.VerifyAfterProgramming.press();
    ASSERT_TRUE(s.rig.program());
    EXPECT_TRUE(s.rig.logged(success));
    EXPECT_TRUE(s.rig.logged("Device Contents MATCHES with Buffer Contents"));
    EXPECT_TRUE(s.chipContents() == s.image);
    EXPECT_TRUE(s.read(32768) == s.image);
    EXPECT_TRUE(s.bench.findings().empty());
    EXPECT_EQ(s.board->latch(0), 0x40);
    s.rig.clearLog();
    ASSERT_TRUE(s.rig.press("EraseFlash_button"));
    if (chip == std::string("28C256")) {
      EXPECT_THAT(s.rig.log(),
                  testing::ElementsAre("Erasing Program Buffer", "Erasing XICOR 28C256",
                                       "Programming 28C256 XICOR Device", success));
      EXPECT_THAT(s.chipContents(), testing::Each(0xFF));
    } else {  // nothing is done
      EXPECT_TRUE(s.rig.log().empty());
      EXPECT_TRUE(s.chipContents() == s.image);
    }
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

/// How far the progress bar went.
struct Watched final : ControlListener {
  explicit Watched(Controls& given) : c(given) { c.setListener(this); }
  ~Watched() { c.setListener(nullptr); }
  void controlChanged(const Control& control) override {
    if (&control != &c.ProgressBar1 || c.ProgressBar1.value() <= peak) return;
    peak = c.ProgressBar1.value();
    maximum = c.ProgressBar1.maximum();
  }
  void textAppended(const TextBox&, std::string_view) override {}

  Controls& c;
  std::int32_t peak = 0;
  std::int32_t maximum = 0;
};

// A step is a page of 256 bytes, or a byte of a serial chip; an EPROM is programmed in hundredths,
// a 28C256 in eight of its pages, a serial chip in pages of 32.
TEST(Progress, goesToItsEndAndBackWhateverTheCommand) {
  struct Row {
    const char* chip;
    std::size_t bytes;
    std::vector<std::int32_t> steps;  // of read, blank check, verify, program and erase
  };
  for (const Row& row : {Row{"27C64", 0x2000, {32, 32, 32, 100}},
                         {"X28C256", 0x8000, {128, 128, 128, 64, 64}},
                         {"24C32", 0x1000, {4096, 0, 100, 128, 128}},
                         {"AM29F010", 0x20000, {512, 512, 512, 512}}}) {
    PreparedForm s(row.chip, Bytes(row.bytes, 0xFF));
    const char* const commands[]{"Read_button", "Blank_button", "Verify_button", "Program_button",
                                 "EraseFlash_button"};
    for (std::size_t i = 0; i < row.steps.size(); ++i) {
      Watched bar(s.rig.controls);
      s.rig.program(commands[i]);
      EXPECT_EQ(bar.maximum, row.steps[i]) << row.chip << ' ' << commands[i];
      EXPECT_GE(bar.peak, bar.maximum - 1) << row.chip << ' ' << commands[i];
      EXPECT_EQ(s.rig.controls.ProgressBar1.value(), 0);
    }
  }
}

}  // namespace
}  // namespace kestrel::test
