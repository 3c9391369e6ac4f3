// Flash commands and identification, from the wiring of a 32-pin flash: latch 3 bit 7 /CE, bit 6
// data latch off, bit 2 /WE (pin 31).

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/unit_rig.h"

namespace kestrel::test {
namespace {

using testing::ElementsAre;

const std::string kUnlock =
    "3=84 4=AA 1=05 2=55 3=04 3=00 3=04 3=84 "
    "4=55 1=02 2=AA 3=04 3=00 3=04 3=84 ";

// AAh at 5555h, 55h at 2AAAh, then a byte at 5555h. /WE is latch 1 bit 7 here, and pin 30, the
// supply, latch 3 bit 1.
std::string atmelCommand(const std::string& byte) {
  const auto cycle = [](const char* off, const char* on, const std::string& low,
                        const std::string& data) {
    return "1=" + std::string(off) + " spin=300 2=" + low + " spin=300 4=" + data +
           " 3=02 1=" + on + " spin=300 1=" + off + " spin=300 3=82 ";
  };
  return "0=40 3=82 " + cycle("D5", "55", "55", "AA") + cycle("AA", "2A", "AA", "55") +
         cycle("D5", "55", "55", byte) + "sleep=7";
}

void selectFlash(UnitRig& rig, const char* code) {
  rig.state.FamilyLetter = "F";
  rig.state.FamilyCode = code;
  rig.start(code == std::string("FA") ? 0x80 : 0x00, code == std::string("FA") ? 0x02 : 0x04);
}

TEST(FlashCommand, sendsThreeFastCycles) {
  UnitRig rig;
  selectFlash(rig, "FM");
  rig.state.BusDelayCount = 12;
  rig.state.FlashCmd = 0x90;
  rig.identification.FlashCommand();
  EXPECT_EQ(textOf(boardEvents(rig.trace.str(), 5, 12)),
            "0=40 " + kUnlock + "4=90 1=05 2=55 3=04 3=00 3=04 3=84");
  // Of a fast load the port sees the data and two control bytes, and no wait.
  EXPECT_THAT(rig.trace.str(),
              testing::StartsWith("out 378 40\nout 37A 05\nspin 12\nout 37A 04\nout 37A 05\n"
                                  "out 378 84\nout 37A 0E\nout 37A 0F\n"
                                  "out 378 AA\nout 37A 00\nout 37A 01\n"));
  EXPECT_EQ(rig.state.RegShadow3, 0xC4);  // the shadows are left alone
}

TEST(FlashCommand, hasItsOwnFormForTheAT29C256) {
  UnitRig rig;
  selectFlash(rig, "FA");
  rig.state.FlashCmd = 0xF0;
  rig.identification.FlashCommand();
  EXPECT_EQ(rig.traffic(), atmelCommand("F0"));
}

TEST(FlashId, isReadBetweenIdentifyAndReset) {
  UnitRig rig;
  selectFlash(rig, "FM");
  rig.port.answer({0x01, 0x20, 0xFF, 0xFF});
  rig.identification.ReadFlashID();
  const std::string read = "1=00 2=00 3=44 lo hi 1=00 2=01 3=44 lo hi ";
  EXPECT_EQ(rig.traffic(), "0=40 1=00 2=00 3=C4 0=48 0=48 0=48 " + kUnlock +
                               "4=90 1=05 2=55 3=04 3=00 3=04 3=84 3=44 0=08 3=44 " + read +
                               "0=48 0=48 " + kUnlock +
                               "4=F0 1=05 2=55 3=04 3=00 3=04 3=84 sleep=20 sleep=20 3=44 0=08 " +
                               read + "3=C4 0=48 0=40");
}

TEST(FlashId, isProbedOnceForTheAT29C256) {
  UnitRig rig;
  selectFlash(rig, "FA");
  rig.port.answer({0x1F, 0xDC});
  rig.identification.ProbeFlashID();
  EXPECT_EQ(rig.traffic(), atmelCommand("90") +
                               " 3=02 0=00 3=42 1=80 2=00 3=42 lo hi 1=80 2=01 3=42 lo hi 0=40 " +
                               atmelCommand("F0") + " sleep=20");
}

struct Identity {
  std::vector<std::uint8_t> answers;  ///< maker, device, then what stands at 0 and 1
  std::vector<std::string> log;
  int pageSize;
  int pageCount;
};

TEST(FlashId, namesEveryChip) {
  const Identity identities[]{
      {{0x1C, 0x04, 0, 0}, {"Device ID# 1C04 - EON EN29F040 Flash Memory"}, 512, 1024},
      {{0x01, 0x20, 0, 0}, {"Device ID# 0120 - AMD am29F010 Flash Memory"}, 512, 256},
      {{0x01, 0xA4, 0, 0}, {"Device ID# 01A4 - AMD am29F040 Flash Memory"}, 512, 1024},
      {{0x37, 0x86, 0, 0}, {"Device ID# 3786 - AMIC A29040 Flash Memory"}, 512, 1024},
      {{0x37, 0xA4, 0, 0}, {"Device ID# 37A4 - AMIC A29010 Flash Memory"}, 512, 256},
      {{0x1F, 0x5B, 0, 0}, {"Device ID# 1F5B - ATMEL 29C040 Flash Memory"}, 512, 1024},
      {{0x1F, 0xA4, 0, 0}, {"Device ID# 1FA4 - ATMEL 29C040A Flash Memory"}, 256, 2048},
      {{0x1F, 0xDA, 0, 0}, {"Device ID# 1FDA - ATMEL 29C020 Flash Memory"}, 256, 1024},
      {{0x1F, 0x25, 0, 0}, {"Device ID# 1F25 - ATMEL 29C1024 Flash Memory"}, 128, 512},
      {{0x1F, 0xD5, 0, 0}, {"Device ID# 1FD5 - ATMEL 29C010 Flash Memory"}, 128, 1024},
      {{0x1F, 0x5D, 0, 0}, {"Device ID# 1F5D - ATMEL 29C512 Flash Memory"}, 128, 512},
      {{0x1F, 0xDC, 0, 0}, {"Device ID# 1FDC - ATMEL 29C256 Flash Memory"}, 64, 512},
      {{0xC2, 0x13, 0, 0}, {"Device ID# C213 -  Not Valid!!!"}, 0, 0},
      {{0xFF, 0xFF, 0xFF, 0xFF},
       {"*** Not a Flash Unit, Address 00&01 = FlashCode ***", "Device ID# FFFF -  Not Valid!!!"},
       0,
       0},
  };
  for (const Identity& identity : identities) {
    UnitRig rig(identity.pageSize == 512 ? 4 : 6);
    selectFlash(rig, "FM");
    rig.port.answer(identity.answers);
    rig.identification.ReadFlashID();
    EXPECT_EQ(rig.log(), identity.log);
    EXPECT_EQ(rig.state.FlashPageSize, identity.pageSize);
    EXPECT_EQ(rig.state.FlashPageCount, identity.pageCount);
  }
}

TEST(FlashId, isNotReadFromOtherFamilies) {
  UnitRig rig;
  rig.state.FamilyLetter = "E";
  rig.identification.menuFlashShowCodeID_Click();
  EXPECT_EQ(rig.traffic(), "");
  EXPECT_THAT(rig.log(), ElementsAre("Reading Flash Code ID_________________ wait"));
}

TEST(ResetFlash, writesF0hOnce) {
  UnitRig rig;
  selectFlash(rig, "FM");
  rig.identification.ResetFlash_Click();
  EXPECT_EQ(rig.traffic(), "3=C4 0=40 4=F0 3=C0 3=40 3=C0 3=C4");
}

TEST(ProgramFlash, pollsAByte49TimesAndReports) {
  UnitRig rig;
  selectFlash(rig, "FM");
  rig.state.CodeLength = 512;
  rig.image({0x11, 0x22});
  rig.port.answer({0x01, 0x20, 0xFF, 0xFF, 0x11});
  rig.port.thereafter = 0x23;
  rig.flash.ProgramFlash();
  EXPECT_EQ(rig.state.FlashPollMisses, 49);
  EXPECT_THAT(rig.log(),
              ElementsAre("Device ID# 0120 - AMD am29F010 Flash Memory",
                          "Device ID# 0120 - Start programming", "*** Programming Failure ***",
                          "*** Address:1h, Programming BYTE:22h, Read BYTE:23h",
                          "*** Aborting Programming - Click on [ERROR] Indicator to Reset"));
  // Bus released, chip read, bus driven again: one poll of the first byte.
  EXPECT_NE(rig.traffic().find("3=84 1=00 2=00 3=C4 3=44 0=00 lo hi 0=40 3=C4 3=84 2=01"),
            std::string::npos);
}

TEST(ProgramFlash, refusesAnUnknownMaker) {
  UnitRig rig;
  selectFlash(rig, "FM");
  rig.state.ProgramStatus = 1;
  rig.port.answer({0xC2, 0x13, 0xFF, 0xFF});
  rig.flash.ProgramFlash();
  EXPECT_EQ(rig.log().back(), "Device ID# C213 - Not Supported");
  EXPECT_EQ(rig.state.ProgramStatus, 0);
}

}  // namespace
}  // namespace kestrel::test
