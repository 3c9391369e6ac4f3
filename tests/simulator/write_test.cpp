// Chips that are written in the socket: the page-write EEPROMs and the flash of 5 V and 12 V.

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>

#include "simulator/rig.h"

namespace kestrel::sim {
namespace {

/// A chip full of 00h, powered and selected, /OE and /WE high, latch 4 on the data lines. A8-A13
/// are latch 1 bits 0-5 on all parts.
class WriteRig : public test::Rig {
 public:
  /// The latch bit that is /WE, and the one of latch 1 that is A14.
  WriteRig(const char* type, test::Load we, std::uint8_t a14, Model model = Model::kestrel5)
      : Rig(model), we_(we), a14_(a14), fixed1_(we.latch == 1 ? we.value : 0) {
    load({{0, 0x40}, {1, fixed1_}});
    board.insert(makeChip(type));
    board.loadChip(std::vector<std::uint8_t>(board.chip()->contents().size()));
    load(3, 0x06);
  }

  void setAddress(std::uint32_t address) {
    const unsigned a14 = (address & 0x4000) != 0 ? a14_ : 0U;
    load(2, static_cast<std::uint8_t>(address));
    load(1, static_cast<std::uint8_t>((address >> 8 & 0x3F) | a14 | fixed1_));
  }
  void moveWe() { load(we_.latch, board.latch(we_.latch) ^ we_.value); }
  /// /WE falls 11 us after the call and is low for 3 us; the call ends 1 us later.
  void write(std::uint32_t address, std::uint8_t value) {
    load(4, value);
    setAddress(address);
    moveWe();
    moveWe();
  }
  /// AAh and 55h at the unlock addresses, then the code.
  void command(std::uint32_t first, std::uint32_t last, std::uint8_t code) {
    write(first, 0xAA);
    write(0x2AAA, 0x55);
    write(last, code);
  }
  std::uint8_t readAt(std::uint32_t address) {
    setAddress(address);
    const std::uint8_t value = read({{3, 0x46}, {0, 0x00}});
    load({{0, 0x40}, {3, 0x06}});
    return value;
  }

