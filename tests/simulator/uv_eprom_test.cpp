#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

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
  rig.load(c.latches);
  EXPECT_EQ(rig.readBus(), 0x5A);
  const std::uint8_t seen[4]{0x40, c.seen1, 0xFF, static_cast<std::uint8_t>(c.seen3 | 0x80)};
  for (std::size_t latch = 0; latch < 4; ++latch) {
    for (unsigned bit = 1; bit < 0x100; bit <<= 1) {
      if (latch == 0 && bit != 0x40) continue;  // supply and lamp
      if (latch == 3 && bit == 0x40) continue;  // latch 4 would drive the data lines
      rig.load(latch, static_cast<std::uint8_t>(c.latches[latch] ^ bit));
      EXPECT_EQ(rig.readBus(), (seen[latch] & bit) != 0 ? 0xFF : 0x5A)
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
    ReadCase{"27128",  0x4000,   0x2F0F,  {0x00, 0xEF, 0x0F, 0x42}, 0xBF, 0x02},
    ReadCase{"27256",  0x8000,   0x5A5A,  {0x00, 0xDA, 0x5A, 0x42}, 0xFF, 0x02},
    ReadCase{"27C512", 0x10000,  0x9C31,  {0x00, 0x9C, 0x31, 0x42}, 0xFF, 0x02},
    ReadCase{"27C010", 0x20000,  0x1ABCD, {0x00, 0xAB, 0xCD, 0x41}, 0xFF, 0x01},
    ReadCase{"27C020", 0x40000,  0x2ABCD, {0x00, 0xAB, 0xCD, 0x42}, 0xFF, 0x03},
    ReadCase{"27C040", 0x80000,  0x41234, {0x00, 0x12, 0x34, 0x44}, 0xFF, 0x07},
    ReadCase{"27C080", 0x100000, 0x81234, {0x00, 0x12, 0x34, 0x48}, 0xFF, 0x0F}));
// clang-format on

TEST(UvEprom, topAddressLinesOfThe27C080ArePins1And31) {
  Rig rig;
  rig.board.insert(makeChip("27C080"));
  std::vector<std::uint8_t> contents(0x100000);
  for (std::size_t i = 0; i < contents.size(); ++i)
    contents[i] = static_cast<std::uint8_t>(i >> 16);
  rig.board.loadChip(contents);
  rig.load(3, 0x40);
  EXPECT_EQ(rig.readBus(), 0);
  rig.load(3, 0x44);
  EXPECT_EQ(rig.readBus(), 4);
  rig.load(3, 0x48);
  EXPECT_EQ(rig.readBus(), 8);
  rig.load(3, 0x4C);
  EXPECT_EQ(rig.readBus(), 12);
}

// Latches 0 to 3 between two pulses, and the latch value that makes the pulse.
struct ProgramCase {
  const char* type;
  std::uint8_t idle[4];
  std::size_t strobeLatch;
  std::uint8_t strobe;
  std::int64_t timeUs;
};

// A chip at address 0 with its programming voltage on, data A5h on the data lines.
class ProgramRig : public Rig {
 public:
  explicit ProgramRig(const ProgramCase& program) : case_(program) {
    load(0, 0x40);
    load(3, 0x80);
    board.insert(makeChip(program.type));
    load(4, 0xA5);
    load(1, program.idle[1]);
    load(3, program.idle[3]);
    load(0, program.idle[0]);
    bench.wait(milliseconds(1000));
  }

  // The strobe lasts from its latch load to the next: 3 us of port accesses and the wait.
  void pulseUs(std::int64_t lengthUs) {
    load(case_.strobeLatch, case_.strobe);
    bench.wait(microseconds(lengthUs - 3));
    load(case_.strobeLatch, case_.idle[case_.strobeLatch]);
  }

 private:
  ProgramCase case_;
};

class UvEpromProgram : public testing::TestWithParam<ProgramCase> {};

