#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "simulator/rig.h"

namespace kestrel::sim {
namespace {

using test::Rig;

// Latches 0 to 3 that read an address, and the bits of latches 1 and 3 that the chip sees.
struct ReadCase {
  const char* type;
  std::uint32_t sizeBytes;
  std::uint32_t address;
  std::uint8_t latches[4];
  std::uint8_t seen1;
  std::uint8_t seen3;
};

class UvEpromRead : public testing::TestWithParam<ReadCase> {};

TEST_P(UvEpromRead, showsTheAddressOnItsOwnPins) {
  const ReadCase& c = GetParam();
  Rig rig;
  rig.load(0, 0x40);
  rig.insertMarked(c.type, c.address);
  ASSERT_EQ(rig.board.chip()->contents().size(), c.sizeBytes);
  for (std::size_t latch = 0; latch < 4; ++latch) rig.load(latch, c.latches[latch]);
  EXPECT_EQ(rig.read(), 0x5A);
  const std::uint8_t seen[4]{0x40, c.seen1, 0xFF, static_cast<std::uint8_t>(c.seen3 | 0x80)};
  for (std::size_t latch = 0; latch < 4; ++latch) {
    for (unsigned bit = 1; bit < 0x100; bit <<= 1) {
      // Of latch 0 only /OE; with latch 3 bit 6 low latch 4 would drive the data lines.
      if ((latch == 0 && bit != 0x40) || (latch == 3 && bit == 0x40)) continue;
      EXPECT_EQ(rig.read({{latch, static_cast<std::uint8_t>(c.latches[latch] ^ bit)}}),
                (seen[latch] & bit) != 0 ? 0xFF : 0x5A)
          << "latch " << latch << " bit mask " << bit;
      rig.load(latch, c.latches[latch]);
    }
  }
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Packages, UvEpromRead, testing::Values(
    ReadCase{"2732",   0x1000,   0xABC,   {0x00, 0x2A, 0xBC, 0x40}, 0x2F, 0x00},
    ReadCase{"2764",   0x2000,   0x1234,  {0x00, 0xD2, 0x34, 0x42}, 0x9F, 0x02},
    ReadCase{"27C64",  0x2000,   0x1234,  {0x00, 0x12, 0x34, 0x42}, 0x1F, 0x02},
    ReadCase{"27256",  0x8000,   0x5A5A,  {0x00, 0xDA, 0x5A, 0x42}, 0xFF, 0x02},
    ReadCase{"27C512", 0x10000,  0x9C31,  {0x00, 0x9C, 0x31, 0x42}, 0xFF, 0x02},
    ReadCase{"27C010", 0x20000,  0x1ABCD, {0x00, 0xAB, 0xCD, 0x41}, 0xFF, 0x01},
    ReadCase{"27C020", 0x40000,  0x2ABCD, {0x00, 0xAB, 0xCD, 0x42}, 0xFF, 0x03},
    ReadCase{"27C040", 0x80000,  0x41234, {0x00, 0x12, 0x34, 0x44}, 0xFF, 0x07},
    ReadCase{"27C080", 0x100000, 0x41234, {0x00, 0x12, 0x34, 0x44}, 0xFF, 0x0F},
    ReadCase{"27C080", 0x100000, 0x81234, {0x00, 0x12, 0x34, 0x48}, 0xFF, 0x0F}));
// clang-format on

// Latches 0, 1 and 3 between two pulses, and the latch load that makes the pulse.
struct ProgramCase {
  const char* type;
  std::uint8_t idle0, idle1, idle3;
  test::Load strobe;
  std::int64_t timeUs;
};

// A chip at address 0 with its programming voltage on, data A5h on the data lines.
class ProgramRig : public Rig {
 public:
  explicit ProgramRig(const ProgramCase& program, bool judged = false)
      : Rig(Model::kestrel5, judged), strobe_(program.strobe) {
    load({{0, 0x40}, {3, 0x80}});
    board.insert(makeChip(program.type));
    load({{4, 0xA5}, {1, program.idle1}, {3, program.idle3}, {0, program.idle0}});
    idle_ = board.latch(strobe_.latch);
    waitUs(1'000'000);
  }

  // The cell after a strobe that lasts from its latch load to the next: 3 us of port accesses and
  // the wait.
  std::uint8_t pulse(std::int64_t lengthUs) {
    load({strobe_});
    waitUs(lengthUs - 3);
    (void)board.chip();  // a look at it is no pulse of its own
    load(strobe_.latch, idle_);
    return cell(board.latch(2));
  }

