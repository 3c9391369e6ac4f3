// What goes wrong on the bench: the report, the alert, the board left without voltages, and the
// next command that works once the alert is dismissed.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/board_trace.h"
#include "support/form_rig.h"

namespace kestrel::test {
namespace {

using testing::ElementsAre;

/// A blank 27C64 with an image of one random page and its last byte set.
struct Failing : SimulatedForm {
  explicit Failing(const char* chip = "27C64", const char* device = "Eprom 27C64") {
    start();
    insert(chip);
    rig.select(device);
    image.assign(board->chip()->contents().size(), 0xFF);
    const auto page = randomBytes(256, 9);
    std::copy(page.begin(), page.end(), image.begin());
    image.back() = 0x0F;
    rig.openImage(image);
    rig.clearLog();
    trace.str("");
  }
  [[nodiscard]] bool isAlerted() const {
    return rig.controls.Error_label.colour() == Colour::Red && !rig.controls.Read_button.enabled();
  }
  /// After the fault is mended the same command succeeds.
  void expectRecovery(const char* button = "Program_button") {
    EXPECT_TRUE(isAlerted());
    EXPECT_FALSE(rig.press("Program_button"));
    EXPECT_TRUE(rig.press("Error_label"));
    EXPECT_EQ(rig.log().back(), "Error Alert was Turned Off");
    EXPECT_EQ(board->latch(0), 0x40);
    board->blankChip();
    rig.clearLog();
    EXPECT_TRUE(rig.program(button));
    EXPECT_EQ(rig.log().back(), "Programming Device Successfull");
    EXPECT_TRUE(chipContents() == image);
    EXPECT_EQ(board->latch(0), 0x40);
  }

