// The page-write chips. AT29C256: /WE is latch 1 bit 7. 28C256: /WE is latch 1 bit 6 and A14 bit 7.
// Pin 30, their supply, is latch 3 bit 1.

#include <gtest/gtest.h>

#include "app/state/text_format.h"
#include "support/unit_rig.h"

namespace kestrel::test {
namespace {

/// Latch 1 with /WE high and low, at 5555h, 2AAAh and in the first 256 bytes.
struct PageChip {
  std::int16_t reg1Fixed;
  std::string off5555, on5555, off2AAA, on2AAA, off0, on0;
};

const PageChip kXicor{0x40, "D5", "95", "6A", "2A", "40", "00"};
const PageChip kAtmel{0x80, "D5", "55", "AA", "2A", "80", "00"};

/// Write cycles at 5555h, 2AAAh, 5555h, and so again.
std::string sequence(const PageChip& chip, const std::vector<std::string>& data) {
  std::string text = "0=40 3=82 ";
  for (std::size_t i = 0; i < data.size(); ++i) {
    const bool is2AAA = i % 3 == 1;
    const std::string& off = is2AAA ? chip.off2AAA : chip.off5555;
    text += "1=" + off + " spin=300 2=" + (is2AAA ? "AA" : "55") + " spin=300 4=" + data[i] +
            " 3=02 1=" + (is2AAA ? chip.on2AAA : chip.on5555) + " spin=300 1=" + off +
            " spin=300 3=82 ";
  }
  return text + "sleep=7";
}
std::string unlock(const PageChip& chip) {
  return sequence(chip, {"AA", "55", "80", "AA", "55", "20"});
}

TEST(Protection, isSwitchedOffAndOnByItsSequences) {
  const auto traffic = [](const PageChip& chip, void (operations::ProtectionSequences::*run)()) {
    UnitRig rig;
    rig.start(chip.reg1Fixed, 0x02);
    (rig.protection.*run)();
    return rig.traffic();
  };
  EXPECT_EQ(traffic(kXicor, &operations::ProtectionSequences::XicorSDPDisable), unlock(kXicor));
  EXPECT_EQ(traffic(kAtmel, &operations::ProtectionSequences::AtmelSDPDisable), unlock(kAtmel));
  EXPECT_EQ(traffic(kXicor, &operations::ProtectionSequences::XicorSDPEnable),
            sequence(kXicor, {"AA", "55", "A0"}));
  EXPECT_EQ(traffic(kAtmel, &operations::ProtectionSequences::AtmelSDPEnable),
            sequence(kAtmel, {"AA", "55", "A0"}));
}

TEST(FlashId, isProbedOnceForTheAT29C256) {
  UnitRig rig;
  rig.state.FamilyLetter = "F";
  rig.state.FamilyCode = "FA";
  rig.start(0x80, 0x02);
  rig.port.answer({0x1F, 0xDC});
  rig.flashIdentification.ProbeFlashID();
  EXPECT_EQ(rig.traffic(), sequence(kAtmel, {"AA", "55", "90"}) +
                               " 3=02 0=00 3=42 1=80 2=00 3=42 lo hi 1=80 2=01 3=42 lo hi 0=40 " +
                               sequence(kAtmel, {"AA", "55", "F0"}) + " sleep=20");
}

/// 64 bytes loaded from an address on: each byte's data is its address plus one.
std::string pageLoad(const PageChip& chip, int from, const std::string& firstLatch3) {
  std::string text = "sleep=3 3=" + firstLatch3 + (firstLatch3 == "82" ? " 1=" + chip.off0 : "");
  for (int i = from; i < from + 64; ++i) {
    text += " 2=" + hexText(i, 2) + " 3=" + (i == from ? firstLatch3 : "82") +
            " 4=" + hexText(i + 1, 2) + " 3=02 1=" + chip.on0 + " 1=" + chip.off0 + " 3=82";
  }
  return text + " sleep=5 3=C2 ";
}
/// The first bytes of a page read back.
std::string pageReadBack(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += "2=" + hexText(i, 2) + " 3=42 0=00 lo hi 0=40 ";
  return text;
}

/// An image of 1, 2, 3 ...; the first page reads back wrong at its second byte, then right.
struct PageRig : UnitRig {
  explicit PageRig(const PageChip& chip) {
    std::vector<std::uint8_t> bytes(32768, 0xFF);
    for (unsigned i = 0; i < 128; ++i) bytes[i] = static_cast<std::uint8_t>(i + 1);
    setImage(bytes);
    start(chip.reg1Fixed, 0x02);
    port.answer({1, 0});
    for (std::uint8_t i = 1; i <= 64; ++i) port.answer({i});
  }
};

TEST(PageWriter, writesA28C256PageAndOnceMoreWholeWhenAByteIsWrong) {
  PageRig rig(kXicor);
  std::optional<std::size_t> linesAtFirstWait;
  rig.port.onSleep = [&] { linesAtFirstWait = linesAtFirstWait.value_or(rig.log().size()); };
  EXPECT_THROW(rig.pages.ProgramX28C256(), ScriptEnd);
  EXPECT_EQ(rig.traffic(), "sleep=500 3=82 0=40 3=82 0=40 1=40 2=00 3=C6 3=C2 " + unlock(kXicor) +
                               " sleep=40 0=40 3=82 " + pageLoad(kXicor, 0, "82") +
                               pageReadBack(2) + pageLoad(kXicor, 0, "02") + pageReadBack(64) +
                               "0=48 " + pageLoad(kXicor, 64, "02") + "2=40 3=42 0=08");
  EXPECT_EQ(rig.log(), std::vector<std::string>{"Programming 28C256 XICOR Device"});
  EXPECT_EQ(linesAtFirstWait, 0U);
}

TEST(PageWriter, writesAnAT29C256PageByBit7) {
  PageRig rig(kAtmel);
  EXPECT_THROW(rig.pages.ProgramAT29C256(), ScriptEnd);
  EXPECT_TRUE(rig.traffic().starts_with(
      "1=80 2=00 3=C2 sleep=500 3=82 0=40 3=82 0=40 1=80 2=00 3=C6 1=80 2=00 3=C2 " +
      unlock(kAtmel) + " sleep=50 0=40 3=82 " + pageLoad(kAtmel, 0, "82") + pageReadBack(2)));
  EXPECT_EQ(rig.log(), std::vector<std::string>{"Programming Atmel AT29C256"});
}

TEST(PageWriter, givesUpAPageAfter79Attempts) {
  UnitRig rig;
  rig.setImage(std::vector<std::uint8_t>(32768, 0x5A));
  rig.start(0x80, 0x02);
  rig.controls.Slider1.setValue(20);
  rig.port.answer(std::vector<std::uint8_t>(66, 0x5A));
  rig.port.thereafter = 0x12;
  rig.pages.ProgramAT29C256();
  EXPECT_EQ(std::ranges::count(rig.events(), "sleep=3"), 80);  // one page and 79 attempts
  EXPECT_EQ(rig.log()[2], "*** Address:40h, Programming BYTE:5Ah, Read BYTE:12h");
  EXPECT_TRUE(rig.traffic().ends_with("0=48 0=00"));
}

}  // namespace
}  // namespace kestrel::test
