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
      if (step == '?') seen_ = static_cast<std::uint8_t>(seen_ << 1 | read() >> 7);
    }
  }

  // S, P: START, STOP. A0: a byte to the chip. r+, r-: one from it, acknowledged or not. w: a write
  // cycle passes. ~: wires. Gives + or - for every byte sent, and what was read in decimal.
  std::string bus(const std::string& script) {
    std::istringstream tokens(script);
    std::string answer;
    for (std::string token; tokens >> token;) {
      if (token == "S" || token == "P") {
        wires(token == "S" ? "DCdc" : "dCDc");
      } else if (token[0] == '~') {
        wires(token);
      } else if (token == "w") {
        bench.wait(milliseconds(5));
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

// What a blank chip answers to a script, and what one of its cells holds then.
struct BusCase {
  const char* type;
  const char* script;
  const char* answer;
  std::uint32_t address;
  std::uint8_t value;
};

class SerialBus : public testing::TestWithParam<BusCase> {};

TEST_P(SerialBus, isAnsweredAsTheDataSheetSays) {
  WireRig rig(GetParam().type);
  EXPECT_EQ(rig.bus(GetParam().script), GetParam().answer);
  EXPECT_EQ(rig.finishedCell(GetParam().address), GetParam().value);
  EXPECT_TRUE(rig.isClean());
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Scripts, SerialBus, testing::Values(
    BusCase{"24C08", "S 20 S 9E S A0 S A3 r- S A6 S A8 S B0 S E0", "--++ 255+---", 0, 0xFF},  // selects
    BusCase{"24C16", "S 20 S 9E S A0 S A3 r- S AE S B0 S E0", "--++ 255+--", 0, 0xFF},
    BusCase{"24C32", "S A0 S A1 r- S A2 S A4 S A8 S B0", "++ 255----", 0, 0xFF},
    BusCase{"24C08", "S A6 FE 11 22 33 P", "+++++", 0x3F0, 0x33},  // writes wrap inside the page
    BusCase{"24C32", "S A0 FA 7E 11 22 33 P", "++++++", 0xA60, 0x33},  // bits 12-15 do not count
    // Reads wrap in the memory, and end when not acknowledged.
    BusCase{"24C08", "S A0 00 81 P w S A6 FF S A7 r+ r+ r- r- P", "++++++ 255 129 255 255", 0, 0x81},
    BusCase{"24C16", "S AE FF 42 P w S AE FF S AF r- S AF r- P", "++++++ 66+ 255", 0x7FF, 0x42},
    BusCase{"24C32", "S A0 00 00 18 P w S A0 0F FF S A1 r+ r- r- P", "++++++++ 255 24 255", 0, 0x18},
    BusCase{"24C256", "S A2 S A0 FF FE 11 22 33 P w S A0 7F FF S A1 r- P", "-++++++++++ 34", 0x7FC0, 0x33},  // bit 15 does not count
    BusCase{"24C256", "S A0 00 00 18 P w S A0 7F FF S A1 r+ r- P", "++++++++ 255 24", 0, 0x18},
    BusCase{"24C32", "S A0 00 00 11 S P", "++++", 0, 0xFF},     // no STOP after a whole byte
    BusCase{"24C32", "S A0 00 00 11 ~Cc P", "++++", 0, 0xFF}));
// clang-format on

TEST(SerialEeprom, isDeafForFiveMillisecondsFromStop) {
  WireRig rig("24C16");
  EXPECT_EQ(rig.bus("S A0 01 5A P S A0 P w S A0 00 A5"), "+++-+++");
  rig.wires("dR");  // the clock rises before SDA is let go: a STOP, 1 us ago
  rig.waitUs(4998);
  EXPECT_EQ(rig.cell(0), 0xFF);
  rig.waitUs(1);
  EXPECT_EQ(rig.cell(0), 0xA5);
}

TEST(SerialEeprom, pinsForbidWritingAndChooseTheSelectByte) {
  WireRig rig("24C08");
  rig.load({{1, 0x04}, {2, 0x02}});  // WP, E2
  EXPECT_EQ(rig.bus("S A0 S A8 00 33 P"), "-+++");
  EXPECT_EQ(rig.finishedCell(0), 0xFF);
}

TEST(SerialEeprom, losesItsWriteCycleWithItsSupply) {
  WireRig rig("24C08");
  for (const test::Load& off : {test::Load{0, 0x00}, {2, 0x01}}) {  // VCC goes low, GND high
    EXPECT_EQ(rig.bus("S A0 00 11 P"), "+++");
    rig.load({off});
    EXPECT_EQ(rig.bus("S A0"), "-");
    rig.load({{0, 0x40}, {2, 0x00}});
    EXPECT_EQ(rig.bus("S A0 01 22"), "+++");  // at once
    EXPECT_EQ(rig.finishedCell(0), 0xFF);
  }
}

}  // namespace
}  // namespace kestrel::sim
