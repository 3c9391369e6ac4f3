// The connector, the latches, the socket's wires, the data lines, virtual time.

#include "simulator/board.h"

#include <gtest/gtest.h>

#include "simulator/rig.h"
#include "simulator/simulated_port.h"

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

TEST(Board, latchFollowsTheDataLinesUnderAStandingStrobeAndKeepsTheLast) {
  Rig rig;  // latch 4 drives the data lines
  rig.data(0x11);
  rig.control(0xF);  // strobe of latch 4: status shows the high half
  EXPECT_EQ(rig.status(), 0x8F);
  rig.data(0xA5);
  EXPECT_EQ(rig.status(), 0xD7);
  rig.control(0x0);
  rig.data(0x00);
  EXPECT_EQ(rig.status(), 0xAF);
}

TEST(Board, model4ShowsTheHalvesOnOtherStatusLines) {
  Rig four(Model::kestrel4);
  four.load(4, 0xA5);
  EXPECT_EQ(four.status(), 0xEF);  // bit 0 on 6, bit 1 inverted on 7, bit 2 on 5, bit 3 on 4
  four.control(0x4);
  EXPECT_EQ(four.status(), 0x1F);
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

TEST(SimulatedPort, accessesLoopsAndSleepsTakeVirtualTime) {
  Bench bench;
  SimulatedPort port(bench);
  port.PortOut(0x37A, 0x0F);
  (void)port.PortIn(0x379);
  EXPECT_EQ(bench.now(), 2'000);
  port.Spin(40'002);
  EXPECT_EQ(bench.now(), 1'002'050);
  port.Sleep(3);
  EXPECT_EQ(bench.now(), 4'002'050);
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