 private:
  test::Load we_;
  std::uint8_t a14_;
  std::uint8_t fixed1_;
};

struct PageCase {
  const char* type;
  std::uint8_t we;
  std::int64_t cycleUs;
  std::uint8_t notLoaded;   // what is left of 00h in a page
  std::int64_t lastWaitUs;  // between two writes of the rig that still belong to one load
};

class PageWrite : public testing::TestWithParam<PageCase>, public WriteRig {
 protected:
  PageWrite() : WriteRig(GetParam().type, {1, GetParam().we}, GetParam().we ^ 0xC0) {}
  std::uint8_t finishedCell(std::uint32_t address) {
    waitUs(20'000);
    return cell(address);
  }
};
INSTANTIATE_TEST_SUITE_P(Parts, PageWrite,
                         testing::Values(PageCase{"28C256", 0x40, 3000, 0x00, 84},
                                         PageCase{"CAT28C256", 0x40, 3000, 0x00, 84},
                                         PageCase{"AT29C256", 0x80, 4000, 0xFF, 137}));

TEST_P(PageWrite, putsTheLoadIntoThePageOfTheLastAddress) {
  write(0x1F85, 0x11);
  load(3, 0x86);
  setAddress(0x4FFF);
  moveWe();
  load({{3, 0x06}, {2, 0x00}, {4, 0x33}});  // /CE falls last: the address
  moveWe();                                 // /WE rises first: the data
  load(4, 0x66);
  waitUs(GetParam().cycleUs - 5);
  EXPECT_EQ(cell(0x4FFF), 0x00);
  waitUs(1);
  EXPECT_EQ(readAt(0x4FC5), 0x11);
  EXPECT_EQ(readAt(0x4FFF), 0x33);
  EXPECT_EQ(cell(0x4FC0), GetParam().notLoaded);
  EXPECT_EQ(cell(0x1F85) | cell(0x4FBF) | cell(0x5000), 0x00);
  EXPECT_TRUE(isClean());
}

TEST_P(PageWrite, losesWhatComesAfterTheLoadWindow) {
  for (const unsigned late : {0U, 1U}) {
    write(0x0000, 0x11);
    waitUs(GetParam().lastWaitUs + 2 * late);  // 1 us before or after the window's end
    write(0x0001 + late, 0x22);
    EXPECT_EQ(finishedCell(0x0000), 0x11);
    EXPECT_EQ(cell(0x0001 + late), late == 0 ? 0x22 : GetParam().notLoaded);
    EXPECT_EQ(count(FindingKind::writeLost), late);
  }
}

TEST_P(PageWrite, protectionRefusesALoadThatNoCommandOpened) {
  command(0x5555, 0x5555, 0xA0);
  write(0x0100, 0x11);
  EXPECT_EQ(finishedCell(0x0100), 0x11);
  write(0x0101, 0x22);
  waitUs(1000);
  EXPECT_EQ(readAt(0x0101) & 0x80, 0x80) << "busy all the same: the complement";
  EXPECT_EQ(finishedCell(0x0101), GetParam().notLoaded);
}

TEST_P(PageWrite, nothingIsWrittenWithoutSupplyOrWithOutputsOn) {
  write(0x0000, 0x11);
  load({{3, 0x04}, {3, 0x46}, {0, 0x00}});  // the supply goes during the load
  moveWe();
  moveWe();
  EXPECT_EQ(finishedCell(0x0000), 0x00);
  EXPECT_EQ(count(FindingKind::strobeWithOutputEnabled), 1U);
  EXPECT_EQ(read({{0, 0x10}}), 0xFF);  // VPP on pin 1
  EXPECT_EQ(count(FindingKind::overVoltage), 1U);
}

TEST(PageWriteMemory, CAT28C257HasPagesOf128BytesAndWeakCellsNeedMoreCycles) {
  WriteRig rig("CAT28C257", {1, 0x40}, 0x80);
  rig.board.fitWeakCell(0x4FFF, 2);
  for (const auto& [sent, last] :
       std::initializer_list<test::Load>{{0x33, 0x00}, {0x33, 0x33}, {0x44, 0x33}, {0x44, 0x44}}) {
    rig.write(0x1F85, 0x11);
    rig.write(0x4FFF, static_cast<std::uint8_t>(sent));
    rig.waitUs(3000);
    EXPECT_EQ(rig.cell(0x4FFF), last);
  }
  EXPECT_EQ(rig.cell(0x4F85), 0x11);
  EXPECT_EQ(rig.cell(0x4FC5) | rig.cell(0x1F85), 0x00);
}

class FlashRig : public WriteRig {
 public:
  explicit FlashRig(const char* type) : WriteRig(type, {3, 0x04}, 0x40) {}
  // Address bits 11 to 13 do not count.
  void command(std::uint8_t code) { WriteRig::command(0x3D55, 0x0555, code); }
  void program(std::uint32_t address, std::uint8_t value) {
    command(0xA0);
    write(address, value);
  }
  void erase() {
    command(0x80);
    command(0x10);
  }
};

// The rig holds pin 30 high: A17 of the AM29F020.
constexpr std::uint32_t kA17 = 0x20000;

TEST(ParallelFlash, thatIsProtectedIsBusyForAMomentAndKeepsWhatItHolds) {
  FlashRig rig("AM29F020");
  rig.board.setChip({.writeProtected = true});
  rig.erase();
  EXPECT_EQ(rig.readAt(0) & 0x80, 0x00);  // busy for 100 us
  rig.board.blankChip();
  rig.program(0, 0x11);
  rig.waitUs(100);
  EXPECT_EQ(rig.readAt(0), 0xFF);
}

TEST(ParallelFlash, pulsesACellUntilItHasItsDataOrTheLimitIsReached) {
  FlashRig rig("AM29F020");
  rig.board.blankChip();
  rig.board.fitWeakCell(kA17 | 0x1234, 3);
  rig.board.fitWeakCell(kA17 | 0x1235);
  rig.program(0x1234, 0x3C);  // ends 1 us after /WE rose
  rig.waitUs(19);
  EXPECT_EQ(rig.cell(kA17 | 0x1234), 0xFF);
  rig.waitUs(1);
  EXPECT_EQ(rig.cell(kA17 | 0x1234), 0x3C);
  rig.program(0x1234, 0xF0);  // no reset, and from one to zero alone
  rig.waitUs(20);
  EXPECT_EQ(rig.cell(kA17 | 0x1234), 0x30);
  rig.program(0x1235, 0x3C);
  rig.load({{3, 0x46}, {0, 0x00}});  // /OE low
  rig.waitUs(192);
  EXPECT_EQ(rig.board.dataBus() & 0xA0, 0x80);
  rig.waitUs(1);
  EXPECT_EQ(rig.board.dataBus() & 0xA0, 0xA0);
  rig.load({{0, 0x40}, {3, 0x06}});
  rig.command(0x90);  // only F0h is heard
  EXPECT_EQ((rig.readAt(0) ^ rig.readAt(0)) & 0xE0, 0x40);
  rig.write(0, 0xF0);
  EXPECT_EQ(rig.readAt(0x1235), 0xFF);
}

TEST(ParallelFlash, erasesInItsTimeUnlessItNeverEnds) {
  FlashRig rig("AM29F020");
  rig.board.fitWeakCell(kA17 | 1, 2);
  rig.erase();
  rig.command(0x90);  // while it is busy
  EXPECT_EQ(rig.count(FindingKind::writeLost), 3U);
  rig.waitUs(1'999'998 - 45);
  EXPECT_EQ(rig.cell(0), 0x00);
  rig.waitUs(1);
  EXPECT_EQ(rig.cell(0) << 8 | rig.cell(kA17 | 1), 0xFF00);
  rig.waitUs(2'000'000);
  EXPECT_EQ(rig.cell(kA17 | 1), 0xFF);
  rig.board.setChip({.writeNeverEnds = true});
  rig.erase();
  rig.load({{3, 0x46}, {0, 0x00}});
  rig.waitUs(27'999'992);
  EXPECT_EQ(rig.board.dataBus() & 0xA0, 0x00);
  rig.waitUs(1);
  EXPECT_EQ(rig.board.dataBus() & 0xA0, 0x20);
}

/// A 12 V flash full of 00h with VPP on pin 1, its pulses judged.
class TwelveVoltRig : public WriteRig {
 public:
  explicit TwelveVoltRig(const char* type = "CAT28F020", Model model = Model::kestrel5)
      : WriteRig(type, {3, 0x04}, 0x40, model), vpp_(model == Model::kestrel4 ? 0x24 : 0x20) {
    bench.judgePulses(true);
    setVpp(true);
  }
  void setVpp(bool on) { load(0, static_cast<std::uint8_t>(on ? 0x40 | vpp_ : 0x40)); }
  std::uint8_t shown(std::uint32_t address = 0) {
    setAddress(address);
    load({{3, 0x46}, {0, vpp_}});
    const std::uint8_t value = board.dataBus();
    setVpp(true);
    load(3, 0x06);
    return value;
  }
  /// /WE of the next write rises 15 us after that of the last one, and a wait.
  void program(std::uint32_t address, std::uint8_t value, std::int64_t widthUs = 15) {
    write(0, 0x40);
    write(address, value);
    waitUs(widthUs - 15);
    write(0, 0xC0);
  }
  void erase(int pulses, std::int64_t widthUs, std::uint32_t verified = 0) {
    for (int i = 0; i < pulses; ++i) {
      write(0, 0x20);
      write(0, 0x20);
      waitUs(widthUs - 15);
      write(verified, 0xA0);
    }
  }

