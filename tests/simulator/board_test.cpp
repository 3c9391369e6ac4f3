// The connector, the latches, the data lines, the voltage of a model 4.

#include "simulator/board.h"

#include <gtest/gtest.h>

#include "simulator/rig.h"

namespace kestrel::sim {
namespace {

using test::Rig;

TEST(Board, everyLatchHasItsOwnControlCodeAndOtherCodesLoadNothing) {
  for (const Model model : {Model::kestrel4, Model::kestrel5, Model::kestrel6}) {
    Rig rig(model);
    for (std::uint8_t latch = 0; latch < 5; ++latch) rig.load(latch, 0x40 | latch);
    rig.data(0xFF);
    for (const auto lines : std::initializer_list<std::uint8_t>{5, 7, 0xD, 0xA, 2, 8, 0, 0xE})
      rig.control(lines);
    for (std::uint8_t latch = 0; latch < 5; ++latch)
      EXPECT_EQ(rig.board.latch(latch), 0x40 | latch);
  }
}

TEST(Board, undrivenDataLinesFloatHighAndOnlyModel6PullsD4Low) {
  for (const Model model : {Model::kestrel5, Model::kestrel6}) {
    Rig rig(model);
    EXPECT_EQ(rig.read({{4, 0x3C}}), 0x3C);
    EXPECT_EQ(rig.read({{3, 0x40}}), 0xFF);
    EXPECT_EQ(rig.read({{3, 0x60}}), model == Model::kestrel6 ? 0xEF : 0xFF);
    EXPECT_EQ(rig.read({{4, 0xFF}, {3, 0x20}}), model == Model::kestrel6 ? 0xEF : 0xFF);
    EXPECT_TRUE(rig.isClean());
  }
}

TEST(Board, model4SwitchesAVoltageSetByHand) {
  Rig rig(Model::kestrel4);
  rig.load(0, 0x23);
  EXPECT_EQ(rig.board.vppPins(), 0U);  // bit 2 is the switch of this model
  rig.load(0, 0x2C);
  EXPECT_EQ(rig.board.vppPins(), pin(1));
  EXPECT_TRUE(rig.board.isLampOn());
  rig.board.insert(makeChip("2764"));
  EXPECT_EQ(rig.board.vppMillivolts(), 21000);
  rig.board.setVppByHand(25000);
  EXPECT_EQ(rig.board.vppMillivolts(), 25000);
}

TEST(Findings, twoDriversThatDisagreeAreWiredAnd) {
  Rig rig;
  rig.load({{0, 0x40}, {3, 0x42}});
  rig.insertMarked("27C64", 0x0000);
  rig.load({{4, 0x5A}, {0, 0x00}, {3, 0x02}});  // both drive 5A
  EXPECT_TRUE(rig.isClean());
  EXPECT_EQ(rig.read({{4, 0x0F}}), 0x0A);
  rig.load(2, 0x01);  // FF against 0F: still the same quarrel
  EXPECT_EQ(rig.count(FindingKind::busConflict), 1U);
}

}  // namespace
}  // namespace kestrel::sim