TEST_P(UvEpromProgram, needsItsProgrammingTimeAndNoLess) {
  ProgramRig rig(GetParam());
  rig.pulseUs(GetParam().timeUs - 1);
  EXPECT_EQ(rig.cell(0), 0xFF);
  rig.load(2, 0x01);
  rig.pulseUs(GetParam().timeUs);
  EXPECT_EQ(rig.cell(1), 0xA5);
  EXPECT_EQ(rig.cell(0), 0xFF);
  EXPECT_TRUE(rig.bench.findings().empty());
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Catalogue, UvEpromProgram, testing::Values(
    ProgramCase{"2732",    {0xC3, 0x20, 0x00, 0x80}, 3, 0x00, 10000},
    ProgramCase{"27C32",   {0xC3, 0x20, 0x00, 0x80}, 3, 0x00, 10000},
    ProgramCase{"2732A",   {0xC2, 0x20, 0x00, 0x80}, 3, 0x00, 10000},
    ProgramCase{"2732B",   {0xC0, 0x20, 0x00, 0x80}, 3, 0x00, 10000},
    ProgramCase{"2764",    {0x52, 0x40, 0x00, 0x02}, 1, 0x00, 1000},
    ProgramCase{"27128",   {0x52, 0x40, 0x00, 0x02}, 1, 0x00, 1000},
    ProgramCase{"27C64",   {0x50, 0x40, 0x00, 0x02}, 1, 0x00, 100},
    ProgramCase{"27C128",  {0x50, 0x40, 0x00, 0x02}, 1, 0x00, 100},
    ProgramCase{"27256",   {0x50, 0x00, 0x00, 0x82}, 3, 0x02, 1000},
    ProgramCase{"27C256",  {0x50, 0x00, 0x00, 0x82}, 3, 0x02, 100},
    ProgramCase{"27C259",  {0x50, 0x00, 0x00, 0x82}, 3, 0x02, 100},
    ProgramCase{"27C512",  {0xC0, 0x00, 0x00, 0x82}, 3, 0x02, 100},
    ProgramCase{"27C1001", {0x60, 0x00, 0x00, 0x04}, 3, 0x00, 100},
    ProgramCase{"27C010",  {0x60, 0x00, 0x00, 0x04}, 3, 0x00, 100},
    ProgramCase{"27C2001", {0x60, 0x00, 0x00, 0x04}, 3, 0x00, 100},
    ProgramCase{"27C020",  {0x60, 0x00, 0x00, 0x04}, 3, 0x00, 100},
    ProgramCase{"27C4001", {0x60, 0x00, 0x00, 0x80}, 3, 0x00, 100},
    ProgramCase{"27C040",  {0x60, 0x00, 0x00, 0x80}, 3, 0x00, 100},
    ProgramCase{"27C801",  {0xC0, 0x00, 0x00, 0x80}, 3, 0x00, 50},
    ProgramCase{"27C080",  {0xC0, 0x00, 0x00, 0x80}, 3, 0x00, 50}));
// clang-format on

constexpr ProgramCase k2764{"2764", {0x52, 0x40, 0x00, 0x02}, 1, 0x00, 1000};
constexpr ProgramCase k27256{"27256", {0x50, 0x00, 0x00, 0x82}, 3, 0x02, 1000};
constexpr ProgramCase k27C512{"27C512", {0xC0, 0x00, 0x00, 0x82}, 3, 0x02, 100};

TEST(UvEprom, shortPulsesAddUpWhileTheSameDataStands) {
  ProgramRig rig(k2764);
  for (int i = 0; i < 3; ++i) rig.pulseUs(300);
  EXPECT_EQ(rig.cell(0), 0xFF);
  rig.pulseUs(100);
  EXPECT_EQ(rig.cell(0), 0xA5);
  rig.load(4, 0x0F);
  rig.pulseUs(900);
  EXPECT_EQ(rig.cell(0), 0xA5);
  rig.pulseUs(100);
  EXPECT_EQ(rig.cell(0), 0x05);  // bits go from 1 to 0 only
  rig.load(4, 0xFF);
  rig.pulseUs(1000);
  EXPECT_EQ(rig.cell(0), 0x05);
}

