#include <gtest/gtest.h>

#include <bitset>
#include <sstream>
#include <string>

#include "simulator/rig.h"

namespace kestrel::sim {
namespace {

// A powered serial chip whose wires are moved one latch load at a time: SCL is latch 3 bit 7, SDA
// latch 4 bit 7 unless latch 3 bit 6 lets it go.
class WireRig : public test::Rig {
 public:
  explicit WireRig(const char* type) {
    board.insert(makeChip(type));
    wires("c");
    load(0, 0x40);
  }

  // D, d: SDA high, low. C, c: SCL high, low. R, r: the same with SDA let go. ?: notes SDA.
  void wires(std::string_view steps) {
    for (const char step : steps) {
      if (step == 'D' || step == 'd') load(4, step == 'D' ? 0xFF : 0x7F);
      if (step == 'C' || step == 'c') load(3, step == 'C' ? 0x80 : 0x00);
      if (step == 'R' || step == 'r') load(3, step == 'R' ? 0xC0 : 0x40);
      if (step == '?') seen_ = static_cast<std::uint8_t>(seen_ << 1 | readBus() >> 7);
    }
  }

  // S, P: START, STOP. A0: a byte to the chip. r+, r-: one from it, acknowledged or not. Gives +
  // or - for every byte sent, and what was read in decimal.
  std::string bus(const std::string& script) {
    std::istringstream tokens(script);
    std::string answer;
    for (std::string token; tokens >> token;) {
      if (token == "S" || token == "P") {
        wires(token == "S" ? "DCdc" : "dCDc");
      } else if (token[0] == 'r') {
        wires("R?rR?rR?rR?rR?rR?rR?rR?r");
        wires(token == "r+" ? "dcCcr" : "DcCcr");
        answer += ' ' + std::to_string(seen_);
      } else {
        const std::bitset<8> bits(std::stoul(token, nullptr, 16));
        for (std::size_t bit = 8; bit-- > 0;) wires(bits[bit] ? "DCc" : "dCc");
        wires("rR?rc");
        answer += (seen_ & 1) == 0 ? '+' : '-';
      }
    }
    return answer;
  }
  std::uint8_t finishedCell(std::uint32_t address) {
    bench.wait(milliseconds(5));
    return cell(address);
  }

 private:
  std::uint8_t seen_ = 0;
};

TEST(SerialEeprom, answersOnlyItsOwnSelectBytes) {
  EXPECT_EQ(WireRig("24C08").bus("S 20 S 9E S A0 S A3 r- S A6 S A8 S B0 S E0"), "--++ 255+---");
  EXPECT_EQ(WireRig("24C16").bus("S 20 S 9E S A0 S A3 r- S AE S B0 S E0"), "--++ 255+--");
  EXPECT_EQ(WireRig("24C32").bus("S 20 S 9E S A0 S A1 r- S A2 S A4 S A8 S B0"), "--++ 255----");
  WireRig rig("24C08");
  rig.load(2, 0x02);  // E2 high
  EXPECT_EQ(rig.bus("S A0 S A8"), "-+");
  EXPECT_TRUE(rig.bench.findings().empty());
}

TEST(SerialEeprom, writesWrapInsideThePage) {
  WireRig c08("24C08");
  EXPECT_EQ(c08.bus("S A6 FE 11 22 33 P"), "+++++");
  EXPECT_EQ(c08.finishedCell(0x3FE), 0x11);
  EXPECT_EQ(c08.cell(0x3F0), 0x33);
  WireRig c32("24C32");
  EXPECT_EQ(c32.bus("S A0 FA 7E 11 22 33 P"), "++++++");  // address bits 12-15 do not count
  EXPECT_EQ(c32.finishedCell(0xA7F), 0x22);
  EXPECT_EQ(c32.cell(0xA60), 0x33);
}

TEST(SerialEeprom, isDeafForFiveMillisecondsFromStop) {
  WireRig rig("24C16");
  EXPECT_EQ(rig.bus("S AE 2F 11 5A P S A0 P"), "++++-");
  EXPECT_EQ(rig.finishedCell(0x720), 0x5A);
  EXPECT_EQ(rig.bus("S A0 00 A5"), "+++");
  rig.wires("dR");  // the clock rises before SDA is let go: a STOP, 1 us ago
  rig.bench.wait(microseconds(4998));
  EXPECT_EQ(rig.cell(0), 0xFF);
  rig.bench.wait(microseconds(1));
  EXPECT_EQ(rig.cell(0), 0xA5);
}

TEST(SerialEeprom, readsRunOnWrapAtTheEndAndStopWithoutAcknowledge) {
  WireRig rig("24C08");
  rig.insertMarked("24C08", 0x3FF);
  EXPECT_EQ(rig.bus("S A0 00 81 P"), "+++");
  EXPECT_EQ(rig.finishedCell(0), 0x81);
  EXPECT_EQ(rig.bus("S A6 FE S A7 r+ r+ r- r- P"), "+++ 255 90 129 255");
}

TEST(SerialEeprom, writesNothingWithoutAStopAfterAWholeByte) {
  WireRig rig("24C32");
  EXPECT_EQ(rig.bus("S A0 00 00 11 S P S A0 00 00 22"), "++++++++");
  rig.wires("Cc");
  EXPECT_EQ(rig.bus("P S A0 00 00 P"), "+++");
  rig.load(1, 0x04);  // WP
  EXPECT_EQ(rig.bus("S A0 00 00 33 P"), "++++");
  EXPECT_EQ(rig.finishedCell(0), 0xFF);
}

TEST(SerialEeprom, losesItsWriteCycleWithItsSupply) {
  WireRig rig("24C08");
  for (const std::size_t latch : {0U, 2U}) {  // VCC goes low, GND high
    EXPECT_EQ(rig.bus("S A0 00 11 P"), "+++");
    rig.load(latch, rig.board.latch(latch) ^ (latch == 0 ? 0x40 : 0x01));
    EXPECT_EQ(rig.bus("S A0"), "-");
    rig.load(latch, rig.board.latch(latch) ^ (latch == 0 ? 0x40 : 0x01));
    EXPECT_EQ(rig.bus("S A0 01 22"), "+++");  // at once
    EXPECT_EQ(rig.finishedCell(0), 0xFF);
  }
}

TEST(SerialEeprom, stopsAcknowledgingAfterSoManyBytes) {
  WireRig rig("24C08");
  rig.board.setChip({.acknowledgeLimit = 2});
  EXPECT_EQ(rig.bus("S A0 00 11 P S A0"), "++--");
  rig.board.setChip({});
  EXPECT_EQ(rig.bus("S A0 00 22 P"), "+++");
}

}  // namespace
}  // namespace kestrel::sim
