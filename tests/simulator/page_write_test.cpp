#include <gtest/gtest.h>

#include "simulator/rig.h"

namespace kestrel::sim {
namespace {

using test::Rig;

// The socket's view of a part: /WE and A14 as bits of latch 1.
struct PageCase {
  const char* type;
  std::uint8_t we;
  std::uint8_t a14;
  std::int64_t cycleUs;
  std::uint8_t notLoaded;   // what is left of 00h in a page
  std::int64_t lastWaitUs;  // between two writes of the rig that still belong to one load
};

constexpr PageCase k28C{"28C256", 0x40, 0x80, 3000, 0x00, 84};
constexpr PageCase kX28C{"X28C256", 0x40, 0x80, 3000, 0x00, 84};
constexpr PageCase kAt29C{"AT29C256", 0x80, 0x40, 4000, 0xFF, 137};

// A chip full of 00h, powered and selected, latch 4 on the data lines, /OE and /WE high.
class PageRig : public Rig {
 public:
  explicit PageRig(const PageCase& part) : part_(part) {
    load(0, 0x40);
    load(1, part.we);
    board.insert(makeChip(part.type));
    board.loadChip(std::vector<std::uint8_t>(0x8000, 0x00));
    load(3, 0x02);
  }

  std::uint8_t high(std::uint32_t address) const {
    const unsigned a14 = (address & 0x4000) != 0 ? part_.a14 : 0U;
    return static_cast<std::uint8_t>((address >> 8 & 0x3F) | a14);
  }

  // /WE falls 11 us after the call and is low for 3 us; the call ends 1 us later.
  void write(std::uint32_t address, std::uint8_t value) {
    load(4, value);
    load(2, static_cast<std::uint8_t>(address));
    load(1, high(address) | part_.we);
    load(1, high(address));
    load(1, high(address) | part_.we);
  }

  std::uint8_t read(std::uint32_t address) {
    load(3, 0x42);
    load(2, static_cast<std::uint8_t>(address));
    load(1, high(address) | part_.we);
    load(0, 0x00);
    const std::uint8_t value = readBus();
    load(0, 0x40);
    load(3, 0x02);
    return value;
  }

  void command(std::uint8_t code) {
    write(0x5555, 0xAA);
    write(0x2AAA, 0x55);
    write(0x5555, code);
  }

