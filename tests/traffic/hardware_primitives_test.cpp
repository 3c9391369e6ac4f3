// Latches, address, read-back: every access that the primitives make, in order.

#include <gtest/gtest.h>

#include "app/state/reporting.h"
#include "hardware/bus_primitives.h"
#include "hardware/decode_tables.h"
#include "platform/folders.h"
#include "platform/runtime_error.h"
#include "support/fakes.h"
#include "support/port_script.h"

namespace kestrel::test {
namespace {

struct Bus {
  explicit Bus(std::int16_t model) {
    hardware::BuildDecodeTables(state);
    registers.InitControlTables();
    state.PortBase = 0x378;
    state.KestrelModel = model;
    registers.ApplyPortAndModel();
    state.Reg1Fixed = 0x40;
    state.Reg3Fixed = 0x02;
  }
  ProgrammerState state;
  Controls controls;
  PortScript port;
  FixedTime time;
  RecordingSounds sounds;
  FakeScreen screen;
  Folders folders;
  Reporting reporting{state, controls, time, sounds, screen, folders};
  hardware::Registers registers{state, state, state, port, port};
  hardware::BusPrimitives bus{state, state,     state,     state, state,
                              state, registers, reporting, port,  port};
};

TEST(LatchLoad, model4HasTheStrobeActiveHighAndTheOthersAllLinesInverted) {
  const std::string inverted =
      "378=50 37A=05 spin12 37A=04 37A=05 378=51 37A=0D spin12 37A=0C 37A=0D "
      "378=52 37A=07 spin12 37A=06 37A=07 378=53 37A=0F spin12 37A=0E 37A=0F "
      "378=54 37A=01 spin12 37A=00 37A=01";
  for (const auto& [model, loads] : std::initializer_list<std::pair<std::int16_t, std::string>>{
           {4,
            "378=50 37A=0A spin12 37A=0B 37A=0A 378=51 37A=02 spin12 37A=03 37A=02 "
            "378=52 37A=08 spin12 37A=09 37A=08 378=53 37A=00 spin12 37A=01 37A=00 "
            "378=54 37A=0E spin12 37A=0F 37A=0E"},
           {5, inverted},
           {6, inverted}}) {
    Bus b(model);
    auto& s = b.state;
    s.BusDelayCount = 12;
    std::tie(s.RegShadow0, s.RegShadow1, s.RegShadow2, s.RegShadow3, s.RegShadow4) =
        std::tuple(0x50, 0x51, 0x52, 0x53, 0x54);
    b.registers.SetReg0();
    b.registers.SetReg1();
    b.registers.SetReg2();
    b.registers.SetReg3();
    b.registers.SetReg4();
    EXPECT_EQ(b.port.taken(), loads);
  }
}

TEST(Signals, changeTheirBitsAndLoadTheirLatches) {
  using B = hardware::BusPrimitives;
  using Case = std::tuple<void (B::*)(), std::int16_t, std::int16_t, const char*>;
  const std::vector<Case> cases{
      {&B::CEON, 0x18, 0xC7, "3 47"},        {&B::CEOFF, 0x18, 0x47, "3 C7"},
      {&B::OEON, 0xD8, 0xC7, "0 18"},        {&B::OEOFF, 0x98, 0xC7, "0 D8"},
      {&B::VPP24_ON, 0x18, 0xC7, "0 D8"},    {&B::VPP24_OFF, 0xD8, 0xC7, "0 18"},
      {&B::CEOEON, 0xD8, 0xC7, "3 47,0 18"}, {&B::CEOEOFF, 0x18, 0x47, "3 C7,0 58"}};
  Bus b(5);
  for (const auto& [signal, latch0, latch3, loads] : cases) {
    b.state.RegShadow0 = latch0;
    b.state.RegShadow3 = latch3;
    (b.bus.*signal)();
    EXPECT_EQ(b.port.taken(), loads5(loads));
  }
  b.registers.REG4ON();
  b.registers.REG4OFF();
  EXPECT_EQ(b.port.taken(), loads5("3 87,3 C7"));
}

TEST(Address, SETADRLoadsTheThreeLatchesThroughTheMaps) {
  Bus b(5);
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

// On a model 4 a half's bits 0 to 3 come on status bits 6, 7 (BUSY, inverted), 5 and 4.
TEST(GetNibbles, readsTheLowHalfThenTheHighOneAsTheModelIsWired) {
  struct Case {
    std::int16_t model;
    std::uint8_t first, second;
    int value;
  };
  // clang-format off
  for (const auto& [model, first, second, value] : std::initializer_list<Case>{
           {4, 0x78, 0x78, 0xFF}, {4, 0xFF, 0xFF, 0xDD}, {4, 0x0F, 0x80, 0x02},
           {4, 0xC0, 0xA0, 0x41}, {4, 0xA0, 0x10, 0xA4}, {4, 0x90, 0xC0, 0x18},
           {5, 0x78, 0x70, 0xEF}, {5, 0x87, 0x87, 0x00}, {5, 0x08, 0x40, 0x81},
           {5, 0x20, 0x10, 0x24}, {6, 0x08, 0x40, 0x81}, {6, 0x20, 0x10, 0x24}}) {
    // clang-format on
    Bus b(model);
    b.port.answers = {first, second};
    b.bus.GetNibbles();
    EXPECT_EQ(b.state.ReadByte, value);
    EXPECT_EQ(b.port.taken(), model == 4 ? "37A=00 379? 37A=04 379?" : "37A=05 379? 37A=01 379?");
  }
}

}  // namespace
}  // namespace kestrel::test
