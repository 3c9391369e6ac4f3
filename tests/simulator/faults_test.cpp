#include <gtest/gtest.h>

#include <stdexcept>

#include "simulator/rig.h"

namespace kestrel::sim {
namespace {

using test::Rig;

TEST(Faults, stuckDataLineKeepsItsLevelWhoeverDrivesIt) {
  Rig rig;
  rig.load(4, 0xA5);
  rig.board.stickDataLine(0, false);
  rig.board.stickDataLine(6, true);
  EXPECT_EQ(rig.readBus(), 0xE4);
  rig.load(3, 0x40);
  EXPECT_EQ(rig.readBus(), 0xFE);
  rig.board.stickDataLine(0, true);
  EXPECT_EQ(rig.readBus(), 0xFF);
  rig.board.freeDataLines();
  rig.load(3, 0x00);
  EXPECT_EQ(rig.readBus(), 0xA5);
  EXPECT_TRUE(rig.bench.findings().empty());
  EXPECT_THROW(rig.board.stickDataLine(8, true), std::out_of_range);
}

TEST(Faults, boardIsGoneAfterSoManyAccesses) {
  Rig rig;
  rig.load(4, 0x00);
  rig.bench.unplugAfter(3);
  EXPECT_EQ(rig.status(), 0x87);
  rig.data(0x55);
  EXPECT_EQ(rig.status(), 0x87);
  EXPECT_EQ(rig.status(), 0xFF);
  rig.control(0x0);
  EXPECT_EQ(rig.board.latch(4), 0x00);
  EXPECT_FALSE(rig.bench.isPlugged(0x378));
}

TEST(Faults, emptySocketReadsFFAndHasNothingToWorkOn) {
  Rig rig;
  rig.load({0x00, 0x00, 0x00, 0x42});
  EXPECT_EQ(rig.readBus(), 0xFF);
  EXPECT_EQ(rig.board.chip(), nullptr);
  EXPECT_EQ(rig.board.takeOut(), nullptr);
  EXPECT_THROW(rig.board.blankChip(), std::logic_error);
}

TEST(Faults, chipKeepsItsContentsFromBoardToBoard) {
  Rig first;
  first.load(0, 0x40);
  first.insertMarked("27C64", 0x0000);
  Rig second(Model::kestrel6);
  second.load({0x00, 0x00, 0x00, 0x42});
  second.board.insert(first.board.takeOut());
  EXPECT_EQ(second.readBus(), 0x5A);
  EXPECT_EQ(first.board.chip(), nullptr);
}

TEST(Faults, newContentsAreOnTheDataLinesAtOnceAndMustFit) {
  Rig rig;
  rig.load({0x00, 0x00, 0x00, 0x42});
  rig.insertMarked("27C64", 0x0000);
  EXPECT_EQ(rig.readBus(), 0x5A);
  EXPECT_THROW(rig.board.loadChip(std::vector<std::uint8_t>(0x4000)), std::invalid_argument);
  rig.board.blankChip();
  EXPECT_EQ(rig.readBus(), 0xFF);
}

TEST(Findings, twoDriversThatDisagreeAreWiredAnd) {
  Rig rig;
  rig.load({0x40, 0x00, 0x00, 0x42});
  rig.insertMarked("27C64", 0x0000);
  rig.load(4, 0x5A);
  rig.load(0, 0x00);
  rig.load(3, 0x02);  // both drive 5A
  EXPECT_TRUE(rig.bench.findings().empty());
  rig.load(4, 0x0F);
  EXPECT_EQ(rig.readBus(), 0x0A);
  rig.load(2, 0x01);  // FF against 0F: still the same quarrel
  EXPECT_EQ(rig.bench.findings().count(FindingKind::busConflict), 1U);
  rig.load(0, 0x40);
  rig.load(0, 0x00);
  EXPECT_EQ(rig.bench.findings().count(FindingKind::busConflict), 2U);
  EXPECT_EQ(rig.bench.findings().all().size(), 1U);
  rig.bench.findings().clear();
  EXPECT_TRUE(rig.bench.findings().empty());
}

TEST(ChipFactory, knowsTheWholeCatalogueByAnyCase) {
  EXPECT_EQ(makeChip("27c256")->typeName(), "27C256");
  EXPECT_EQ(makeChip("2732b")->typeName(), "2732B");
  EXPECT_EQ(makeChip("27C25"), nullptr);
  EXPECT_EQ(makeChip(""), nullptr);
  for (const std::string_view name : chipTypeNames()) EXPECT_NE(makeChip(name), nullptr) << name;
}

}  // namespace
}  // namespace kestrel::sim
