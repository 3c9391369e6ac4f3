// 28C256 and AT29C256 on the simulated board.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "driver/prepared_form.h"

namespace kestrel::test {
namespace {

struct PageForm : PreparedForm {
  PageForm(const std::string& chip, sim::Model model)
      : PreparedForm(chip, chip == "28C256" ? "Eeprom XICOR X28C256" : "Flash Atmel AT29C256",
                     randomBytes(32768, 51), {}, model) {}
};

class PageWriteChips : public testing::TestWithParam<sim::Model> {};

TEST_P(PageWriteChips, areProgrammedVerifiedReadBackAndErased) {
  for (const auto& [chip, success] :
       {std::pair{"28C256", "XICOR 28C256 Programmed Sucessfully"},
        std::pair{"AT29C256", "FLASH Atmel AT29C256 Programmed Sucessfully"}}) {
    PageForm s(chip, GetParam());
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
    PageForm s("28C256", sim::Model::kestrel5);
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
