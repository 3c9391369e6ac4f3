// 24Cxx on the simulated board.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/board_trace.h"
#include "support/form_rig.h"

namespace kestrel::test {
namespace {

using testing::Each;

constexpr sim::Model kModels[]{sim::Model::kestrel4, sim::Model::kestrel5, sim::Model::kestrel6};

void setUp(SimulatedForm& s, const std::string& chip, const std::vector<std::uint8_t>& contents,
           const std::vector<std::uint8_t>& image) {
  s.start();
  s.insert(chip, contents);
  s.rig.select("Eeprom " + chip);
  s.rig.openImage(image);
  s.rig.clearLog();
  s.bench.findings().clear();
  s.trace.str("");
}

std::string onTheWires(const SimulatedForm& s) {
  const auto busDelay = s.rig.state.BusDelayCount;
  return TwoWireDecoder().decode(
      boardEvents(s.trace.str(), static_cast<int>(s.board->model()), busDelay));
}

TEST(Serial24C32, isProgrammedVerifiedReadAndErasedOnEveryModel) {
  for (const sim::Model model : kModels) {
    const auto image = randomBytes(4096, 31);
    SimulatedForm s(model);
    setUp(s, "24C32", {}, image);
    s.rig.controls.VerifyAfterProgramming.press();
    ASSERT_TRUE(s.rig.program());
    EXPECT_TRUE(s.rig.logged("Programming Device Successfull"));
    EXPECT_TRUE(s.rig.logged("Device Contents MATCHES with Buffer Contents"));
    EXPECT_TRUE(s.chipContents() == image);
    std::ranges::fill(s.rig.state.CodeBuffer, std::uint8_t{0});
    s.rig.press("Read_button");
    EXPECT_TRUE(std::equal(image.begin(), image.end(), s.rig.state.CodeBuffer.begin()));
    s.rig.clearLog();
    s.rig.press("EraseFlash_button");
    EXPECT_THAT(s.rig.log(),
                testing::ElementsAre("Erasing Device 24C32", "Program Buffer will not be erased",
                                     "Programming Device Successfull"));
    EXPECT_THAT(s.chipContents(), Each(0xFF));
    EXPECT_TRUE(std::equal(image.begin(), image.end(), s.rig.state.CodeBuffer.begin()));
    // The chip's supply is /OE: it is left off, so that the chip can be taken out.
    EXPECT_EQ(s.board->latch(0) | s.board->latch(1) | s.board->latch(2), 0x00);
    EXPECT_TRUE(s.bench.findings().empty());
  }
}

TEST(Serial24C08And16, areReadAndVerifiedWhole) {
  for (const auto& [chip, bytes, model] :
       {std::tuple{"24C08", 1024U, sim::Model::kestrel5}, {"24C16", 2048U, sim::Model::kestrel4}}) {
    const auto contents = randomBytes(bytes, 17);
    SimulatedForm s(model);
    setUp(s, chip, contents, contents);
    s.rig.press("Verify_button");
    EXPECT_TRUE(s.rig.logged("Device Contents MATCHES with Buffer Contents"));
    std::ranges::fill(s.rig.state.CodeBuffer, std::uint8_t{0});
    s.rig.press("Read_button");
    EXPECT_TRUE(std::equal(contents.begin(), contents.end(), s.rig.state.CodeBuffer.begin()));
    EXPECT_TRUE(s.bench.findings().empty());
    auto other = contents;
    other[bytes - 1] ^= 0xFFU;
    s.board->loadChip(other);
    s.rig.press("Verify_button");
    EXPECT_TRUE(s.rig.logged("Device Memory DOES NOT VERIFY with Buffer Contents"));
  }
}

// The writer begins at 300h and counts the whole size from there: at the end of the chip nobody
// answers the next select byte.
TEST(Serial24C08And16, areProgrammedFrom300hOnAndEndWithTheAcknowledgeReport) {
  for (const auto& [chip, bytes] : {std::pair{"24C08", 1024U}, std::pair{"24C16", 2048U}}) {
    const auto before = randomBytes(bytes, 17);
    const auto image = randomBytes(bytes, 18);
    SimulatedForm s;
    setUp(s, chip, before, image);
    s.rig.program();
    auto expected = image;
    std::copy_n(before.begin(), 0x300, expected.begin());
    EXPECT_TRUE(s.chipContents() == expected) << chip;
    EXPECT_EQ(s.rig.log()[2], "Device 24CXX DOES NOT RESPOND - ACK Error");
    EXPECT_EQ(s.rig.state.I2CError, 200);
    EXPECT_TRUE(s.rig.press("Error_label"));
  }
}

TEST(Serial24C08And16, areErasedAsTheirWritersGo) {
  const auto before = randomBytes(1024, 17);
  SimulatedForm small;
  setUp(small, "24C08", before, before);
  small.rig.press("EraseFlash_button");
  auto expected = before;
  std::fill(expected.begin() + 0x300, expected.end(), std::uint8_t{0xFF});
  EXPECT_TRUE(small.chipContents() == expected);
  EXPECT_TRUE(small.rig.logged("Device 24CXX DOES NOT RESPOND - ACK Error"));

  // The second writer's high address byte is the address here, and its low one data.
  const auto larger = randomBytes(2048, 17);
  SimulatedForm s;
  setUp(s, "24C16", larger, larger);
  s.rig.press("EraseFlash_button");
  expected = larger;
  std::fill_n(expected.begin(), 16, std::uint8_t{0xFF});
  std::fill(expected.begin() + 0x300, expected.end(), std::uint8_t{0xFF});
  EXPECT_TRUE(s.chipContents() == expected);
  EXPECT_EQ(s.rig.log().back(), "Programming Device Successfull");
}

TEST(TwoWireWaveform, isTheSameAtEverySliderPosition) {
  for (std::int32_t slider = 1; slider <= 20; ++slider) {
    SimulatedForm s;
    const auto image = randomBytes(4096, 41);
    setUp(s, "24C32", {}, image);
    s.rig.controls.Slider1.setValue(slider);
    s.rig.state.CodeLength = 64;
    s.trace.str("");
    s.rig.program();
    const std::string wires = onTheWires(s);
    const std::size_t first = wires.find("S A0a 00a 00a ");
    ASSERT_NE(first, std::string::npos) << wires;
    const std::size_t stop = wires.find('P');
    EXPECT_EQ((stop - first - 14) / 4, 32U) << slider;
    EXPECT_NE(wires.find(" S A0a S A0a 00a 20a ", stop), std::string::npos) << slider;
    EXPECT_EQ(std::count(wires.begin(), wires.end(), 'P'), 2) << slider;
    EXPECT_TRUE(std::equal(image.begin(), image.begin() + 64, s.chipContents().begin())) << slider;
    s.trace.str("");
    std::ranges::fill(s.rig.state.CodeBuffer, std::uint8_t{0});
    s.rig.press("Read_button");
    EXPECT_NE(onTheWires(s).find("S A0a 00a 00a S A1a "), std::string::npos) << slider;
    EXPECT_TRUE(std::equal(image.begin(), image.begin() + 64, s.rig.state.CodeBuffer.begin()));
  }
}

TEST(SerialFaults, endWithTheAcknowledgeReport) {
  enum class Fault { Empty, StuckHigh, StopsAcknowledging };
  for (const Fault fault : {Fault::Empty, Fault::StuckHigh, Fault::StopsAcknowledging}) {
    const auto image = randomBytes(4096, 31);
    SimulatedForm s;
    setUp(s, "24C32", {}, image);
    std::unique_ptr<sim::Chip> chip;
    if (fault == Fault::Empty) chip = s.board->takeOut();
    if (fault == Fault::StuckHigh) s.board->stickDataLine(7, true);
    if (fault == Fault::StopsAcknowledging) s.board->setChip({.acknowledgeLimit = 40});
    s.rig.program();
    EXPECT_EQ(s.rig.log()[2], "Device 24CXX DOES NOT RESPOND - ACK Error");
    EXPECT_EQ(s.rig.state.ProgramFailed, 1);
    EXPECT_EQ(s.rig.state.I2CError, 200);
    EXPECT_FALSE(s.rig.controls.Read_button.enabled());
    if (chip) s.board->insert(std::move(chip));
    s.board->freeDataLines();
    s.board->setChip({});
    EXPECT_TRUE(s.rig.press("Error_label"));
    EXPECT_TRUE(s.rig.program());
    EXPECT_TRUE(s.chipContents() == image);
  }
}

// 50 polls last some 150 ms. A chip that writes longer does not answer the next page.
TEST(SerialFaults, aWriteCycleMayLastAsLongAsThePolls) {
  for (const auto& [cycleMs, succeeds] : {std::pair{100, true}, std::pair{400, false}}) {
    SimulatedForm s;
    const auto image = randomBytes(4096, 31);
    setUp(s, "24C32", {}, image);
    s.rig.state.CodeLength = 64;
    s.board->setChip({.writeCycle = sim::milliseconds(cycleMs)});
    s.rig.program();
    EXPECT_EQ(s.rig.logged("Programming Device Successfull"), succeeds);
    EXPECT_EQ(s.rig.logged("Device 24CXX DOES NOT RESPOND - ACK Error"), !succeeds);
    EXPECT_EQ(std::equal(image.begin(), image.begin() + 64, s.chipContents().begin()), succeeds);
  }
}

}  // namespace
}  // namespace kestrel::test
