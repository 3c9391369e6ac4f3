// 24Cxx on the simulated board.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "driver/prepared_form.h"

namespace kestrel::test {
namespace {

class Serial24C32 : public testing::TestWithParam<sim::Model> {};

TEST_P(Serial24C32, isProgrammedVerifiedReadAndErased) {
  PreparedForm s("24C32", randomBytes(4096, 31), GetParam());
  s.rig.controls.VerifyAfterProgramming.press();
  ASSERT_TRUE(s.rig.program());
  EXPECT_TRUE(s.rig.logged("Programming Device Successfull"));
  EXPECT_TRUE(s.rig.logged("Device Contents MATCHES with Buffer Contents"));
  EXPECT_TRUE(s.chipContents() == s.image);
  EXPECT_TRUE(s.read(4096) == s.image);
  PreparedForm unopened("24C32", {}, GetParam(), s.image);
  EXPECT_TRUE(unopened.read(4096) == s.image);
  EXPECT_TRUE(unopened.rig.controls.Program_button.enabled()) << "what was read is an image too";
  s.rig.press("EraseFlash_button");
  EXPECT_TRUE(s.rig.logged("Erasing Device 24C32"));
  EXPECT_THAT(s.chipContents(), testing::Each(0xFF));
  EXPECT_TRUE(std::equal(s.image.begin(), s.image.end(), s.rig.state.CodeBuffer.begin()));
  // The chip's supply is /OE: it is left off, so that the chip can be taken out.
  EXPECT_EQ(s.board->latch(0) | s.board->latch(1) | s.board->latch(2), 0x00);
  EXPECT_TRUE(s.bench.findings().empty());
}

INSTANTIATE_TEST_SUITE_P(Models, Serial24C32, testing::ValuesIn(kModels));

// The writer begins at 300h and counts the whole size from there: at the end of the chip nobody
// answers the next select byte.
TEST(Serial24C08And16, areReadWholeAndProgrammedFrom300hOn) {
  for (const auto& [chip, bytes, model] :
       {std::tuple{"24C08", 1024U, sim::Model::kestrel5}, {"24C16", 2048U, sim::Model::kestrel4}}) {
    const Bytes before = randomBytes(bytes, 17);
    PreparedForm s(chip, randomBytes(bytes, 18), model, before);
    s.rig.program();
    auto expected = s.image;
    std::copy_n(before.begin(), 0x300, expected.begin());
    EXPECT_TRUE(s.chipContents() == expected) << chip;
    s.rig.press("Error_label");
    EXPECT_TRUE(s.read(bytes) == expected) << chip;
    s.rig.press("Verify_button");
    EXPECT_TRUE(s.rig.logged("Device Contents MATCHES with Buffer Contents"));
    EXPECT_TRUE(s.bench.findings().empty());
  }
}

// The second writer's high address byte is the address in a 24C16, and its low one data.
TEST(Serial24C08And16, areErasedAsTheirWritersGo) {
  for (const auto& [chip, bytes, erasedAt0, ending] :
       {std::tuple{"24C08", 1024U, 0, Ending::Failed}, {"24C16", 2048U, 16, Ending::Done}}) {
    auto expected = randomBytes(bytes, 17);
    PreparedForm s(chip, expected, sim::Model::kestrel5, expected);
    s.rig.press("EraseFlash_button");
    std::fill_n(expected.begin(), erasedAt0, std::uint8_t{0xFF});
    std::fill(expected.begin() + 0x300, expected.end(), std::uint8_t{0xFF});
    EXPECT_TRUE(s.chipContents() == expected) << chip;
    EXPECT_EQ(s.rig.result.ending, ending);
  }
}

TEST(SerialFaults, endWithTheAcknowledgeReport) {
  using Fit = void (*)(PreparedForm&);
  for (const Fit fit : {Fit([](PreparedForm& s) { (void)s.board->takeOut(); }),
                        Fit([](PreparedForm& s) { s.board->stickDataLine(7, true); }),
                        Fit([](PreparedForm& s) { s.board->setChip({.acknowledgeLimit = 40}); })}) {
    PreparedForm s("24C32", randomBytes(4096, 31));
    fit(s);
    s.rig.program();
    EXPECT_TRUE(s.rig.logged("Device 24CXX DOES NOT RESPOND - ACK Error"));
    EXPECT_EQ(s.rig.state.I2CError, 200);
    EXPECT_FALSE(s.rig.controls.Read_button.enabled());
    s.board->freeDataLines();
    s.insert("24C32");
    EXPECT_TRUE(s.rig.press("Error_label"));
    EXPECT_TRUE(s.rig.program());
    EXPECT_TRUE(s.chipContents() == s.image);
  }
}

}  // namespace
}  // namespace kestrel::test