TEST(UvEprom, weakCellNeverGetsThereAndTheLampErasesTheOthers) {
  ProgramRig rig(k2764);
  rig.board.fitWeakCell(0);
  rig.pulseUs(50'000);
  EXPECT_EQ(rig.cell(0), 0xFF);
  rig.load(2, 0x01);
  rig.pulseUs(1000);
  EXPECT_EQ(rig.cell(1), 0xA5);
  EXPECT_TRUE(rig.board.eraseUnderLamp());
  EXPECT_EQ(rig.cell(1), 0xFF);
  rig.pulseUs(999);
  EXPECT_EQ(rig.cell(1), 0xFF);  // nothing is left of the earlier pulses
}

TEST(UvEprom, verifiesWithVppOnAsItsFamilyDoes) {
  ProgramRig pgm(k2764);
  pgm.pulseUs(1000);
  pgm.load(3, 0x42);
  pgm.load(0, 0x12);
  EXPECT_EQ(pgm.readBus(), 0xA5);
  pgm.load(1, 0x00);
  EXPECT_EQ(pgm.readBus(), 0xFF);
  EXPECT_EQ(pgm.bench.findings().count(FindingKind::strobeWithOutputEnabled), 1U);

  ProgramRig ce(k27256);
  ce.pulseUs(1000);
  ce.load(3, 0xC2);
  ce.load(0, 0x10);
  EXPECT_EQ(ce.readBus(), 0xA5);
  ce.load(3, 0x42);  // /CE low under VPP is no verify
  EXPECT_EQ(ce.readBus(), 0xFF);

  ProgramRig oe(k27C512);
  oe.pulseUs(100);
  oe.load(3, 0x42);
  EXPECT_EQ(oe.readBus(), 0xFF);
  oe.load(0, 0x00);
  EXPECT_EQ(oe.readBus(), 0xA5);
}

TEST(UvEprom, doesNotProgramWithAnotherVoltage) {
  ProgramCase low = k2764;
  low.idle[0] = 0x50;  // 12.5 V for a part of 21 V
  ProgramRig rig(low);
  rig.pulseUs(2000);
  EXPECT_EQ(rig.cell(0), 0xFF);
  rig.load(0, 0x52);
  rig.bench.wait(milliseconds(500));
  rig.pulseUs(2000);  // 21 V have not arrived yet
  EXPECT_EQ(rig.cell(0), 0xFF);
  ASSERT_EQ(rig.bench.findings().all().size(), 1U);
  EXPECT_EQ(rig.bench.findings().all()[0].text,
            "2764: program pulse with VPP 12.5 V instead of 21.0 V");
  EXPECT_EQ(rig.bench.findings().all()[0].count, 2U);
  rig.bench.wait(milliseconds(497));
  rig.pulseUs(1500);  // it arrives during this one, which counts from then on
  EXPECT_EQ(rig.cell(0), 0xFF);
  rig.pulseUs(700);
  EXPECT_EQ(rig.cell(0), 0xA5);
}

TEST(UvEprom, isDamagedAboveItsMaximum) {
  ProgramCase high{"27C256", {0x52, 0x00, 0x00, 0x82}, 3, 0x02, 100};
  ProgramRig rig(high);
  rig.pulseUs(100);
  EXPECT_EQ(rig.cell(0), 0xFF);
  EXPECT_EQ(rig.bench.findings().count(FindingKind::overVoltage), 1U);
  EXPECT_EQ(rig.bench.findings().all()[0].text,
            "27C256: damaged: VPP 21.0 V is above its maximum of 14.0 V");
}

TEST(UvEprom, isDamagedByVppOnAnAddressPin) {
  Rig rig;
  rig.load(0, 0x40);
  rig.insertMarked("27C512", 0x0000);
  rig.load({0x50, 0x00, 0x00, 0x42});
  EXPECT_EQ(rig.bench.findings().count(FindingKind::overVoltage), 1U);
  rig.load(0, 0x00);
  EXPECT_EQ(rig.readBus(), 0xFF);
}

TEST(UvEprom, needsVppOnItsPinAndItsSupplyAndOeHigh) {
  const std::uint8_t idles[][4]{{0x62, 0x40, 0, 0x02},   // VPP on socket pin 1
                                {0x52, 0x40, 0, 0x00},   // no 5 V on pin 28 of the chip
                                {0x12, 0x40, 0, 0x02}};  // /OE low
  for (const auto& idle : idles) {
    ProgramCase wrong = k2764;
    std::copy(std::begin(idle), std::end(idle), std::begin(wrong.idle));
    ProgramRig rig(wrong);
    rig.pulseUs(1000);
    EXPECT_EQ(rig.cell(0), 0xFF);
  }
}

TEST(UvEprom, linesThatMoveDuringAPulseAreFindings) {
  ProgramRig rig(k2764);
  rig.load(1, 0x00);
  rig.load(2, 0x03);
  EXPECT_EQ(rig.bench.findings().count(FindingKind::addressMovedDuringPulse), 1U);
  rig.load(4, 0x12);
  EXPECT_EQ(rig.bench.findings().count(FindingKind::dataMovedDuringPulse), 1U);
  rig.bench.wait(milliseconds(250));
  rig.load(1, 0x41);  // A8 moves as the pulse ends: no finding
  EXPECT_EQ(rig.bench.findings().count(FindingKind::addressMovedDuringPulse), 1U);
  EXPECT_EQ(rig.bench.findings().count(FindingKind::strobeLeftActive), 1U);
  EXPECT_EQ(rig.cell(3), 0x12);
}

}  // namespace
}  // namespace kestrel::sim
