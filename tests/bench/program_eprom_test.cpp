// UV EPROMs programmed on the simulated board: what the image holds is in the chip afterwards, by
// the chip's own pins, voltages and times.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/form_rig.h"

namespace kestrel::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::Field;

struct Part {
  const char* chip;  ///< its name in the list follows "Eprom "
  std::size_t bytes;
  std::size_t voltage;    ///< Voltage_button: 1 = 12.5 V, 2 = 21 V, 3 = 25 V
  std::size_t every = 1;  ///< on model 5 one byte of so many is programmed: the others take long
  bool isTwin = false;    ///< the part before it under another name: a few pages will do
};

constexpr Part kParts[]{
    {"2732A", 4096, 2},       {"2732B", 4096, 1},
    {"2732", 4096, 3},        {"27C32", 4096, 3},
    {"2764", 8192, 2},        {"27C64", 8192, 1},
    {"27128", 16384, 2, 2},   {"27C128", 16384, 1},
    {"27256", 32768, 1, 8},   {"27C256", 32768, 1},
    {"27C259", 32768, 1},     {"27C512", 65536, 1},
    {"27C010", 131072, 1, 2}, {"27C1001", 131072, 1, 1, true},
    {"27C020", 262144, 1, 4}, {"27C2001", 262144, 1, 1, true},
};

std::vector<std::uint8_t> spread(std::size_t bytes, std::size_t every) {
  std::vector<std::uint8_t> image = randomBytes(bytes, 3);
  for (std::size_t i = 0; i < bytes; ++i) {
    if (every > 1 && (i + i / every) % every != 0) image[i] = 0xFF;
  }
  return image;
}

// The first page and the last ones of the lower and the upper half.
std::vector<std::uint8_t> fewPages(std::size_t bytes) {
  std::vector<std::uint8_t> image(bytes, 0xFF);
  const auto page = randomBytes(256, 11);
  for (const std::size_t at : {std::size_t{0}, bytes / 2 - 256, bytes - 256}) {
    std::copy(page.begin(), page.end(), image.begin() + static_cast<std::ptrdiff_t>(at));
  }
  return image;
}

/// Chip, device, image and voltage, everything set up as a person would before Program.
void setUp(SimulatedForm& s, const Part& part, const std::vector<std::uint8_t>& image) {
  s.start();
  s.insert(part.chip);
  s.rig.select(std::string("Eprom ") + part.chip);
  s.rig.openImage(image);
  s.rig.controls.Voltage_button[part.voltage].press();
  s.bench.findings().clear();
  s.rig.clearLog();
}

// The read-back puts FFh into the data latch while it still drives the bus, then releases it: this
// contention is in every routine. Nothing else is forgiven.
void expectContentionAlone(SimulatedForm& s) {
  EXPECT_THAT(s.bench.findings().all(),
              Each(Field(&sim::Finding::kind, sim::FindingKind::busConflict)));
  s.bench.findings().clear();
}

class EveryPart : public testing::TestWithParam<std::tuple<sim::Model, Part>> {};

TEST_P(EveryPart, isProgrammedVerifiedAndReadBack) {
  const auto& [model, part] = GetParam();
  const bool isWhole = model == sim::Model::kestrel5 && !part.isTwin;
  const auto image = isWhole ? spread(part.bytes, part.every) : fewPages(part.bytes);
  const std::size_t readBytes =
      isWhole ? part.bytes : 4096;  // what blank check, verify, read cover
  SimulatedForm s(model, SimulatedForm::Trace::Off);
  setUp(s, part, image);
  s.rig.state.CodeLength = static_cast<std::int32_t>(readBytes);
  s.rig.controls.Slider1.setValue(1);  // long pulses: a byte needs fewer of them
  s.rig.controls.CheckBlankPriorProgramming.press();
  s.rig.controls.VerifyAfterProgramming.press();
  ASSERT_TRUE(s.rig.program());
  EXPECT_TRUE(s.rig.logged("Device IS BLANK (ERASED)"));
  EXPECT_TRUE(s.rig.logged("Programming Device Successfull"));
  EXPECT_TRUE(s.rig.logged("Device Contents MATCHES with Buffer Contents"));
  EXPECT_TRUE(s.chipContents() == image);
  expectContentionAlone(s);
  EXPECT_EQ(s.board->latch(0), 0x40);
  std::ranges::fill(s.rig.state.CodeBuffer, std::uint8_t{0});
  ASSERT_TRUE(s.rig.press("Read_button"));
  EXPECT_TRUE(std::equal(image.begin(), image.begin() + static_cast<std::ptrdiff_t>(readBytes),
                         s.rig.state.CodeBuffer.begin()));
  EXPECT_TRUE(s.bench.findings().empty());
}

INSTANTIATE_TEST_SUITE_P(Parts, EveryPart,
                         testing::Combine(testing::Values(sim::Model::kestrel4,
                                                          sim::Model::kestrel5,
                                                          sim::Model::kestrel6),
                                          testing::ValuesIn(kParts)),
                         [](const auto& test) {
                           return std::string(std::get<1>(test.param).chip) + "OnModel" +
                                  std::to_string(static_cast<int>(std::get<0>(test.param)));
                         });