  void waitUs(std::int64_t us) { bench.wait(microseconds(us)); }
  void finish() { waitUs(20'000); }
  bool isProtected() { return board.chip()->settings().softwareProtection.value(); }

 private:
  PageCase part_;
};

class PageWrite : public testing::TestWithParam<PageCase> {};
INSTANTIATE_TEST_SUITE_P(Parts, PageWrite, testing::Values(k28C, kX28C, kAt29C),
                         [](const auto& part) { return part.param.type; });

TEST_P(PageWrite, putsTheLoadIntoThePageOfTheLastAddress) {
  PageRig rig(GetParam());
  rig.write(0x1F85, 0x11);
  rig.write(0x4FC0, 0x22);
  rig.write(0x4FFF, 0x33);
  rig.waitUs(GetParam().cycleUs - 2);
  EXPECT_EQ(rig.cell(0x4FFF), 0x00);
  rig.waitUs(1);
  EXPECT_EQ(rig.cell(0x4FC5), 0x11);
  EXPECT_EQ(rig.cell(0x4FC0), 0x22);
  EXPECT_EQ(rig.cell(0x4FFF), 0x33);
  EXPECT_EQ(rig.cell(0x4FC6), GetParam().notLoaded);
  EXPECT_EQ(rig.cell(0x1F85), 0x00);
  EXPECT_EQ(rig.cell(0x4FBF), 0x00);
  EXPECT_EQ(rig.cell(0x5000), 0x00);
  EXPECT_EQ(rig.read(0x4FFF), 0x33);
  EXPECT_TRUE(rig.bench.findings().empty());
}

TEST_P(PageWrite, losesWhatComesAfterTheLoadWindow) {
  for (const bool late : {false, true}) {
    PageRig rig(GetParam());
    rig.write(0x0000, 0x11);
    rig.waitUs(GetParam().lastWaitUs + (late ? 2 : 0));  // 1 us before or after the window's end
    rig.write(0x0001, 0x22);
    rig.finish();
    EXPECT_EQ(rig.cell(0x0000), 0x11);
    EXPECT_EQ(rig.cell(0x0001), late ? GetParam().notLoaded : 0x22);
    EXPECT_EQ(rig.bench.findings().count(FindingKind::writeLost), late ? 1U : 0U);
  }
}

TEST_P(PageWrite, takesTheAddressFirstAndTheDataLast) {
  PageRig rig(GetParam());
  rig.load(3, 0x82);
  rig.load(1, 0x00);
  rig.load(2, 0x10);
  rig.load(3, 0x02);  // /CE falls last
  rig.load(2, 0x20);
  rig.load(4, 0x77);
  rig.load(1, GetParam().we);  // /WE rises first
  rig.load(4, 0x66);
  rig.load(3, 0x82);
  rig.finish();
  EXPECT_EQ(rig.cell(0x10), 0x77);
  EXPECT_EQ(rig.cell(0x20), GetParam().notLoaded);
}

TEST_P(PageWrite, answersReadsWithDataPollingUntilTheCycleEnds) {
  PageRig rig(GetParam());
  rig.board.setChip({.writeCycle = milliseconds(9)});
  rig.write(0x0040, 0x3C);
  for (int i = 0; i < 2; ++i) {  // in the load window, then in the cycle
    const unsigned first = rig.read(0x0040);
    const unsigned second = rig.read(0x0040);
    EXPECT_EQ(first & 0x80U, 0x80U);
    EXPECT_EQ((first ^ second) & 0xC0U, 0x40U);
    rig.waitUs(4000);
  }
  rig.load(3, 0x42);
  rig.load(0, 0x00);
  EXPECT_NE(rig.readBus(), 0x3C);
  rig.waitUs(1000);  // /OE stays low
  EXPECT_EQ(rig.readBus(), 0x3C);
}

TEST_P(PageWrite, protectionRefusesALoadThatNoCommandOpened) {
  PageRig rig(GetParam());
  EXPECT_FALSE(rig.isProtected());
  rig.command(0xA0);
  rig.write(0x0100, 0x11);
  rig.finish();
  EXPECT_TRUE(rig.isProtected());
  rig.write(0x0101, 0x22);
  rig.waitUs(1000);
  EXPECT_EQ(rig.read(0x0101) & 0x80U, 0x80U);  // busy all the same
  rig.finish();
  EXPECT_EQ(rig.cell(0x0100), 0x11);
  EXPECT_EQ(rig.cell(0x0101), GetParam().notLoaded);
  rig.command(0x80);
  rig.command(0x20);
  rig.finish();
  EXPECT_FALSE(rig.isProtected());
  rig.write(0x0101, 0x22);
  rig.finish();
  EXPECT_EQ(rig.cell(0x0101), 0x22);
  EXPECT_EQ(rig.cell(0x5555), 0x00);  // commands are no data
}

TEST_P(PageWrite, losesTheLoadWithItsSupply) {
  PageRig rig(GetParam());
  rig.write(0x0000, 0x11);
  rig.waitUs(2900);
  rig.load(3, 0x00);
  rig.load(3, 0x02);
  rig.finish();
  EXPECT_EQ(rig.cell(0x0000), 0x00);
}

TEST(PageWriteMemory, onlyTheAt29C256HasAnIdentifyMode) {
  PageRig at29(kAt29C);
  at29.command(0x90);
  at29.finish();
  EXPECT_EQ(at29.read(0x0000), 0x1F);
  EXPECT_EQ(at29.read(0x0001), 0xDC);
  at29.write(0x0000, 0xF0);
  at29.finish();
  EXPECT_EQ(at29.read(0x0000), 0x00);
  EXPECT_EQ(at29.read(0x0001), 0x00);
  PageRig other(k28C);
  other.command(0x90);
  other.finish();
  EXPECT_EQ(other.read(0x0000), 0x00);
  EXPECT_EQ(other.cell(0x5555), 0x90);  // to it the command is a load like any other
  EXPECT_EQ(other.cell(0x556A), 0x55);
}

TEST(PageWriteMemory, aStrobeWithOutputsOnAndVppOnAnAddressPinAreFindings) {
  PageRig rig(k28C);
  rig.load(3, 0x42);
  rig.load(0, 0x00);
  rig.load(1, 0x00);
  rig.load(1, 0x40);
  rig.finish();
  EXPECT_EQ(rig.cell(0x0000), 0x00);
  EXPECT_EQ(rig.bench.findings().count(FindingKind::strobeWithOutputEnabled), 1U);
  EXPECT_EQ(rig.readBus(), 0x00);
  rig.load(0, 0x10);
  EXPECT_EQ(rig.bench.findings().count(FindingKind::overVoltage), 1U);
  EXPECT_EQ(rig.readBus(), 0xFF);
}

}  // namespace
}  // namespace kestrel::sim
