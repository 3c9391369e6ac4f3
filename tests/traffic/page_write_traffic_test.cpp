// The page-write chips. AT29C256: /WE is latch 1 bit 7. 28C256: /WE is latch 1 bit 6 and A14 bit 7.
// Pin 30, their supply, is latch 3 bit 1.

#include <gtest/gtest.h>

#include "support/unit_rig.h"

namespace kestrel::test {
namespace {

/// A write cycle: latch 1 with /WE high and low, address low byte, data.
std::string cycle(const std::string& off, const std::string& on, const std::string& low,
                  const std::string& data) {
  return "1=" + off + " spin=300 2=" + low + " spin=300 4=" + data + " 3=02 1=" + on +
         " spin=300 1=" + off + " spin=300 3=82 ";
}

// 5555h and 2AAAh as latch 1 shows them.
std::string xicor5555(const char* data) { return cycle("D5", "95", "55", data); }
std::string xicor2AAA(const char* data) { return cycle("6A", "2A", "AA", data); }
std::string atmel5555(const char* data) { return cycle("D5", "55", "55", data); }
std::string atmel2AAA(const char* data) { return cycle("AA", "2A", "AA", data); }

const std::string kXicorUnlock = "0=40 3=82 " + xicor5555("AA") + xicor2AAA("55") +
                                 xicor5555("80") + xicor5555("AA") + xicor2AAA("55") +
                                 xicor5555("20") + "sleep=7";
const std::string kAtmelUnlock = "0=40 3=82 " + atmel5555("AA") + atmel2AAA("55") +
                                 atmel5555("80") + atmel5555("AA") + atmel2AAA("55") +
                                 atmel5555("20") + "sleep=7";

TEST(Protection, isSwitchedOffAndOnByItsSequences) {
  const auto traffic = [](std::int16_t reg1Fixed, void (ProtectionSequences::*sequence)()) {
    UnitRig rig;
    rig.start(reg1Fixed, 0x02);
    (rig.protection.*sequence)();
    return rig.traffic();
  };
  EXPECT_EQ(traffic(0x40, &ProtectionSequences::XicorSDPDisable), kXicorUnlock);
  EXPECT_EQ(traffic(0x80, &ProtectionSequences::AtmelSDPDisable), kAtmelUnlock);
  EXPECT_EQ(traffic(0x40, &ProtectionSequences::XicorSDPEnable),
            "0=40 3=82 " + xicor5555("AA") + xicor2AAA("55") + xicor5555("A0") + "sleep=7");
  EXPECT_EQ(traffic(0x80, &ProtectionSequences::AtmelSDPEnable),
            "0=40 3=82 " + atmel5555("AA") + atmel2AAA("55") + atmel5555("A0") + "sleep=7");
}

std::string hex(unsigned byte) {
  std::array<char, 4> text{};
  std::snprintf(text.data(), text.size(), "%02X", byte);
  return text.data();
}

/// 64 bytes loaded from an address on: each byte's data is its address plus one.
std::string pageLoad(unsigned from, const std::string& weLow, const std::string& weHigh,
                     const std::string& firstLatch3) {
  std::string text;
  for (unsigned i = from; i < from + 64; ++i) {
    text += "2=" + hex(i) + " 3=" + (i == from ? firstLatch3 : "82") + " 4=" + hex(i + 1) +
            " 3=02 1=" + weLow + " 1=" + weHigh + " 3=82 ";
  }
  return text;
}

/// So many bytes of a page read back.
std::string pageReadBack(unsigned from, unsigned count) {
  std::string text;
  for (unsigned i = from; i < from + count; ++i) text += "2=" + hex(i) + " 3=42 0=00 lo hi 0=40 ";
  return text;
}

/// An image of 1, 2, 3 ...; the first page reads back wrong at its second byte, then right.
void prepare(UnitRig& rig, std::int16_t reg1Fixed) {
  std::vector<std::uint8_t> bytes(32768, 0xFF);
  for (unsigned i = 0; i < 128; ++i) bytes[i] = static_cast<std::uint8_t>(i + 1);
  rig.image(bytes);
  rig.start(reg1Fixed, 0x02);
  rig.port.answer({1, 0});
  for (std::uint8_t i = 1; i <= 64; ++i) rig.port.answer({i});
}

TEST(PageWriter, writesA28C256PageAndOnceMoreWholeWhenAByteIsWrong) {
  UnitRig rig;
  prepare(rig, 0x40);
  EXPECT_THROW(rig.pages.ProgramX28C256(), ScriptEnd);
  EXPECT_EQ(rig.traffic(), "sleep=500 3=82 0=40 3=82 0=40 1=40 2=00 3=C6 3=C2 " + kXicorUnlock +
                               " sleep=40 0=40 3=82 "
                               "sleep=3 3=82 1=40 " +
                               pageLoad(0, "00", "40", "82") + "sleep=5 3=C2 " +
                               pageReadBack(0, 2) + "sleep=3 3=02 " +
                               pageLoad(0, "00", "40", "02") + "sleep=5 3=C2 " +
                               pageReadBack(0, 64) + "0=48 " + "sleep=3 3=02 " +
                               pageLoad(64, "00", "40", "02") + "sleep=5 3=C2 2=40 3=42 0=08");
  EXPECT_EQ(rig.log(), std::vector<std::string>{"Programming 28C256 XICOR Device"});
}

TEST(PageWriter, writesAnAT29C256PageByBit7) {
  UnitRig rig;
  prepare(rig, 0x80);
  EXPECT_THROW(rig.pages.ProgramAT29C256(), ScriptEnd);
  const std::string expected =
      "1=80 2=00 3=C2 sleep=500 3=82 0=40 3=82 0=40 1=80 2=00 3=C6 "
      "1=80 2=00 3=C2 " +
      kAtmelUnlock +
      " sleep=50 0=40 3=82 "
      "sleep=3 3=82 1=80 " +
      pageLoad(0, "00", "80", "82") + "sleep=5 3=C2 " + pageReadBack(0, 2);
  EXPECT_EQ(rig.traffic().substr(0, expected.size()), expected);
  EXPECT_EQ(rig.log(), std::vector<std::string>{"Programming Atmel AT29C256"});
}

TEST(PageWriter, givesUpAPageAfter79Attempts) {
  UnitRig rig;
  rig.image(std::vector<std::uint8_t>(32768, 0x5A));
  rig.start(0x80, 0x02);
  rig.controls.Slider1.setValue(20);
  rig.port.answer(std::vector<std::uint8_t>(66, 0x5A));
  rig.port.thereafter = 0x12;
  rig.pages.ProgramAT29C256();
  EXPECT_EQ(countOf(BoardEvent::Kind::Sleep, 3, rig.events()), 80);  // one page and 79 attempts
  EXPECT_EQ(rig.log()[2], "*** Address:40h, Programming BYTE:5Ah, Read BYTE:12h");
  EXPECT_TRUE(rig.traffic().ends_with("0=48 0=00"));
}

}  // namespace
}  // namespace kestrel::test
