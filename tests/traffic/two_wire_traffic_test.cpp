// The two-wire bus of the serial chips, as its lines show it.

#include <gtest/gtest.h>

#include "support/unit_rig.h"

namespace kestrel::test {
namespace {

constexpr std::uint8_t kYes = 0x00;
constexpr std::uint8_t kNo = 0x80;

struct SerialRig : UnitRig {
  SerialRig(const char* code, std::int32_t length, int model = 5) : UnitRig(model) {
    state.FamilyLetter = "S";
    state.FamilyCode = code;
    state.CodeLength = length;
    start(0, 0);
  }
  void answer(std::size_t count, std::uint8_t level) {
    port.answer(std::vector<std::uint8_t>(count, level));
  }
  [[nodiscard]] std::string onTheWires() const { return TwoWireDecoder().decode(events()); }
};

TEST(TwoWireBus, movesTheLinesInTheOrderOfTheConditions) {
  UnitRig rig;
  operations::I2cBus bus(rig.state, rig.state, rig.board);
  rig.start(0, 0);
  bus.I2CStart();
  EXPECT_EQ(rig.traffic(), "3=40 4=80 3=00 3=80 4=00 3=00");
  rig.trace.str("");
  rig.state.ByteToWrite = 0xA5;
  rig.port.answer({kNo, kYes});
  bus.I2CSendByte();
  EXPECT_EQ(rig.traffic(),
            "3=00 4=A5 3=80 3=00 4=4A 3=80 3=00 4=94 3=80 3=00 4=28 3=80 3=00 4=50 3=80 3=00 "
            "4=A0 3=80 3=00 4=40 3=80 3=00 4=80 3=80 3=00 3=40 hi sleep=1 hi 3=C0 3=40");
  rig.trace.str("");
  bus.I2CStop();
  EXPECT_EQ(rig.traffic(), "3=40 4=00 3=00 3=80 4=80 3=00");
  rig.trace.str("");
  rig.port.answerBits(0xC3);
  bus.I2CReadByte();
  EXPECT_EQ(rig.traffic(),
            "3=40 3=40 3=C0 hi 3=40 3=C0 hi 3=40 3=C0 hi 3=40 3=C0 hi 3=40 3=C0 hi 3=40 3=C0 hi "
            "3=40 3=C0 hi 3=40 3=C0 hi 3=40");
  EXPECT_EQ(rig.state.ReadByte, 0xC3);
}

TEST(SerialRead, addressesReadsOnAndAcknowledgesTheLastByteToo) {
  for (const int model : {4, 5}) {
    for (const bool hasTwoBytes : {false, true}) {
      SerialRig rig(hasTwoBytes ? "SC" : "SA", 2, model);
      rig.answer(hasTwoBytes ? 4 : 3, kYes);
      rig.port.answerBits(0x5A);
      rig.port.answerBits(0xC3);
      rig.serial.Read24CXX();
      EXPECT_EQ(rig.onTheWires(),
                hasTwoBytes ? "S A0a 00a 00a S A1a 5AA C3A P" : "S A0a 00a S A1a 5AA C3A P");
      EXPECT_EQ(rig.state.CodeBuffer[0], 0x5A);
      EXPECT_EQ(rig.state.CodeBuffer[1], 0xC3);
      EXPECT_TRUE(rig.traffic().starts_with("0=40 sleep=50 ")) << rig.traffic();
    }
  }
}

TEST(SerialWrite, startsAt300hWithTheBlockInTheSelectByte) {
  SerialRig rig("SB", 272);
  for (std::size_t i = 0x300; i < 0x410; ++i) {
    rig.state.CodeBuffer[i] = static_cast<std::uint8_t>(i + 1);
  }
  // Each page: 18 bytes, a poll while the chip writes, a poll that it answers.
  for (int page = 0; page < 17; ++page) {
    rig.answer(18, kYes);
    rig.port.answer({kNo, kYes});
  }
  rig.serial.Write24CXX();
  const std::string wires = rig.onTheWires();
  EXPECT_TRUE(
      wires.starts_with("S A6a 00a 01a 02a 03a 04a 05a 06a 07a 08a 09a 0Aa 0Ba 0Ca 0Da "
                        "0Ea 0Fa 10a P S A6 S A6a S A6a 10a 11a"))
      << wires;
  EXPECT_NE(wires.find("FFa 00a P S A6 S A6a S A8a 00a 01a"), std::string::npos);
  EXPECT_TRUE(wires.ends_with("0Fa 10a P S A8 S A8a"));
  EXPECT_EQ(countOf(BoardEvent::Kind::Sleep, 50, rig.events()), 1);
  EXPECT_TRUE(rig.traffic().starts_with("0=40 sleep=50 ")) << rig.traffic();
  EXPECT_TRUE(rig.traffic().ends_with("3=C0 3=40 4=00 3=00"));
  EXPECT_EQ(rig.state.I2CError, 0);
}

TEST(AcknowledgePolling, endsAt50AfterAPageAndGoesOn) {
  SerialRig rig("SB", 32);
  rig.answer(18, kYes);
  rig.answer(50, kNo);
  rig.answer(18, kYes);
  rig.port.thereafter = kNo;
  rig.serial.Write24CXX();
  EXPECT_EQ(rig.state.I2CError, 50);
  EXPECT_EQ(countOf(BoardEvent::Kind::Sleep, 2, rig.events()), 100);
  EXPECT_EQ(countOf(BoardEvent::Kind::Sleep, 1, rig.events()), 100);
  std::string polls;
  for (int i = 0; i < 49; ++i) polls += " S A6";
  EXPECT_NE(rig.onTheWires().find("P" + polls + " S A6n S A6a 10a"), std::string::npos);
}

}  // namespace
}  // namespace kestrel::test
