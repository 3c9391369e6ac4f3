#include "simulator/package.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "simulator/chip.h"

namespace kestrel::sim {
namespace {

TEST(Package, smallerChipsSitAtTheBottomOfTheSocket) {
  EXPECT_EQ(chipPins(Package::dip24, pin(5)), pin(1));
  EXPECT_EQ(chipPins(Package::dip24, pin(28)), pin(24));
  EXPECT_EQ(chipPins(Package::dip24, pin(4) | pin(29) | pin(32)), 0U);
  EXPECT_EQ(chipPins(Package::dip28, pin(3)), pin(1));
  EXPECT_EQ(chipPins(Package::dip28, pin(30)), pin(28));
  EXPECT_EQ(chipPins(Package::dip28, pin(2) | pin(31)), 0U);
  EXPECT_EQ(chipPins(Package::dip32, pin(1) | pin(32)), pin(1) | pin(32));
}

TEST(Package, serialChipSitsAroundTheDataAndEnableLines) {
  EXPECT_EQ(chipPins(Package::serial8, pin(9)), pin(1));
  EXPECT_EQ(chipPins(Package::serial8, pin(12)), pin(4));
  EXPECT_EQ(chipPins(Package::serial8, pin(21)), pin(5));
  EXPECT_EQ(chipPins(Package::serial8, pin(24)), pin(8));
  EXPECT_EQ(chipPins(Package::serial8, pin(8) | pin(13) | pin(20) | pin(25)), 0U);
  EXPECT_EQ(socketPins(Package::serial8, pin(5)), pin(21));
  EXPECT_EQ(socketPins(Package::serial8, pin(1)), pin(9));
}

TEST(PinBus, gathersAndScattersScatteredPins) {
  const std::vector<std::uint8_t> pins{11, 12, 13, 15, 16, 17, 18, 19, 31};
  const PinBus bus(pins);
  EXPECT_EQ(bus.value(pin(11) | pin(15) | pin(31)), 0x109U);
  EXPECT_EQ(bus.value(pin(14) | pin(32) | pin(1)), 0U);
  EXPECT_EQ(bus.levels(0x81), pin(11) | pin(19));
}

class TwoBytes final : public Chip {
 public:
  TwoBytes() : Chip("TwoBytes", Package::dip24, 2) {}
  PinOutput evaluate(const PinInput& pins, Findings& findings) override {
    findings.report(FindingKind::busConflict, pins.high != 0 ? "high" : "low", pins.now);
    setCell(0, 0x12);
    setCell(1, 0x34);
    return {};
  }
};

TEST(Chip, takesContentsOfItsOwnSizeOnlyAndKeepsWeakCells) {
  TwoBytes chip;
  EXPECT_THROW(chip.load(std::vector<std::uint8_t>(3)), std::invalid_argument);
  EXPECT_THROW(chip.fitWeakCell(2), std::out_of_range);
  chip.load(std::vector<std::uint8_t>{0xAB, 0xCD});
  chip.fitWeakCell(1);
  Findings findings;
  chip.evaluate({}, findings);
  EXPECT_EQ(chip.contents()[0], 0x12);
  EXPECT_EQ(chip.contents()[1], 0xCD);
}

TEST(Findings, identicalOnesAreCountedAndKeepTheirFirstTime) {
  TwoBytes chip;
  Findings findings;
  chip.evaluate({.now = microseconds(3)}, findings);
  chip.evaluate({.now = microseconds(7)}, findings);
  chip.evaluate({.high = pin(1), .now = microseconds(9)}, findings);
  ASSERT_EQ(findings.all().size(), 2U);
  EXPECT_EQ(findings.all()[0].count, 2U);
  EXPECT_EQ(findings.all()[0].firstAt, 3'000);
  EXPECT_EQ(findings.count(FindingKind::busConflict), 3U);
  EXPECT_EQ(findings.count(FindingKind::wrongVpp), 0U);
}

}  // namespace
}  // namespace kestrel::sim