 private:
  std::uint8_t vpp_;
};

TEST(TwelveVoltFlash, hearsCommandsWhileItsOwnVoltageStandsOnPin1) {
  TwelveVoltRig rig("CAT28F010", Model::kestrel4);
  rig.write(0, 0x90);
  EXPECT_EQ(rig.shown(0) << 8 | rig.shown(1), 0x31B4);
  rig.write(0, 0xFF);
  rig.write(0, 0xFF);
  EXPECT_EQ(rig.shown(0), 0x00);
  rig.write(0, 0x90);
  rig.setVpp(false);
  rig.write(0, 0x90);
  rig.setVpp(true);
  EXPECT_EQ(rig.shown(0), 0x00);
  EXPECT_TRUE(rig.isClean());
  rig.board.setVppByHand(12'700);
  rig.write(0, 0x90);
  EXPECT_EQ(rig.shown(0), 0x00);
  EXPECT_EQ(rig.found(), "CAT28F010: command with a VPP other than 12 V");
  rig.board.setVppByHand(14'100);
  EXPECT_EQ(rig.shown(0), 0xFF);
  EXPECT_EQ(rig.count(FindingKind::overVoltage), 1U);
}

TEST(TwelveVoltFlash, programsInPulsesAndShowsTheByteSixMicrosecondsLater) {
  TwelveVoltRig rig;
  rig.board.blankChip();
  rig.board.fitWeakCell(kA17 | 0x1235, 25);
  rig.write(0, 0x40);
  rig.write(0x1234, 0x3C);
  rig.load(4, 0x40);
  rig.moveWe();
  rig.moveWe();  // the next set-up ends the pulse after 9 us
  EXPECT_EQ(rig.cell(kA17 | 0x1234), 0xFF);
  rig.write(0x1234, 0x3C);
  rig.load(4, 0xC0);
  rig.moveWe();
  rig.waitUs(1);
  rig.load({{3, 0x46}, {0, 0x20}});  // /WE rises after 10 us, /OE falls 3 us later
  rig.waitUs(1);
  EXPECT_NE(rig.board.dataBus(), 0x3C);
  rig.waitUs(1);
  EXPECT_EQ(rig.board.dataBus(), 0x3C);
  rig.load({{0, 0x60}, {3, 0x06}});
  for (int i = 0; i < 24; ++i) rig.program(0x1235, 0x5A);
  EXPECT_EQ(rig.cell(kA17 | 0x1235), 0xFF);
  rig.program(0x1235, 0x5A);
  EXPECT_EQ(rig.shown(0), 0x5A);  // wherever it is read
  EXPECT_EQ(rig.found(), "CAT28F020: program pulse shorter than 10 us");
  EXPECT_EQ(rig.count(FindingKind::pulseTooShort), 1U);
  rig.program(0x1235, 0x5A);
  EXPECT_EQ(rig.count(FindingKind::tooManyPulses), 1U);
}

// An erase of a part full of 00h needs 475 ms, of a pulse no more than 10.5 ms.
TEST(TwelveVoltFlash, erasesWhenTheTimeOfAllPulsesIsReached) {
  for (const auto& [widthUs, pulses] : {std::pair{9'500, 50}, {20'000, 46}}) {
    TwelveVoltRig rig;
    rig.board.fitWeakCell(kA17 | 0x0042, 2);
    rig.erase(pulses - 1, widthUs, 0x0041);
    EXPECT_EQ(rig.shown(0), 0x00);
    rig.erase(1, widthUs, 0x0041);
    EXPECT_EQ(rig.shown(0), 0xFF);
    rig.erase(1, widthUs, 0x0042);
    EXPECT_EQ(rig.shown(0), 0xFF);
    EXPECT_TRUE(rig.isClean());
    rig.erase(1, widthUs);
    EXPECT_EQ(rig.found(), "CAT28F020: erase pulse after all bytes were FFh");
  }
}

TEST(TwelveVoltFlash, beginsItsEraseAnewAfterAProgramPulse) {
  TwelveVoltRig rig;
  rig.erase(40, 9'500);
  rig.program(0, 0x00);
  rig.erase(10, 9'500);
  EXPECT_EQ(rig.cell(0), 0x00);
  EXPECT_TRUE(rig.isClean());
  rig.board.blankChip();
  rig.program(0, 0x00);
  rig.erase(1, 9'499);
  EXPECT_EQ(rig.found(),
            "CAT28F020: erase begun while not all bytes are 00h; "
            "CAT28F020: erase pulse shorter than 9.5 ms");
  rig.erase(999, 9'500);
  EXPECT_EQ(rig.count(FindingKind::tooManyPulses), 0U);
  rig.erase(1, 9'500);
  EXPECT_EQ(rig.count(FindingKind::tooManyPulses), 1U);
  rig.setVpp(false);
  rig.setVpp(true);
  rig.erase(1, 9'500);
  EXPECT_EQ(rig.count(FindingKind::tooManyPulses), 1U);  // another run
}

}  // namespace
}  // namespace kestrel::sim