 private:
  test::Load strobe_;
  std::uint8_t idle_;
};

class UvEpromProgram : public testing::TestWithParam<ProgramCase> {};

TEST_P(UvEpromProgram, needsItsProgrammingTimeAndNoLess) {
  ProgramRig rig(GetParam());
  EXPECT_EQ(rig.pulse(GetParam().timeUs - 1), 0xFF);
  rig.load(2, 0x01);
  EXPECT_EQ(rig.pulse(GetParam().timeUs), 0xA5);
  EXPECT_EQ(rig.cell(0), 0xFF);
  EXPECT_TRUE(rig.isClean());
}

constexpr ProgramCase k2732{"2732", 0xC3, 0x20, 0x80, {3, 0x00}, 10000};
constexpr ProgramCase k27C64{"27C64", 0x50, 0x40, 0x02, {1, 0x00}, 100};
constexpr ProgramCase k27C080{"27C080", 0xC0, 0x00, 0x80, {3, 0x00}, 50};
constexpr ProgramCase k2764{"2764", 0x52, 0x40, 0x02, {1, 0x00}, 1000};
constexpr ProgramCase k27256{"27256", 0x50, 0x00, 0x82, {3, 0x02}, 1000};
constexpr ProgramCase k27C512{"27C512", 0xC0, 0x00, 0x82, {3, 0x02}, 100};

// clang-format off
INSTANTIATE_TEST_SUITE_P(Catalogue, UvEpromProgram, testing::Values(k2764, k27256, k27C512,
    k2732,
    ProgramCase{"2732A",   0xC2, 0x20, 0x80, {3, 0x00}, 10000},
    ProgramCase{"2732B",   0xC0, 0x20, 0x80, {3, 0x00}, 10000},
    ProgramCase{"27128",   0x52, 0x40, 0x02, {1, 0x00}, 1000},
    k27C64,
    ProgramCase{"27C256",  0x50, 0x00, 0x82, {3, 0x02}, 100},
    ProgramCase{"27C010",  0x60, 0x00, 0x04, {3, 0x00}, 100},
    ProgramCase{"27C040",  0x60, 0x00, 0x80, {3, 0x00}, 100},
    k27C080));
// clang-format on

TEST(UvEprom, shortPulsesAddUpUntilTheLampErasesThem) {
  ProgramRig rig(k2764);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(rig.pulse(300), 0xFF);
  EXPECT_EQ(rig.pulse(100), 0xA5);
  rig.load(4, 0x0F);
  EXPECT_EQ(rig.pulse(900), 0xA5);
  EXPECT_EQ(rig.pulse(100), 0x05);  // bits go from 1 to 0 only
  EXPECT_TRUE(rig.board.eraseUnderLamp());
  EXPECT_EQ(rig.cell(0), 0xFF);
  rig.board.insert(makeChip("27C080-otp"));
  EXPECT_FALSE(rig.board.eraseUnderLamp());
}

TEST(UvEprom, verifiesWithVppOnAsItsFamilyDoes) {
  ProgramRig pgm(k2764);
  pgm.pulse(1000);
  EXPECT_EQ(pgm.read({{3, 0x42}, {0, 0x12}}), 0xA5);
  EXPECT_EQ(pgm.read({{1, 0x00}}), 0xFF);
  EXPECT_EQ(pgm.count(FindingKind::strobeWithOutputEnabled), 1U);
  ProgramRig ce(k27256);
  ce.pulse(1000);
  EXPECT_EQ(ce.read({{3, 0xC2}, {0, 0x10}}), 0xA5);
  EXPECT_EQ(ce.read({{3, 0x42}}), 0xFF);  // /CE low under VPP is no verify
  ProgramRig oe(k27C512);
  oe.pulse(100);
  EXPECT_EQ(oe.read({{3, 0x42}}), 0xFF);
  EXPECT_EQ(oe.read({{0, 0x00}}), 0xA5);
}

TEST(UvEprom, doesNotProgramWithAnotherVoltage) {
  ProgramCase low = k2764;
  low.idle0 = 0x50;  // 12.5 V for a part of 21 V
  ProgramRig rig(low);
  EXPECT_EQ(rig.pulse(2000), 0xFF);
  rig.load(0, 0x52);
  rig.waitUs(997'000);
  EXPECT_EQ(rig.bench.findings().all().at(0).text,
            "2764: program pulse with VPP 12.5 V instead of 21.0 V");
  EXPECT_EQ(rig.pulse(3500), 0xFF);  // it arrives during this one, which counts from then on
  EXPECT_EQ(rig.pulse(700), 0xA5);
}

TEST(UvEprom, isDamagedAboveItsMaximumAndByVppOnAnAddressPin) {
  ProgramRig rig({"27C256", 0x52, 0x00, 0x82, {3, 0x02}, 100});
  EXPECT_EQ(rig.pulse(100), 0xFF);
  EXPECT_EQ(rig.bench.findings().all().at(0).text,
            "27C256: damaged: VPP 21.0 V is above its maximum of 14.0 V");
  ProgramRig pin1({"27C512", 0x50, 0x00, 0x82, {3, 0x02}, 100});
  EXPECT_EQ(pin1.count(FindingKind::overVoltage), 1U);
}

TEST(UvEprom, needsVppOnItsPinAndItsSupplyAndOeHigh) {
  // VPP on socket pin 1; no 5 V on pin 28 of the chip; /OE low.
  for (const auto& [idle0, idle3] : {std::pair{0x62, 0x02}, {0x52, 0x00}, {0x12, 0x02}}) {
    ProgramCase wrong = k2764;
    wrong.idle0 = static_cast<std::uint8_t>(idle0);
    wrong.idle3 = static_cast<std::uint8_t>(idle3);
    EXPECT_EQ(ProgramRig(wrong).pulse(1000), 0xFF);
  }
}

TEST(UvEprom, linesThatMoveDuringAPulseAreFindings) {
  ProgramRig rig(k2764);
  rig.load({{1, 0x00}, {2, 0x03}});
  EXPECT_EQ(rig.count(FindingKind::addressMovedDuringPulse), 1U);
  rig.load(4, 0x12);
  EXPECT_EQ(rig.count(FindingKind::dataMovedDuringPulse), 1U);
  rig.waitUs(250'000);
  rig.load(1, 0x41);  // A8 moves as the pulse ends: no finding
  EXPECT_EQ(rig.count(FindingKind::addressMovedDuringPulse), 1U);
  EXPECT_EQ(rig.count(FindingKind::strobeLeftActive), 1U);
  EXPECT_EQ(rig.cell(3), 0x12);
}

using Widths = std::vector<std::int64_t>;

Widths times(std::size_t count, std::int64_t widthUs, std::int64_t thenUs = 0) {
  Widths widths(count, widthUs);
  if (thenUs != 0) widths.push_back(thenUs);
  return widths;
}

// What a part says to a series of pulses in us, after which the address moves on.
struct JudgeCase {
  ProgramCase part;
  std::size_t pulsesNeeded;
  Widths widthsUs;
  std::string finding;
};

class PulseJudgement : public testing::TestWithParam<JudgeCase> {};

TEST_P(PulseJudgement, findsWhatTheDataSheetForbids) {
  const auto& [part, needed, widthsUs, finding] = GetParam();
  ProgramRig rig(part, true);
  rig.board.fitWeakCell(0, static_cast<std::uint32_t>(needed));
  std::size_t refused = 0;
  for (const std::int64_t width : widthsUs) refused += rig.pulse(width) == 0xFF ? 1U : 0U;
  EXPECT_EQ(refused, std::min(needed - 1, widthsUs.size()));
  rig.load(2, 0x01);
  EXPECT_EQ(rig.found(), finding.empty() ? "" : part.type + (": program pulse " + finding));
}

// clang-format off
const std::string k4ms = "to overprogram that is not of 4 ms times the pulses given";
INSTANTIATE_TEST_SUITE_P(Parts, PulseJudgement, testing::Values(
    JudgeCase{k2764,   1,  {1000, 4000}, ""},
    JudgeCase{k2764,   1,  {1050, 950, 8400}, ""},
    JudgeCase{k2764,   15, times(15, 1000, 60000), ""},
    JudgeCase{k2764,   15, times(15, 1000, 63001), k4ms},
    JudgeCase{k2764,   1,  {1000, 3799}, k4ms},
    JudgeCase{k2764,   1,  {1000, 4201}, k4ms},
    JudgeCase{k2764,   1,  {1000}, "to overprogram is missing"},
    JudgeCase{k2764,   1,  {1000, 949, 8000}, "shorter than 950 us"},
    JudgeCase{k2764,   1,  {1051, 4000}, "longer than 1.05 ms"},
    JudgeCase{k2764,   99, times(15, 1000), ""},  // refused them all: given up
    JudgeCase{k2764,   99, times(16, 1000), "after the greatest number of 15"},
    JudgeCase{k2764,   1,  {1000, 4000, 1000, 4000}, ""},
    JudgeCase{k27256,  25, times(25, 1000, 78750), ""},
    JudgeCase{k27C64,  25, times(25, 100), ""},
    JudgeCase{k27C64,  26, times(26, 100), "after the greatest number of 25"},
    JudgeCase{k27C64,  1,  {100, 94}, "shorter than 95 us"},
    JudgeCase{k27C64,  1,  {106}, "longer than 105 us"},
    JudgeCase{k27C080, 25, times(25, 52), ""},
    JudgeCase{k27C080, 1,  {50, 47}, "shorter than 47.5 us"},
    JudgeCase{k27C080, 1,  {53}, "longer than 52.5 us"},
    JudgeCase{k2732,   1,  {55000}, ""},
    JudgeCase{k2732,   1,  {44999}, "shorter than 45 ms"},
    JudgeCase{k2732,   1,  {55001}, "longer than 55 ms"},
    JudgeCase{k2732,   1,  {50000, 50000}, "after the greatest number of 1"}));
// clang-format on

TEST(PulseJudgement, countsThePulsesOfAByteThroughVisitsElsewhereUntilTheRunEnds) {
  for (const auto& [withoutVppUs, findings] : {std::pair{490'000, 1U}, {500'000, 0U}}) {
    ProgramRig rig(k2732, true);
    rig.pulse(50'000);
    rig.load(2, 0x01);
    rig.pulse(50'000);
    rig.load({{2, 0x00}, {0, 0x43}});
    rig.waitUs(withoutVppUs);
    rig.load(0, 0xC3);
    rig.pulse(50'000);
    EXPECT_EQ(rig.count(FindingKind::tooManyPulses), findings);
  }
}

}  // namespace
}  // namespace kestrel::sim
