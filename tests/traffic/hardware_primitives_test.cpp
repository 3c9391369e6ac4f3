// Latches, address, read-back: every access that the primitives make, in order.

#include <gtest/gtest.h>

#include "hardware/bus_primitives.h"
#include "hardware/decode_tables.h"
#include "platform/runtime_error.h"
#include "support/port_script.h"

namespace kestrel::test {
namespace {

struct Bus {
  explicit Bus(std::int16_t model) {
    BuildDecodeTables(state);
    registers.InitControlTables();
    state.PortBase = 0x378;
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
  std::int16_t shadow = 0x50;
  auto& s = b.state;
  for (auto* const each :
       {&s.RegShadow0, &s.RegShadow1, &s.RegShadow2, &s.RegShadow3, &s.RegShadow4})
    *each = shadow++;
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
  b.state.AddrMid = b.state.AddrLow = 255;
  b.bus.IncADR();
  EXPECT_EQ(b.state.LinearAddress, 0x45A7F);
  b.bus.SETADR();
  EXPECT_EQ(b.port.taken(), loads5("1 40,2 00,3 D7"));
  b.state.AddrMid = 256;
  EXPECT_THROW(b.bus.SETADR_FLASH(), RuntimeError);
}

TEST(Address, SETADR_XICORLoadsOnlyWhatChanges) {
  Bus b(5);
  b.state.Reg1Fixed = 0x40;
  b.state.Reg3Fixed = 0x02;
  b.bus.Reset();
  EXPECT_EQ(b.port.taken(), loads5("0 40,1 40,2 00,3 C6"));
  // The first time latch 3 loses the bit that Reset alone sets.
  const std::vector<std::pair<std::int32_t, const char*>> steps{
      {0x0000, "3 C2"}, {0x0001, "2 01"}, {0x0001, ""}, {0x0101, "1 41"}, {0x4001, "1 C0"}};
  for (const auto& [address, loads] : steps) {
    b.state.LinearAddress = address;
    b.bus.Endereco2Adr();
    b.bus.SETADR_XICOR();
    EXPECT_EQ(b.port.taken(), loads5(loads));
  }
}

struct ReadBack {
  std::uint8_t first, second;
  int value;
};

void expectReadBack(std::int16_t model, const std::string& accesses,
                    const std::vector<ReadBack>& cases) {
  Bus b(model);
  for (const ReadBack& each : cases) {
    b.port.answers = {each.first, each.second};
    b.bus.GetNibbles();
    EXPECT_EQ(b.state.ReadByte, each.value);
    EXPECT_EQ(b.port.taken(), accesses);
  }
}

// On a model 4 a half's bits 0 to 3 come on status bits 6, 7 (BUSY, inverted), 5 and 4.
TEST(GetNibbles, readsTheLowHalfThenTheHighOneAsTheModelIsWired) {
  expectReadBack(4, "37A=00 379? 37A=04 379?",
                 {{0x78, 0x78, 0xFF},
                  {0xFF, 0xFF, 0xDD},
                  {0x0F, 0x80, 0x02},
                  {0xC0, 0xA0, 0x41},
                  {0xA0, 0x10, 0xA4},
                  {0x90, 0xC0, 0x18}});
  for (const std::int16_t model : {std::int16_t{5}, std::int16_t{6}})
    expectReadBack(
        model, "37A=05 379? 37A=01 379?",
        {{0x78, 0x70, 0xEF}, {0x87, 0x87, 0x00}, {0x08, 0x40, 0x81}, {0x20, 0x10, 0x24}});
}

}  // namespace
}  // namespace kestrel::test
