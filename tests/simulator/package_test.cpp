#include "simulator/package.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "simulator/rig.h"

namespace kestrel::sim {
namespace {

TEST(Package, smallerChipsSitAtTheBottomOfTheSocket) {
  EXPECT_EQ(chipPins(Package::dip24, pin(5) | pin(28)), pin(1) | pin(24));
  EXPECT_EQ(chipPins(Package::dip24, pin(4) | pin(29) | pin(32)), 0U);
  EXPECT_EQ(chipPins(Package::dip28, pin(3) | pin(30)), pin(1) | pin(28));
  EXPECT_EQ(chipPins(Package::dip28, pin(2) | pin(31)), 0U);
  EXPECT_EQ(chipPins(Package::dip32, pin(1) | pin(32)), pin(1) | pin(32));
}

TEST(Package, serialChipSitsAroundTheDataAndEnableLines) {
  EXPECT_EQ(chipPins(Package::serial8, pin(9) | pin(12)), pin(1) | pin(4));
  EXPECT_EQ(chipPins(Package::serial8, pin(21) | pin(24)), pin(5) | pin(8));
  EXPECT_EQ(chipPins(Package::serial8, pin(8) | pin(13) | pin(20) | pin(25)), 0U);
  EXPECT_EQ(socketPins(Package::serial8, pin(1) | pin(5)), pin(9) | pin(21));
}

// A serial chip that notes the levels of SDA (pin 5) and SCL (pin 6) and does what it is told.
class Probe final : public Chip {
 public:
  Probe() : Chip("probe", Package::serial8, 1) {}
  PinOutput evaluate(const PinInput& pins, Findings&) override {
    const std::pair seen{(pins.high & pin(5)) != 0, (pins.high & pin(6)) != 0};
    if (lines.empty() || lines.back() != seen) lines.push_back(seen);
    return pins.now < output.changesAt ? output : PinOutput{};
  }
  std::vector<std::pair<bool, bool>> lines;
  PinOutput output;
};

class ProbeRig : public test::Rig {
 public:
  ProbeRig() { board.insert(std::unique_ptr<Chip>(&probe_)); }
  ~ProbeRig() { board.takeOut().release(); }
  Probe& probe() { return probe_; }

 private:
  Probe probe_;
};

TEST(Socket, clockMovesBeforeTheDataLineOfTheSameLatchLoad) {
  ProbeRig rig;  // latch 4 holds SDA low, SCL is low
  rig.load(3, 0xC0);
  rig.load(3, 0x00);
  const std::vector<std::pair<bool, bool>> expected{
      {false, false}, {false, true}, {true, true}, {true, false}, {false, false}};
  EXPECT_EQ(rig.probe().lines, expected);
}

TEST(Socket, openDrainPullsTheLineLowUntilItsTimeWithoutAQuarrel) {
  ProbeRig rig;
  rig.load(3, 0x00);
  rig.probe().output = {.driven = pin(5), .openDrain = pin(5), .changesAt = milliseconds(5)};
  rig.load(4, 0xFF);
  EXPECT_EQ(rig.readBus(), 0x7F);
  EXPECT_TRUE(rig.bench.findings().empty());
  rig.probe().output.openDrain = 0;
  rig.load(4, 0xFE);
  EXPECT_EQ(rig.bench.findings().count(FindingKind::busConflict), 1U);
  rig.bench.wait(milliseconds(5));
  EXPECT_EQ(rig.readBus(), 0xFE);  // no latch moved: the time alone
  rig.board.stickDataLine(7, true);
  rig.probe().output.changesAt = kNever;
  rig.load(4, 0xFF);
  EXPECT_EQ(rig.readBus(), 0xFF);
}

}  // namespace
}  // namespace kestrel::sim