// A18 of the address map stands on socket pin 1, that of the 4 and 8 Mbit parts is pin 31. So the
// upper half of a 27C040 is the lower once more, and a 27C080 shows its banks of 64 KB as below.
TEST(BigParts, showTheirBanksAsTheWiringGoes) {
  const std::vector<int> banksOf4Mbit{0, 1, 2, 3, 0, 1, 2, 3};
  const std::vector<int> banksOf8Mbit{0, 1, 2, 3, 8, 9, 10, 11, 8, 9, 10, 11, 12, 13, 14, 15};
  for (const auto& [chip, banks] :
       {std::pair{"27C040", banksOf4Mbit}, std::pair{"27C080", banksOf8Mbit}}) {
    SimulatedForm s(sim::Model::kestrel5, SimulatedForm::Trace::Off);
    s.start();
    std::vector<std::uint8_t> contents(banks.size() * 0x10000);
    for (std::size_t i = 0; i < contents.size(); ++i) {
      contents[i] = static_cast<std::uint8_t>(i >> 16U);
    }
    s.insert(chip, contents);
    s.rig.select(std::string("Eprom ") + chip);
    s.rig.press("Display_button");
    std::vector<int> seen;
    for (std::int32_t bank = 0; std::cmp_less(bank, banks.size()); ++bank) {
      s.rig.controls.VScroll1.setValue(bank * 256 + 0x12);
      seen.push_back(s.rig.state.ReadByte);
    }
    EXPECT_EQ(seen, banks) << chip;
  }
}

TEST(BigParts, areProgrammedWhereTheWiringReaches) {
  for (const auto& [chip, bytes, reach] :
       {std::tuple{"27C4001", 0x80000, 0x40000}, std::tuple{"27C801", 0x100000, 0x10400}}) {
    SimulatedForm s(sim::Model::kestrel5, SimulatedForm::Trace::Off);
    std::vector<std::uint8_t> image(static_cast<std::size_t>(bytes), 0xFF);
    image[static_cast<std::size_t>(reach) - 1] = 0x5A;
    setUp(s, {chip, image.size(), 1}, image);
    s.rig.state.DeviceSizeBytes = reach;  // what lies above would only take time
    s.rig.program();
    EXPECT_TRUE(s.chipContents() == image) << chip;
    expectContentionAlone(s);
  }
}

TEST(ByteLanes, splitOneImageOverTwoChips) {
  const auto image = randomBytes(8192, 21);
  for (const std::size_t lane : {1U, 2U}) {  // odd, even
    SimulatedForm s(sim::Model::kestrel5, SimulatedForm::Trace::Off);
    setUp(s, {"27C64", 8192, 1}, image);
    s.rig.controls.Slider1.setValue(1);
    s.rig.controls.HiLow_button[lane].press();
    s.rig.program();
    const auto chip = s.chipContents();
    std::vector<std::uint8_t> expected(8192, 0xFF);
    for (std::size_t i = 0; i < 4096; ++i) expected[i] = image[2 * i + (lane == 1 ? 1 : 0)];
    EXPECT_TRUE(chip == expected);
    EXPECT_EQ(s.rig.state.ProgramLength, 4096);
  }
}

// Whatever the length of the file, the device's size is programmed; reading covers whole pages.
TEST(CodeLengths, thatAreOddProgramAndReadAllTheSame) {
  struct Case {
    std::int32_t length;
    std::size_t bytesRead;
  };
  for (const Case c :
       {Case{0, 256}, {1, 256}, {255, 256}, {257, 512}, {65537, 512}, {9000, 9216}}) {
    SimulatedForm s(sim::Model::kestrel5, SimulatedForm::Trace::Off);
    setUp(s, {"27C64", 8192, 1}, fewPages(8192));
    s.rig.state.CodeLength = c.length;
    EXPECT_TRUE(s.rig.press("Verify_button"));
    s.rig.press("Error_label");
    s.rig.program();
    EXPECT_TRUE(s.chipContents() == fewPages(8192)) << c.length;
    std::ranges::fill(s.rig.state.CodeBuffer, std::uint8_t{0xEE});
    s.rig.clearLog();
    s.rig.press("Read_button");
    const auto& buffer = s.rig.state.CodeBuffer;
    const auto read = std::ranges::find(buffer, 0xEE) - buffer.begin();
    EXPECT_GE(static_cast<std::size_t>(read), std::min<std::size_t>(c.bytesRead, 8192));
    EXPECT_EQ(buffer[c.bytesRead], 0xEE) << c.length;
    EXPECT_EQ(s.rig.log().front(), std::to_string(c.length) + " bytes Read from Device");
  }
}

TEST(FileLengths, shortOnesLeaveWhatIsBehindThemAndLongOnesAreCut) {
  SimulatedForm s;
  setUp(s, {"27C64", 8192, 1}, fewPages(8192));
  s.rig.openImage({0x11, 0x22});
  s.rig.program();
  auto expected = fewPages(8192);
  expected[0] = 0x11;
  expected[1] = 0x22;
  EXPECT_TRUE(s.chipContents() == expected);
  s.board->blankChip();
  auto longer = fewPages(8192);
  longer.resize(8292, 0x33);
  s.rig.openImage(longer);
  s.rig.program();
  EXPECT_TRUE(s.chipContents() == fewPages(8192));
}

TEST(SafetyQuestion, cancelledLeavesTheChipAlone) {
  SimulatedForm s;
  setUp(s, {"27C64", 8192, 1}, randomBytes(8192, 5));
  s.rig.dialogs.answers.push_back(Answer::Cancel);
  s.rig.press("Program_button");
  EXPECT_THAT(s.rig.log(),
              ElementsAre("Programming Button Pressed", "Programming was Canceled by Operator"));
  const MessageBox& box = s.rig.dialogs.boxes.back();
  EXPECT_EQ(box.title + "|" + box.text, "Safety Question|Program the Device?");
  EXPECT_EQ(box.defaultAnswer, Answer::Cancel);
  EXPECT_THAT(s.chipContents(), Each(0xFF));
}

}  // namespace
}  // namespace kestrel::test
