#include <gtest/gtest.h>

#include "simulator/rig.h"

namespace kestrel::sim {
namespace {

using test::Rig;

// A powered serial chip whose wires are moved one latch load at a time: SCL is latch 3 bit 7, SDA
// latch 4 bit 7 unless latch 3 bit 6 lets it go.
class WireRig : public Rig {
 public:
  explicit WireRig(const char* type) {
    board.insert(makeChip(type));
    load(3, 0x00);
    load(0, 0x40);
  }

  void sda(bool high) { load(4, high ? 0xFF : 0x7F); }
  void clock() {
    load(3, 0x80);
    load(3, 0x00);
  }
  void start() {
    sda(true);
    load(3, 0x80);
    sda(false);
    load(3, 0x00);
  }
  void stop() {
    sda(false);
    load(3, 0x80);
    sda(true);
    load(3, 0x00);
  }

  // True if the byte is acknowledged.
  bool send(unsigned byte) {
    for (unsigned mask = 0x80; mask != 0; mask >>= 1) {
      sda((byte & mask) != 0);
      clock();
    }
    load(3, 0x40);
    load(3, 0xC0);
    const bool acknowledged = readBus() == 0x7F;
    load(3, 0x40);
    load(3, 0x00);
    return acknowledged;
  }
  bool send(std::initializer_list<unsigned> bytes) {
    for (const unsigned byte : bytes) {
      if (!send(byte)) return false;
    }
    return true;
  }

  unsigned receive(bool acknowledge) {
    unsigned byte = 0;
    for (int bit = 0; bit < 8; ++bit) {
      load(3, 0xC0);
      byte = byte << 1 | (readBus() == 0xFF ? 1U : 0U);
      load(3, 0x40);
    }
    sda(!acknowledge);
    load(3, 0x00);
    clock();
    load(3, 0x40);
    return byte;
  }

