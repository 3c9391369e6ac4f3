// Latches, address, read-back: every access that the primitives make, in order.

#include <gtest/gtest.h>

#include "hardware/bus_primitives.h"
#include "hardware/decode_tables.h"
#include "platform/runtime_error.h"
#include "support/port_script.h"

namespace kestrel::test {
namespace {

struct Bus {
  explicit Bus(std::int16_t model, std::int16_t base = 0x378) {
    BuildDecodeTables(state);
    registers.InitControlTables();
    state.PortBase = base;
    state.KestrelModel = model;
    registers.ApplyPortAndModel();
  }
  ProgrammerState state;
  Controls controls;
  PortScript port;
  Registers registers{state, port, port};
  BusPrimitives bus{state, controls, registers, port, port};
};

/// Every latch with the byte that ends in its number.
std::string allLoads(std::int16_t model) {
  Bus b(model);
  b.state.BusDelayCount = 12;
  b.state.RegShadow0 = 0x50;
  b.state.RegShadow1 = 0x51;
  b.state.RegShadow2 = 0x52;
  b.state.RegShadow3 = 0x53;
  b.state.RegShadow4 = 0x54;
  for (const auto load : {&Registers::SetReg0, &Registers::SetReg1, &Registers::SetReg2,
                          &Registers::SetReg3, &Registers::SetReg4}) {
    (b.registers.*load)();
  }
  return b.port.taken();
}

TEST(LatchLoad, model4HasTheStrobeActiveHighAndTheOthersAllLinesInverted) {
  EXPECT_EQ(allLoads(4),
            "378=50 37A=0A spin12 37A=0B 37A=0A 378=51 37A=02 spin12 37A=03 37A=02 "
            "378=52 37A=08 spin12 37A=09 37A=08 378=53 37A=00 spin12 37A=01 37A=00 "
            "378=54 37A=0E spin12 37A=0F 37A=0E");
  EXPECT_EQ(allLoads(5),
            "378=50 37A=05 spin12 37A=04 37A=05 378=51 37A=0D spin12 37A=0C 37A=0D "
            "378=52 37A=07 spin12 37A=06 37A=07 378=53 37A=0F spin12 37A=0E 37A=0F "
            "378=54 37A=01 spin12 37A=00 37A=01");
  EXPECT_EQ(allLoads(6), allLoads(5));
}

TEST(LatchLoad, anUnknownModelKeepsTheCodesAndMovesThePort) {
  Bus b(4);
  b.state.PortBase = 0x3BC;
  b.state.KestrelModel = 7;
  b.registers.ApplyPortAndModel();
  b.registers.SetReg2();
  EXPECT_EQ(b.port.taken(), "3BC=00 3BE=08 3BE=09 3BE=08");
}

TEST(LatchLoad, aShadowThatIsNoByteAndAPortPastTheEndOverflow) {
  Bus b(5);
  b.state.RegShadow1 = 0x100;
  EXPECT_THROW(b.registers.SetReg1(), RuntimeError);
  EXPECT_EQ(b.port.taken(), "");
  b.state.PortBase = 0x7FFE;
  EXPECT_THROW(b.registers.ApplyPortAndModel(), RuntimeError);
}

TEST(Signals, changeTheirBitsAndLoadTheirLatches) {
  struct Case {
    void (BusPrimitives::*signal)();
    std::int16_t latch0, latch3;
    const char* loads;
  };
  using B = BusPrimitives;
  const std::vector<Case> cases{
      {&B::CEON, 0x18, 0xC7, "3 47"},        {&B::CEOFF, 0x18, 0x47, "3 C7"},
      {&B::OEON, 0xD8, 0xC7, "0 18"},        {&B::OEOFF, 0x98, 0xC7, "0 D8"},
      {&B::VPP24_ON, 0x18, 0xC7, "0 D8"},    {&B::VPP24_OFF, 0xD8, 0xC7, "0 18"},
      {&B::CEOEON, 0xD8, 0xC7, "3 47,0 18"}, {&B::CEOEOFF, 0x18, 0x47, "3 C7,0 58"}};
  Bus b(5);
  for (const Case& each : cases) {
    b.state.RegShadow0 = each.latch0;
    b.state.RegShadow3 = each.latch3;
    (b.bus.*each.signal)();
    EXPECT_EQ(b.port.taken(), loads5(each.loads));
  }
  b.registers.REG4ON();
  b.registers.REG4OFF();
  EXPECT_EQ(b.port.taken(), loads5("3 87,3 C7"));
}

TEST(Address, isSplitAndStepped) {
  Bus b(5);
  b.state.LinearAddress = 0x12345;
  b.bus.Endereco2Adr();
  const auto parts = [&b] {
    return std::array{b.state.AddrHigh, b.state.AddrMid, b.state.AddrLow};
  };
  EXPECT_EQ(parts(), (std::array{0x01, 0x23, 0x45}));
  b.state.AddrMid = b.state.AddrLow = 255;
  b.bus.IncADR();
  EXPECT_EQ(parts(), (std::array{2, 0, 0}));
  EXPECT_EQ(b.state.LinearAddress, 0x12346);
}

TEST(Address, SETADRLoadsTheThreeLatchesThroughTheMaps) {
  Bus b(5);
  b.state.Reg1Fixed = 0x40;
  b.state.Reg3Fixed = 0x02;
  b.state.RegShadow3 = 0xDF;
  b.state.LinearAddress = 0x45A7E;
  b.bus.Endereco2Adr();
  b.state.AddrMapMid[0x5A] = 0x9A;
  b.state.AddrMapHigh[4] = 8;
  b.bus.SETADR();
  EXPECT_EQ(b.port.taken(), loads5("1 DA,2 7E,3 DA"));
  b.state.AddrMid = 256;
  EXPECT_THROW(b.bus.SETADR_FLASH(), RuntimeError);
}

TEST(Address, SETADR_XICORLoadsOnlyWhatChanges) {
  Bus b(5);
  b.state.Reg1Fixed = 0x40;
  b.state.Reg3Fixed = 0x02;
  b.state.EraseMode = 1;
  b.bus.Reset();
  EXPECT_EQ(b.port.taken(), loads5("0 40,1 40,2 00,3 C6"));
  EXPECT_EQ(b.state.EraseMode, 0);
  const auto at = [&b](std::int32_t address) {
    b.state.LinearAddress = address;
    b.bus.Endereco2Adr();
    b.bus.SETADR_XICOR();
    return b.port.taken();
  };
  // The first time latch 3 loses the bit that Reset alone sets.
  EXPECT_EQ(at(0x0000), loads5("3 C2"));
  EXPECT_EQ(at(0x0001), loads5("2 01"));
  EXPECT_EQ(at(0x0001), "");
  EXPECT_EQ(at(0x0101), loads5("1 41"));
  EXPECT_EQ(at(0x4001), loads5("1 C0"));
  b.state.Reg1Fixed = 0;
  EXPECT_EQ(at(0x4001), loads5("1 80"));
}

int readBack(Bus& b, std::uint8_t first, std::uint8_t second) {
  b.port.answers = {first, second};
  b.bus.GetNibbles();
  return b.state.ReadByte;
}

TEST(GetNibbles, model4) {
  Bus b(4);
  EXPECT_EQ(readBack(b, 0x78, 0x78), 0xFF);
  EXPECT_EQ(b.port.taken(), "37A=00 379? 37A=04 379?");
  EXPECT_EQ(readBack(b, 0xFF, 0xFF), 0xDD);
  // Data bit 1 alone: BUSY (status bit 7) is low, in the other half high.
  EXPECT_EQ(readBack(b, 0x0F, 0x80), 0x02);
  EXPECT_EQ(readBack(b, 0xC0, 0x80), 0x01);
  EXPECT_EQ(readBack(b, 0x80, 0x10), 0xA0);
}

TEST(GetNibbles, models5And6) {
  for (const std::int16_t model : {std::int16_t{5}, std::int16_t{6}}) {
    Bus b(model);
    EXPECT_EQ(readBack(b, 0x78, 0x70), 0xEF);
    EXPECT_EQ(b.port.taken(), "37A=05 379? 37A=01 379?");
    EXPECT_EQ(readBack(b, 0x87, 0x87), 0x00);
    EXPECT_EQ(readBack(b, 0x08, 0x40), 0x81);
    EXPECT_EQ(b.state.StatusLow, 0x08);
    EXPECT_EQ(b.state.StatusHigh, 0x40);
  }
}

TEST(GetNibbles24CXX, readsTheUpperHalfAlone) {
  Bus four(4);
  four.port.answers = {0x9F};
  four.bus.GetNibbles24CXX();
  EXPECT_EQ(four.port.taken(), "37A=04 379?");
  EXPECT_EQ(four.state.ReadByte, 0x82);
  Bus five(5);
  five.port.answers = {0x40};
  five.bus.GetNibbles24CXX();
  EXPECT_EQ(five.port.taken(), "37A=01 379?");
  EXPECT_EQ(five.state.ReadByte, 0x80);
}

}  // namespace
}  // namespace kestrel::test
