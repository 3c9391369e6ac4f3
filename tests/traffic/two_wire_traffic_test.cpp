// The two-wire bus of the serial chips, as its lines show it.

#include <gtest/gtest.h>

#include "support/unit_rig.h"

namespace kestrel::test {
namespace {

constexpr std::uint8_t kYes = 0x00;
constexpr std::uint8_t kNo = 0x80;

TEST(TwoWireBus, movesTheLinesInTheOrderOfTheConditions) {
  UnitRig rig;
  operations::I2cBus bus(rig.state, rig.state, rig.board);
  rig.start(0, 0);
  bus.I2CStart();
  EXPECT_EQ(rig.traffic(), "3=40 4=80 3=00 3=80 4=00 3=00");
  (void)rig.port.taken();
  rig.state.ByteToWrite = 0xA5;
  rig.port.answer({kNo, kYes});
  bus.I2CSendByte();
  EXPECT_EQ(rig.traffic(),
            "3=00 4=A5 3=80 3=00 4=4A 3=80 3=00 4=94 3=80 3=00 4=28 3=80 3=00 4=50 3=80 3=00 "
            "4=A0 3=80 3=00 4=40 3=80 3=00 4=80 3=80 3=00 3=40 hi sleep=1 hi 3=C0 3=40");
  (void)rig.port.taken();
  bus.I2CStop();
  EXPECT_EQ(rig.traffic(), "3=40 4=00 3=00 3=80 4=80 3=00");
  (void)rig.port.taken();
  rig.port.answerBits(0xC3);
  bus.I2CReadByte();
  EXPECT_EQ(rig.traffic(),
            "3=40 3=40 3=C0 hi 3=40 3=C0 hi 3=40 3=C0 hi 3=40 3=C0 hi 3=40 3=C0 hi 3=40 3=C0 hi "
            "3=40 3=C0 hi 3=40 3=C0 hi 3=40");
  EXPECT_EQ(rig.state.ReadByte, 0xC3);
}

// The pieces of the test above. SCL is latch 3 bit 7; SDA is latch 4 bit 7, unless latch 3 bit 6
// lets it go, as it stands behind whatever the chip has answered.
const std::string kStart = "4=80 3=00 3=80 4=00 3=00 ";
const std::string kStop = "4=00 3=00 3=80 4=80 3=00 ";
const std::string kReleased = "3=40 ", kDriven = "3=00 ";
const std::string kNinthClock = "3=C0 3=40 ";
const std::string kAcknowledge = "3=00 3=80 3=00 ";

std::string sent(unsigned byte) {
  std::string text = "3=00 ";
  for (int bit = 0; bit < 8; ++bit)
    text += "4=" + hexText(static_cast<int>(byte << bit), 2) + " 3=80 3=00 ";
  return text + "3=40 ";
}
std::string acknowledged(const std::vector<unsigned>& bytes) {
  std::string text;
  for (const unsigned byte : bytes) text += sent(byte) + "hi " + kNinthClock;
  return text;
}
std::string received() {
  std::string text = "3=40 ";
  for (int bit = 0; bit < 8; ++bit) text += "3=40 3=C0 hi ";
  return text + "3=40 ";
}

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
};

TEST(SerialRead, addressesReadsOnAndAcknowledgesTheLastByteToo) {
  for (const int model : {4, 5}) {
    for (const bool hasTwoBytes : {false, true}) {
      SerialRig rig(hasTwoBytes ? "SC" : "SA", 2, model);
      rig.answer(hasTwoBytes ? 4 : 3, kYes);
      rig.port.answerBits(0x5A);
      rig.port.answerBits(0xC3);
      rig.serial.Read24CXX();
      const std::vector<unsigned> address(hasTwoBytes ? 2 : 1, 0);
      const std::string byte = received() + kAcknowledge;
      EXPECT_EQ(rig.traffic() + ' ', "0=40 sleep=50 " + kReleased + kStart + acknowledged({0xA0}) +
                                         acknowledged(address) + kReleased + kStart +
                                         acknowledged({0xA1}) + "3=40 4=00 " + byte + byte +
                                         kDriven + kStop);
      EXPECT_EQ(rig.state.CodeBuffer[0], 0x5A);
      EXPECT_EQ(rig.state.CodeBuffer[1], 0xC3);
    }
  }
}

/// A page of 16 bytes that are their address plus one, and the polls while the chip writes: the
/// last one is answered, unless none is.
std::string page(unsigned address, bool isReady) {
  const unsigned select = 0xA0 + address / 256 * 2;
  std::string text = kReleased + kStart + acknowledged({select});
  for (unsigned i = 0; i <= 16; ++i) text += acknowledged({(address + i) & 0xFF});
  text += kReleased + kStop;
  for (int i = 0; i < (isReady ? 1 : 50); ++i) {
    text += (i == 0 ? kDriven : kReleased) + kStart + sent(select) + "sleep=1 hi sleep=2 ";
  }
  if (isReady) text += kReleased + kStart + sent(select) + "sleep=1 hi ";
  return text + kNinthClock;
}

TEST(SerialWrite, startsAt300hWithTheBlockInTheSelectByteAndPollsEachPage50TimesAtMost) {
  constexpr unsigned kPages = 17, kNeverReady = 3;
  SerialRig rig("SB", kPages * 16);
  for (std::size_t i = 0x300; i < 0x410; ++i) {
    rig.state.CodeBuffer[i] = static_cast<std::uint8_t>(i + 1);
  }
  for (unsigned i = 0; i < kPages; ++i) {
    rig.answer(18, kYes);
    rig.answer(i == kNeverReady ? 50 : 1, kNo);
    if (i != kNeverReady) rig.answer(1, kYes);
  }
  rig.serial.Write24CXX();
  std::string traffic = rig.traffic();
  const auto expectNext = [&traffic](const std::string& next, unsigned i) {
    ASSERT_EQ(traffic.substr(0, next.size()), next) << "page " << i;
    traffic.erase(0, next.size());
  };
  expectNext("0=40 sleep=50 ", 0);
  for (unsigned i = 0; i < kPages; ++i) expectNext(page(0x300 + i * 16, i != kNeverReady), i);
  EXPECT_EQ(traffic, "4=00 3=00");
  EXPECT_EQ(rig.state.I2CError, 0);
}

}  // namespace
}  // namespace kestrel::test
