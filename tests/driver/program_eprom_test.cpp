// UV EPROMs programmed on the simulated board: what the image holds is in the chip afterwards, by
// the chip's own pins, voltages and times.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "driver/parts.h"
#include "driver/prepared_form.h"

namespace kestrel::test {
namespace {

using testing::Each;
using testing::Field;

/// Those without the limits of BigParts.
std::vector<Part> eproms() {
  std::vector<Part> found;
  std::ranges::copy_if(kParts, std::back_inserter(found), [](const Part& part) {
    return std::string_view(part.device).starts_with("Eprom") && part.bytes <= 0x40000;
  });
  return found;
}

// The read-back puts FFh into the data latch while it still drives the bus, then releases it: this
// contention is in every routine. Nothing else is forgiven.
void expectContentionAlone(SimulatedForm& s) {
  EXPECT_THAT(s.bench.findings().all(),
              Each(Field(&sim::Finding::kind, sim::FindingKind::busConflict)));
  s.bench.findings().clear();
}

class EveryPart : public testing::TestWithParam<std::tuple<sim::Model, Part>> {};

// Whole and random on model 5, sparse on the other two.
TEST_P(EveryPart, isProgrammedVerifiedAndReadBack) {
  const auto& [model, part] = GetParam();
  const bool isWhole = model == sim::Model::kestrel5;
  PreparedForm s(part.chip, isWhole ? randomBytes(part.bytes, 5) : sparse(part.bytes), model);
  s.rig.controls.Voltage_button[part.voltage].press();
  s.rig.controls.Slider1.setValue(1);  // long pulses: a byte needs fewer of them
  s.rig.controls.CheckBlankPriorProgramming.press();
  s.rig.controls.VerifyAfterProgramming.press();
  const std::int32_t whole = s.rig.state.CodeLength;
  if (!isWhole) s.rig.state.CodeLength = 4096;  // for blank check and verify
  ASSERT_TRUE(s.rig.program());
  EXPECT_TRUE(s.rig.logged("Device IS BLANK (ERASED)"));
  EXPECT_TRUE(s.rig.logged("Programming Device Successfull"));
  EXPECT_TRUE(s.rig.logged("Device Contents MATCHES with Buffer Contents"));
  EXPECT_TRUE(s.chipContents() == s.image);
  expectContentionAlone(s);
  EXPECT_EQ(s.board->latch(0), 0x40);
  s.rig.state.CodeLength = whole;
  EXPECT_TRUE(s.read(part.bytes) == s.image);
  unsigned sum = 0;
  for (const std::uint8_t byte : s.image) sum += byte;
  EXPECT_EQ(s.rig.state.DeviceChecksum, static_cast<std::int32_t>(sum % 65536));
  EXPECT_TRUE(s.bench.findings().empty());
}

INSTANTIATE_TEST_SUITE_P(Parts, EveryPart,
                         testing::Combine(testing::ValuesIn(kModels), testing::ValuesIn(eproms())),
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
    PreparedForm s(chip, {});
    Bytes contents(banks.size() * 0x10000);
    for (std::size_t i = 0; i < contents.size(); ++i) {
      contents[i] = static_cast<std::uint8_t>(i >> 16U);
    }
    s.board->loadChip(contents);
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
       {std::tuple{"27C4001", 0x80000U, 0x40000}, std::tuple{"27C801", 0x100000U, 0x10400}}) {
    Bytes image(bytes, 0xFF);
    image[static_cast<std::size_t>(reach) - 1] = 0x5A;
    PreparedForm s(chip, image);
    s.rig.state.DeviceSizeBytes = reach;  // what lies above would only take time
    s.rig.program();
    EXPECT_TRUE(s.chipContents() == image) << chip;
    expectContentionAlone(s);
  }
}

TEST(ByteLanes, splitOneImageOverTwoChips) {
  for (const std::size_t lane : {1U, 2U}) {  // odd, even
    PreparedForm s("27C64", randomBytes(8192, 21));
    s.rig.controls.Slider1.setValue(1);
    s.rig.controls.HiLow_button[lane].press();
    s.rig.program();
    Bytes expected(8192, 0xFF);
    for (std::size_t i = 0; i < 4096; ++i) expected[i] = s.image[2 * i + (lane == 1 ? 1 : 0)];
    EXPECT_TRUE(s.chipContents() == expected);
    EXPECT_EQ(s.rig.state.ProgramLength, 4096);
  }
}

// Whatever the length of the file, the device's size is programmed; reading covers whole pages.
TEST(CodeLengths, thatAreOddProgramAndReadAllTheSame) {
  for (const auto& [length, bytesRead] : {std::pair{0, 256U}, {257, 512U}, {65537, 512U}}) {
    PreparedForm s("27C64", sparse(8192));
    s.rig.state.CodeLength = length;
    s.rig.program();
    EXPECT_TRUE(s.chipContents() == s.image) << length;
    s.board->loadChip(Bytes(8192, 0x5A));
    Bytes expected(bytesRead, 0x5A);
    expected.push_back(0);
    EXPECT_EQ(s.read(bytesRead + 1), expected) << length;
  }
}

TEST(NotProgrammed, isAChipThatIsNotBlankAndAFamilyWithoutARoutine) {
  PreparedForm s("27C64", sparse(8192));
  Bytes contents(8192, 0xFF);
  contents[0x123] = 0x7F;
  s.board->loadChip(contents);
  s.rig.controls.CheckBlankPriorProgramming.press();
  s.rig.program();
  EXPECT_EQ(s.rig.result.ending, Ending::Differs);
  s.rig.program("menuProgramCode");  // the question, and nothing more
  EXPECT_EQ(s.rig.result.ending, Ending::Refused);
  s.rig.press("Error_label");
  s.rig.controls.CheckBlankPriorProgramming.press();
  s.rig.state.FamilyCode = "PM";
  s.rig.program();
  EXPECT_EQ(s.rig.result.ending, Ending::NoRoutine);
  EXPECT_TRUE(s.chipContents() == contents);
}

}  // namespace
}  // namespace kestrel::test