  bool write(std::initializer_list<unsigned> bytes) {
    start();
    const bool acknowledged = send(bytes);
    stop();
    return acknowledged;
  }
  // Every byte is the low half of its address, then its 256-byte block.
  void loadPattern() {
    std::vector<std::uint8_t> contents(board.chip()->contents().size());
    for (std::size_t i = 0; i < contents.size(); ++i)
      contents[i] = static_cast<std::uint8_t>(i << 4 | (i >> 8 & 0x0F));
    board.loadChip(contents);
  }
};

TEST(SerialEeprom, answersOnlyItsOwnSelectBytes) {
  const struct {
    const char* type;
    unsigned last;
  } parts[]{{"24C08", 0xA7}, {"24C16", 0xAF}, {"24C32", 0xA1}};
  for (const auto& part : parts) {
    WireRig rig(part.type);
    for (unsigned select = 0; select < 0x100; ++select) {
      rig.start();
      EXPECT_EQ(rig.send(select), 0xA0 <= select && select <= part.last) << part.type << select;
      rig.receive(false);
      rig.stop();
    }
    EXPECT_TRUE(rig.bench.findings().empty());
  }
}

TEST(SerialEeprom, writesWrapInsideThePage) {
  WireRig c08("24C08");
  EXPECT_TRUE(c08.write({0xA6, 0xFE, 0x11, 0x22, 0x33}));
  WireRig c16("24C16");
  EXPECT_TRUE(c16.write({0xAE, 0x2F, 0x11, 0x22, 0x33}));
  WireRig c32("24C32");
  EXPECT_TRUE(c32.write({0xA0, 0xFA, 0x7E, 0x11, 0x22, 0x33}));  // address bits 12-15 do not count
  for (WireRig* rig : {&c08, &c16, &c32}) rig->bench.wait(milliseconds(5));
  EXPECT_EQ(c08.cell(0x3FE), 0x11);
  EXPECT_EQ(c08.cell(0x3F0), 0x33);
  EXPECT_EQ(c16.cell(0x72F), 0x11);
  EXPECT_EQ(c16.cell(0x720), 0x22);
  EXPECT_EQ(c32.cell(0xA7F), 0x22);
  EXPECT_EQ(c32.cell(0xA60), 0x33);
}

TEST(SerialEeprom, isDeafForFiveMillisecondsFromStop) {
  WireRig rig("24C16");
  rig.write({0xA0, 0x00, 0x5A});
  rig.start();
  EXPECT_FALSE(rig.send(0xA0));
  rig.stop();
  EXPECT_EQ(rig.cell(0), 0xFF);
  rig.board.setChip({.writeCycle = milliseconds(8)});  // from the next one on
  rig.bench.wait(milliseconds(5));
  EXPECT_EQ(rig.cell(0), 0x5A);
  EXPECT_TRUE(rig.write({0xA0, 0x00, 0xA5}));
  rig.bench.wait(microseconds(7995));  // SDA rose 4 us before
  EXPECT_EQ(rig.cell(0), 0x5A);
  rig.bench.wait(microseconds(1));
  EXPECT_EQ(rig.cell(0), 0xA5);
}

TEST(SerialEeprom, readsRunOnWrapAtTheEndAndStopWithoutAcknowledge) {
  WireRig rig("24C08");
  rig.loadPattern();
  rig.start();
  EXPECT_TRUE(rig.send({0xA6, 0xFE}));
  rig.start();
  EXPECT_TRUE(rig.send(0xA7));
  EXPECT_EQ(rig.receive(true), 0xE3U);
  EXPECT_EQ(rig.receive(true), 0xF3U);
  EXPECT_EQ(rig.receive(true), 0x00U);
  EXPECT_EQ(rig.receive(false), 0x10U);
  EXPECT_EQ(rig.receive(false), 0xFFU);  // it sends no more
  rig.stop();
  rig.start();
  EXPECT_TRUE(rig.send(0xA1));
  EXPECT_EQ(rig.receive(false), 0x20U);  // the counter goes on
  EXPECT_TRUE(rig.bench.findings().empty());
}

TEST(SerialEeprom, writesNothingWithoutAStopAfterAWholeByte) {
  WireRig rig("24C32");
  rig.start();
  EXPECT_TRUE(rig.send({0xA0, 0x00, 0x00, 0x11}));
  rig.start();
  rig.stop();  // another START came first
  rig.start();
  EXPECT_TRUE(rig.send({0xA0, 0x00, 0x00, 0x22}));
  rig.clock();
  rig.stop();  // inside a byte
  EXPECT_TRUE(rig.write({0xA0, 0x00, 0x00}));
  rig.load(1, 0x04);  // WP
  EXPECT_TRUE(rig.write({0xA0, 0x00, 0x00, 0x33}));
  rig.bench.wait(milliseconds(5));
  EXPECT_EQ(rig.cell(0), 0xFF);
}

TEST(SerialEeprom, losesItsWriteCycleWithItsSupply) {
  const struct {
    std::size_t latch;
    std::uint8_t off;
    std::uint8_t on;
  } supplies[]{{0, 0x00, 0x40}, {2, 0x01, 0x00}};  // VCC low, GND high
  for (const auto& supply : supplies) {
    WireRig rig("24C08");
    rig.write({0xA0, 0x00, 0x11});
    rig.load(supply.latch, supply.off);
    rig.start();
    EXPECT_FALSE(rig.send(0xA0));
    rig.load(supply.latch, supply.on);
    EXPECT_TRUE(rig.write({0xA0, 0x01, 0x22}));  // at once
    rig.bench.wait(milliseconds(5));
    EXPECT_EQ(rig.cell(0), 0xFF);
    EXPECT_EQ(rig.cell(1), 0x22);
  }
}

TEST(SerialEeprom, aClockThatRisesWithTheReleasedLineMakesAStop) {
  WireRig rig("24C16");
  rig.start();
  EXPECT_TRUE(rig.send({0xA0, 0x00, 0x11}));
  rig.sda(false);
  rig.load(3, 0xC0);
  rig.bench.wait(milliseconds(5));
  EXPECT_EQ(rig.cell(0), 0x11);
}

TEST(SerialEeprom, faultAndPinsDecideWhatIsAcknowledged) {
  WireRig rig("24C08");
  rig.load(2, 0x02);  // E2 high: the part answers A8h-AFh
  rig.start();
  EXPECT_FALSE(rig.send(0xA0));
  rig.stop();
  rig.board.setChip({.acknowledgeLimit = 2});
  rig.start();
  EXPECT_TRUE(rig.send(0xA8));
  EXPECT_TRUE(rig.send(0x00));
  EXPECT_FALSE(rig.send(0x11));
  rig.stop();
  rig.board.setChip({});
  EXPECT_TRUE(rig.write({0xA8, 0x00, 0x22}));
  rig.load(0, 0xC0);  // VPP on the supply pin
  EXPECT_EQ(rig.bench.findings().count(FindingKind::overVoltage), 1U);
  rig.load(0, 0x40);
  EXPECT_FALSE(rig.write({0xA8, 0x00, 0x22}));
}

}  // namespace
}  // namespace kestrel::sim
