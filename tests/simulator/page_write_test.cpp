#include <gtest/gtest.h>

#include "simulator/write_rig.h"

namespace kestrel::sim {
namespace {

struct PageCase {
  const char* type;
  std::uint8_t we;
  std::int64_t cycleUs;
  std::uint8_t notLoaded;   // what is left of 00h in a page
  std::int64_t lastWaitUs;  // between two writes of the rig that still belong to one load
};

class PageWrite : public testing::TestWithParam<PageCase>, public test::WriteRig {
 protected:
  PageWrite() : WriteRig(GetParam().type, 1, GetParam().we, GetParam().we ^ 0xC0) {}
  void command(std::uint8_t code) {
    write(0x5555, 0xAA);
    write(0x2AAA, 0x55);
    write(0x5555, code);
  }
  std::uint8_t finishedCell(std::uint32_t address) {
    waitUs(20'000);
    return cell(address);
  }
};
INSTANTIATE_TEST_SUITE_P(Parts, PageWrite,
                         testing::Values(PageCase{"28C256", 0x40, 3000, 0x00, 84},
                                         PageCase{"AT29C256", 0x80, 4000, 0xFF, 137}));

TEST_P(PageWrite, putsTheLoadIntoThePageOfTheLastAddress) {
  write(0x1F85, 0x11);
  load(3, 0x86);
  setAddress(0x4FFF);
  moveWe();
  load(3, 0x06);  // /CE falls last: the address
  load(2, 0x00);
  load(4, 0x33);
  moveWe();  // /WE rises first: the data
  load(4, 0x66);
  waitUs(GetParam().cycleUs - 5);
  EXPECT_EQ(cell(0x4FFF), 0x00);
  waitUs(1);
  EXPECT_EQ(read(0x4FC5), 0x11);
  EXPECT_EQ(read(0x4FFF), 0x33);
  EXPECT_EQ(cell(0x4FC0), GetParam().notLoaded);
  EXPECT_EQ(cell(0x1F85) | cell(0x4FBF) | cell(0x5000), 0x00);
  EXPECT_TRUE(bench.findings().empty());
}

TEST_P(PageWrite, losesWhatComesAfterTheLoadWindow) {
  for (const unsigned late : {0U, 1U}) {
    write(0x0000, 0x11);
    waitUs(GetParam().lastWaitUs + 2 * late);  // 1 us before or after the window's end
    write(0x0001 + late, 0x22);
    EXPECT_EQ(finishedCell(0x0000), 0x11);
    EXPECT_EQ(cell(0x0001 + late), late == 0 ? 0x22 : GetParam().notLoaded);
    EXPECT_EQ(bench.findings().count(FindingKind::writeLost), late);
  }
}

TEST_P(PageWrite, answersReadsWithDataPollingUntilTheCycleEnds) {
  board.setChip({.writeCycle = milliseconds(9)});
  write(0x0040, 0x3C);
  for (int i = 0; i < 2; ++i) {  // in the load window, then in the cycle
    EXPECT_EQ(read(0x0040) & 0x80, 0x80);
    EXPECT_EQ((read(0x0040) ^ read(0x0040)) & 0xC0, 0x40);
    waitUs(4000);
  }
  load(3, 0x46);
  load(0, 0x00);
  waitUs(1000);  // /OE stays low
  EXPECT_EQ(readBus(), 0x3C);
}

TEST_P(PageWrite, protectionRefusesALoadThatNoCommandOpened) {
  command(0xA0);
  write(0x0100, 0x11);
  EXPECT_EQ(finishedCell(0x0100), 0x11);
  EXPECT_EQ(board.chip()->settings().softwareProtection, true);
  write(0x0101, 0x22);
  waitUs(1000);
  EXPECT_EQ(read(0x0101) & 0x80, 0x80);  // busy all the same
  EXPECT_EQ(finishedCell(0x0101), GetParam().notLoaded);
  command(0x80);
  command(0x20);
  write(0x0101, 0x22);
  EXPECT_EQ(finishedCell(0x0101), 0x22);
  EXPECT_EQ(board.chip()->settings().softwareProtection, false);
  EXPECT_EQ(cell(0x0115), GetParam().notLoaded);  // commands are no data
}

TEST_P(PageWrite, onlyTheAt29C256HasAnIdentifyMode) {
  const bool identifies = GetParam().we == 0x80;
  command(0x90);
  EXPECT_EQ(finishedCell(0x5555), identifies ? 0x00 : 0x90);  // to the other it is a load
  EXPECT_EQ(read(0x0000), identifies ? 0x1F : 0x00);
  EXPECT_EQ(read(0x0001), identifies ? 0xDC : 0x00);
  write(0x0000, 0xF0);
  waitUs(20'000);
  EXPECT_EQ(read(0x0001), 0x00);
}

TEST_P(PageWrite, nothingIsWrittenWithoutSupplyOrWithOutputsOn) {
  write(0x0000, 0x11);
  load(3, 0x04);  // the supply goes during the cycle
  load(3, 0x46);
  load(0, 0x00);
  moveWe();
  moveWe();
  EXPECT_EQ(finishedCell(0x0000), 0x00);
  EXPECT_EQ(bench.findings().count(FindingKind::strobeWithOutputEnabled), 1U);
  load(0, 0x10);  // VPP on pin 1
  EXPECT_EQ(bench.findings().count(FindingKind::overVoltage), 1U);
  EXPECT_EQ(readBus(), 0xFF);
}

}  // namespace
}  // namespace kestrel::sim