  std::vector<std::uint8_t> image;
};

TEST(WeakCell, getsExactly254PulsesWhereverItIs) {
  for (const auto& [address, text] : {std::pair{0, "0"}, {0x1000, "1000"}, {0x1FFF, "1FFF"}}) {
    Failing s;
    s.image[static_cast<std::size_t>(address)] = 0x0F;
    s.rig.openImage(s.image);
    s.board->fitWeakCell(static_cast<std::uint32_t>(address));
    s.rig.clearLog();
    s.trace.str("");
    s.rig.program();
    EXPECT_THAT(
        s.rig.log(),
        ElementsAre("Programming Button Pressed", "Programming Started... Wait ",
                    "*** Programming Failure ***",
                    "*** Address:" + std::string(text) + "h, Programming BYTE:Fh, Read BYTE:FFh",
                    "*** Aborting Programming - Click on [ERROR] Indicator to Reset"));
    // At the start value of the slider: 40,002 counts, and 200,002 more from the 56th pulse on.
    const auto events = boardEvents(s.trace.str(), 5, 102);
    EXPECT_EQ(countOf(BoardEvent::Kind::Spin, 200002, events), 199);
    const auto before = std::count_if(s.image.begin(), s.image.begin() + address,
                                      [](std::uint8_t byte) { return byte != 0xFF; });
    EXPECT_EQ(countOf(BoardEvent::Kind::Spin, 40002, events), 254 + before);
    EXPECT_EQ(s.board->latch(0), 0x40);
    EXPECT_THAT(s.rig.sounds.played.back(), "error.wav");
    std::vector<std::uint8_t> written(s.image.begin(), s.image.begin() + address);
    written.resize(s.image.size(), 0xFF);
    EXPECT_EQ(s.chipContents(), written);
    s.insert("27C64");
    s.expectRecovery();
  }
}

TEST(WrongVpp, isAFailureAndAFindingButNothingIsWritten) {
  Failing s("2764", "Eprom 2764");  // 21 V, but 12.5 V is what a selection offers first
  s.bench.findings().clear();
  s.rig.program();
  EXPECT_TRUE(s.rig.logged("*** Programming Failure ***"));
  EXPECT_EQ(s.bench.findings().count(sim::FindingKind::wrongVpp), 254U);
  EXPECT_THAT(s.chipContents(), testing::Each(0xFF));
  s.rig.controls.Voltage_button[2].press();
  EXPECT_EQ(s.rig.state.VppVolts, 21);
  s.expectRecovery();
}

TEST(BlankCheck, tellsTheFirstByteAndStopsProgramming) {
  Failing s;
  auto contents = std::vector<std::uint8_t>(8192, 0xFF);
  contents[0x123] = 0x7F;
  contents[0x200] = 0x00;
  s.board->loadChip(contents);
  s.rig.controls.CheckBlankPriorProgramming.press();
  s.rig.program();
  EXPECT_THAT(
      s.rig.log(),
      ElementsAre("Programming Button Pressed", "Checking Device for BLANK (Erased)... Wait",
                  "Device IS NOT BLANK (ERASED)", "Address: 123 ][ Device Data: 7F",
                  "Click on [ERROR] alert to Reset the Situation"));
  EXPECT_EQ(s.chipContents(), contents);
  EXPECT_EQ(s.board->latch(0), 0x40);
  s.rig.clearLog();
  // From the menu while the alert is up: the question, and nothing more.
  EXPECT_TRUE(s.rig.program("menuProgramCode"));
  EXPECT_THAT(s.rig.log(), ElementsAre("Programming Button Pressed"));
  EXPECT_EQ(s.chipContents(), contents);
  s.expectRecovery();
}

TEST(EmptySocket, failsAtTheFirstByte) {
  Failing s;
  auto chip = s.board->takeOut();
  s.rig.program();
  EXPECT_TRUE(s.rig.log()[3].starts_with("*** Address:0h, Programming BYTE:"));
  EXPECT_TRUE(s.rig.log()[3].ends_with("h, Read BYTE:FFh"));
  s.board->insert(std::move(chip));
  s.expectRecovery();
}

TEST(StuckDataLine, failsAtTheFirstByteThatShowsIt) {
  Failing s;
  s.image[0] = 0xFE;  // the line is high here anyhow
  s.image[1] = 0xF7;
  s.rig.openImage(s.image);
  s.board->stickDataLine(3, true);
  s.rig.clearLog();
  s.rig.program();
  EXPECT_EQ(s.rig.log()[3], "*** Address:1h, Programming BYTE:F7h, Read BYTE:FFh");
  s.board->freeDataLines();
  s.expectRecovery();
}

TEST(Unplugged, inMidProgrammingFailsAtTheByteItHas) {
  Failing s;
  s.bench.unplugAfter(5000);
  s.rig.program();
  EXPECT_TRUE(s.rig.logged("*** Programming Failure ***"));
  EXPECT_TRUE(s.isAlerted());
  // Everything off was said to the port, if nobody heard it.
  EXPECT_EQ(s.rig.state.RegShadow0, 0x40);
  s.bench.unplugAfter(1U << 30U);
  s.board = &s.bench.plug(sim::Model::kestrel5, 0x378);
  s.insert("27C64");
  s.expectRecovery();
}

TEST(VerifyMismatch, namesTheByteAndStartsAgainFrom0) {
  Failing s;
  auto contents = s.image;
  contents[0x2A] = static_cast<std::uint8_t>(~s.image[0x2A]);
  s.board->loadChip(contents);
  for (int round = 0; round < 2; ++round) {
    s.rig.clearLog();
    EXPECT_TRUE(s.rig.press("Verify_button"));
    EXPECT_EQ(s.rig.log()[2], "Device Memory DOES NOT VERIFY with Buffer Contents");
    EXPECT_TRUE(s.rig.log()[3].starts_with("Address: 2A ][ Buffer Data: "));
    EXPECT_EQ(s.rig.controls.Verify_button.colour(), Colour::ButtonFace);
    EXPECT_EQ(s.board->latch(0), 0x40);
    s.rig.press("Error_label");
  }
  s.board->loadChip(s.image);
  EXPECT_TRUE(s.rig.press("Verify_button"));
  EXPECT_TRUE(s.rig.logged("Device Contents MATCHES with Buffer Contents"));
}

TEST(UnsupportedFamily, isReportedAsStatus9) {
  Failing s;
  s.rig.state.FamilyCode = "PM";
  s.rig.program();
  EXPECT_THAT(s.rig.log(), ElementsAre("Programming Button Pressed",
                                       "Device Not Supported - Status 9 - Please Report"));
  EXPECT_FALSE(s.isAlerted());
  EXPECT_EQ(s.board->latch(0), 0x40);
}

}  // namespace
}  // namespace kestrel::test
