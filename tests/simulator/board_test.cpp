#include "simulator/board.h"

#include <gtest/gtest.h>

#include "simulator/rig.h"
#include "simulator/simulated_port.h"

namespace kestrel::sim {
namespace {

using test::Rig;

TEST(Board, everyLatchHasItsOwnControlCode) {
  for (const Model model : {Model::kestrel4, Model::kestrel5, Model::kestrel6}) {
    Rig rig(model);
    for (std::uint8_t latch = 0; latch < 5; ++latch) rig.load(latch, 0x40 | latch);
    for (std::uint8_t latch = 0; latch < 5; ++latch)
      EXPECT_EQ(rig.board.latch(latch), 0x40 | latch);
  }
}

TEST(Board, unusedCodesAndMissingStrobesLoadNothing) {
  Rig four(Model::kestrel4);
  four.data(0xFF);
  for (const auto control :
       std::initializer_list<std::uint8_t>{0x5, 0x7, 0xD, 0xA, 0x2, 0x8, 0x0, 0xE})
    four.control(control);
  Rig five(Model::kestrel5);
  five.data(0xFF);
  for (const auto control :
       std::initializer_list<std::uint8_t>{0xA, 0x8, 0x2, 0x5, 0xD, 0x7, 0xF, 0x1})
    five.control(control);
  for (std::size_t latch = 0; latch < 5; ++latch) {
    EXPECT_EQ(four.board.latch(latch), 0x00);
    EXPECT_EQ(five.board.latch(latch), 0x00);
  }
}

TEST(Board, latchFollowsTheDataLinesUnderAStandingStrobeAndKeepsTheLast) {
  Rig rig;
  rig.load(3, 0x00);  // latch 4 drives the data lines
  rig.data(0x11);
  rig.control(0x0);  // strobe of latch 4: status shows the high half
  EXPECT_EQ(rig.status(), 0x8F);
  rig.data(0xA5);
  EXPECT_EQ(rig.status(), 0xD7);
  rig.control(0xF);
  rig.data(0x00);
  EXPECT_EQ(rig.board.latch(4), 0xA5);
  EXPECT_EQ(rig.status(), 0xAF);
}

TEST(Board, statusLinesShowTheChosenHalf) {
  Rig six(Model::kestrel6);
  six.load(4, 0xA5);
  six.control(0xF);
  EXPECT_EQ(six.status(), 0xAF);  // 0101 on bits 6..3
  six.control(0xB);
  EXPECT_EQ(six.status(), 0xD7);  // 1010 on bits 6..3

  Rig four(Model::kestrel4);
  four.load(4, 0xA5);
  four.control(0x0);
  EXPECT_EQ(four.status(), 0xEF);  // bit 0 on 6, bit 1 inverted on 7, bit 2 on 5, bit 3 on 4
  four.control(0x4);
  EXPECT_EQ(four.status(), 0x1F);
}

TEST(Board, onlyModel6PullsD4LowWithLatch3Bit5) {
  for (const Model model : {Model::kestrel5, Model::kestrel6}) {
    Rig rig(model);
    rig.load(4, 0xFF);
    rig.load(3, 0x20);
    EXPECT_EQ(rig.readBus(), model == Model::kestrel6 ? 0xEF : 0xFF);
    rig.load(3, 0x60);  // the same against the pull-up
    EXPECT_EQ(rig.readBus(), model == Model::kestrel6 ? 0xEF : 0xFF);
    EXPECT_TRUE(rig.bench.findings().empty());
  }
}

TEST(Board, undrivenDataLinesFloatHigh) {
  Rig rig;
  rig.load(4, 0x3C);
  EXPECT_EQ(rig.readBus(), 0x3C);
  rig.load(3, 0x40);
  EXPECT_EQ(rig.readBus(), 0xFF);
}

TEST(Board, latchBitsReachTheirSocketPins) {
  struct Wire {
    std::size_t latch;
    std::uint8_t contents;
    PinLevels pins;
  };
  // clang-format off
  const Wire wires[]{{0, 0x40, pin(24)}, {0, 0x0F, 0},       {1, 0x01, pin(27)}, {1, 0x02, pin(26)},
                     {1, 0x04, pin(23)}, {1, 0x08, pin(25)}, {1, 0x10, pin(4)},  {1, 0x20, pin(28)},
                     {1, 0x40, pin(29)}, {1, 0x80, pin(3)},  {2, 0x01, pin(12)}, {2, 0x80, pin(5)},
                     {2, 0x18, pin(8) | pin(9)},             {3, 0x01, pin(2)},  {3, 0x02, pin(30)},
                     {3, 0x04, pin(31)}, {3, 0x08, pin(1)},  {3, 0x30, 0},       {3, 0x80, pin(22)},
                     {4, 0x09, pin(13) | pin(17)},           {4, 0x80, pin(21)}};
  // clang-format on
  for (const Wire& wire : wires) {
    Rig rig;
    EXPECT_EQ(rig.board.socketLevels(), pin(32));
    rig.load(wire.latch, wire.contents);
    EXPECT_EQ(rig.board.socketLevels(), wire.pins | pin(32)) << "latch " << wire.latch;
  }
}

TEST(Board, vppSwitchesWinOverTheLatchBitOfTheirPin) {
  Rig rig;
  rig.load(0, 0x20);
  EXPECT_EQ(rig.board.vppPins(), pin(1));
  rig.load(0, 0x10);
  EXPECT_EQ(rig.board.vppPins(), pin(3));
  rig.load(0, 0x88);
  EXPECT_EQ(rig.board.vppPins(), pin(24));
  EXPECT_NE(rig.board.socketLevels() & pin(24), 0U);
  EXPECT_TRUE(rig.board.isLampOn());
  EXPECT_EQ(rig.board.vppMillivolts(), 12500);
}

TEST(Board, raisedVppTakesASecondToArrive) {
  Rig rig(Model::kestrel6);
  rig.load(0, 0x22);
  rig.bench.wait(milliseconds(999));
  EXPECT_EQ(rig.board.vppMillivolts(), 12500);
  rig.bench.wait(milliseconds(1));
  EXPECT_EQ(rig.board.vppMillivolts(), 21000);
  rig.load(0, 0x23);
  rig.bench.wait(milliseconds(1000));
  EXPECT_EQ(rig.board.vppMillivolts(), 25000);
  rig.load(0, 0x20);
  EXPECT_EQ(rig.board.vppMillivolts(), 12500);
}

TEST(Board, model4SwitchesAVoltageSetByHand) {
  Rig rig(Model::kestrel4);
  rig.load(0, 0x23);
  EXPECT_EQ(rig.board.vppPins(), 0U);  // bit 2 is the switch of this model
  rig.load(0, 0x24);
  EXPECT_EQ(rig.board.vppPins(), pin(1));
  EXPECT_EQ(rig.board.vppMillivolts(), 12500);
  rig.board.insert(makeChip("2764"));
  EXPECT_EQ(rig.board.vppMillivolts(), 21000);
  rig.board.setVppByHand(25000);
  EXPECT_EQ(rig.board.vppMillivolts(), 25000);
  rig.board.setVppByHand(std::nullopt);
  EXPECT_EQ(rig.board.vppMillivolts(), 21000);
}

TEST(Bench, portsWithoutABoardReadFFAndSwallowWrites) {
  Bench bench;
  bench.plug(Model::kestrel5, 0x278);
  bench.plug(Model::kestrel4, 0x3BC);
  bench.portOut(0x378, 0x12);
  bench.portOut(0x278, 0x34);
  bench.portOut(0x3BC, 0x56);
  for (const auto port :
       std::initializer_list<std::uint16_t>{0x377, 0x378, 0x379, 0x37A, 0x27B, 0x0000, 0xFFFF}) {
    EXPECT_EQ(bench.portIn(port), 0xFF);
  }
  EXPECT_EQ(bench.portIn(0x278), 0x34);
  EXPECT_EQ(bench.portIn(0x3BC), 0x56);
  bench.unplug(0x278);
  EXPECT_EQ(bench.portIn(0x278), 0xFF);
  EXPECT_FALSE(bench.isPlugged(0x278));
  EXPECT_TRUE(bench.isPlugged(0x3BC));
  EXPECT_THROW(bench.plug(Model::kestrel5, 0x379), std::invalid_argument);
}

TEST(SimulatedPort, accessesLoopsAndSleepsTakeVirtualTime) {
  Bench bench;
  SimulatedPort port(bench);
  bench.plug(Model::kestrel5, 0x378);
  port.PortOut(0x37A, 0x0F);
  EXPECT_EQ(port.PortIn(0x379), 0x87);  // latch 4 drives 00
  EXPECT_EQ(bench.now(), 2'000);
  port.Spin(40'002);
  EXPECT_EQ(bench.now(), 1'002'050);
  port.Sleep(3);
  EXPECT_EQ(bench.now(), 4'002'050);
  port.Spin(-5);
  port.Sleep(-5);
  EXPECT_EQ(bench.now(), 4'002'050);
  SimulatedPort slow(bench, 100);
  slow.Spin(10);
  EXPECT_EQ(bench.now(), 4'003'050);
}

}  // namespace
}  // namespace kestrel::sim
