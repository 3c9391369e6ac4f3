// Flash commands and identification, from the wiring of a 32-pin flash: latch 3 bit 7 /CE, bit 6
// data latch off, bit 2 /WE (pin 31).

#include <gtest/gtest.h>

#include "support/unit_rig.h"

namespace kestrel::test {
namespace {

const std::string kUnlock =
    "3=84 4=AA 1=05 2=55 3=04 3=00 3=04 3=84 4=55 1=02 2=AA 3=04 3=00 3=04 3=84 ";

/// With a chip that gives these bytes: maker, device, then what stands at 0 and 1.
struct FlashRig : UnitRig {
  explicit FlashRig(const std::vector<std::uint8_t>& answers = {}) {
    state.FamilyCode = "FM";
    start(0x00, 0x04);
    port.answer(answers);
  }
};

TEST(FlashCommand, loadsWithoutAWaitAndLeavesTheShadowsAlone) {
  FlashRig rig;
  rig.state.BusDelayCount = 12;
  rig.flashIdentification.FlashCommand();
  EXPECT_TRUE(rig.port.accesses().starts_with(
      "378=40 37A=05 spin12 37A=04 37A=05 378=84 37A=0E 37A=0F 378=AA 37A=00 37A=01 "));
  EXPECT_EQ(rig.state.RegShadow3, 0xC4);
}

TEST(FlashId, isReadBetweenIdentifyAndReset) {
  FlashRig rig({0x01, 0x20, 0xFF, 0xFF});
  rig.flashIdentification.ReadFlashID();
  const std::string read = "1=00 2=00 3=44 lo hi 1=00 2=01 3=44 lo hi ";
  EXPECT_EQ(rig.traffic(), "0=40 1=00 2=00 3=C4 0=48 0=48 0=48 " + kUnlock +
                               "4=90 1=05 2=55 3=04 3=00 3=04 3=84 3=44 0=08 3=44 " + read +
                               "0=48 0=48 " + kUnlock +
                               "4=F0 1=05 2=55 3=04 3=00 3=04 3=84 sleep=20 sleep=20 3=44 0=08 " +
                               read + "3=C4 0=48 0=40");
}

TEST(ResetFlash, writesF0hOnce) {
  FlashRig rig;
  rig.flashIdentification.ResetFlash_Click();
  EXPECT_EQ(rig.traffic(), "3=C4 0=40 4=F0 3=C0 3=40 3=C0 3=C4");
}

TEST(ProgramFlash, pollsAByte49TimesAndReports) {
  FlashRig rig({0x01, 0x20, 0xFF, 0xFF, 0x11});
  rig.state.CodeLength = 512;
  rig.setImage({0x11, 0x22});
  rig.port.thereafter = 0x23;
  rig.flashProgrammer.ProgramFlash();
  EXPECT_EQ(rig.state.FlashPollMisses, 49);
  EXPECT_EQ(rig.controls.ProgressBar1.maximum(), 2) << "a step for 256 bytes";
  EXPECT_EQ(rig.log()[1], "Device ID# 0120 - Start programming");
  EXPECT_EQ(rig.log()[3], "*** Address:1h, Programming BYTE:22h, Read BYTE:23h");
  // Bus released, chip read, bus driven again: one poll of the first byte.
  EXPECT_NE(rig.traffic().find("3=84 1=00 2=00 3=C4 3=44 0=00 lo hi 0=40 3=C4 3=84 2=01"),
            std::string::npos);
}

TEST(ProgramFlash, waits1msForEachByteOfAnAtmelAndReadsNothing) {
  FlashRig rig({0x1F, 0xD5, 0xFF, 0xFF});  // one more read would end the script
  rig.state.CodeLength = 256;
  rig.setImage({0x11, 0x22});
  EXPECT_NO_THROW(rig.flashProgrammer.ProgramFlash());
  EXPECT_EQ(std::ranges::count(rig.events(), "sleep=1"), 256);
  EXPECT_EQ(rig.state.ProgramFailed, 0);
}

TEST(ProgramFlash, takesAmicAndEonToo) {
  for (const auto maker : std::initializer_list<std::uint8_t>{0x37, 0x1C}) {
    FlashRig rig({maker, 0x04, 0xFF, 0xFF});
    rig.state.CodeLength = 1;
    rig.port.thereafter = 0;
    rig.flashProgrammer.ProgramFlash();
    EXPECT_TRUE(rig.log().back().ends_with("Start programming"));
    EXPECT_NE(rig.traffic().find("3=C4 0=48 0=40 3=84 0=40 3=84 3=84 1=00 2=00 3=C4"),
              std::string::npos);
  }
}

TEST(ProgramFlash, refusesAnUnknownMaker) {
  FlashRig rig({0xC2, 0x13, 0xFF, 0xFF});
  rig.state.ProgramStatus = 1;
  rig.flashProgrammer.ProgramFlash();
  EXPECT_EQ(rig.log().back(), "Device ID# C213 - Not Supported");
  EXPECT_EQ(rig.state.ProgramStatus, 0);
}

}  // namespace
}  // namespace kestrel::test
