// What goes wrong on the bench: the report, the alert, the board left without voltages, and the
// next command that works once the alert is dismissed.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "driver/prepared_form.h"

namespace kestrel::test {
namespace {

using testing::ElementsAre;

/// A page, a byte in the middle and the last byte; D3 is high in the first byte.
Bytes imageOf27C64() {
  Bytes image(8192, 0xFF);
  const Bytes page = randomBytes(256, 9);
  std::copy(page.begin(), page.end(), image.begin());
  image[0] = 0xFE;
  image[1] = 0xF7;
  image[0x1000] = image[0x1FFF] = 0x0F;
  return image;
}

struct Failing : PreparedForm {
  explicit Failing(const std::string& chip = "27C64")
      : PreparedForm(chip, "Eprom " + chip, imageOf27C64()) {}
};

template <int address>
void weaken(Failing& s) {
  s.board->fitWeakCell(address);
}
void renew(Failing& s) { s.insert("27C64"); }

struct Fault {
  const char* name;
  const char* chip;
  void (*fit)(Failing&);
  const char* report;
  void (*mend)(Failing&);
  unsigned wrongVpp = 0;  ///< pulses at a wrong voltage
};

// clang-format off
const Fault kFaults[]{
    {"WeakFirstCell", "27C64", weaken<0>,
     "*** Address:0h, Programming BYTE:FEh, Read BYTE:FFh", renew},
    {"WeakMiddleCell", "27C64", weaken<0x1000>,
     "*** Address:1000h, Programming BYTE:Fh, Read BYTE:FFh", renew},
    {"WeakLastCell", "27C64", weaken<0x1FFF>,
     "*** Address:1FFFh, Programming BYTE:Fh, Read BYTE:FFh", renew},
    // 21 V, but 12.5 V is what a selection offers first.
    {"WrongVpp", "2764", [](Failing&) {},
     "*** Address:0h, Programming BYTE:FEh, Read BYTE:FFh",
     [](Failing& s) { s.rig.controls.Voltage_button[2].press(); }, 254},
    {"EmptySocket", "27C64", [](Failing& s) { (void)s.board->takeOut(); },
     "*** Address:0h, Programming BYTE:FEh, Read BYTE:FFh", renew},
    {"StuckDataLine", "27C64", [](Failing& s) { s.board->stickDataLine(3, true); },
     "*** Address:1h, Programming BYTE:F7h, Read BYTE:FFh",
     [](Failing& s) { s.board->freeDataLines(); }},
    {"NotBlank", "27C64",
     [](Failing& s) {
       Bytes contents(8192, 0xFF);
       contents[0x123] = 0x7F;
       contents[0x200] = 0x00;
       s.board->loadChip(contents);
       s.rig.controls.CheckBlankPriorProgramming.press();
     },
     "Address: 123 ][ Device Data: 7F", [](Failing&) {}},
    {"Unplugged", "27C64", [](Failing& s) { s.bench.unplugAfter(5000); },
     "*** Programming Failure ***",
     [](Failing& s) {
       s.bench.unplugAfter(1U << 30U);
       s.board = &s.bench.plug(sim::Model::kestrel5, 0x378);
       s.insert("27C64");
     }},
};
// clang-format on

class EveryFault : public testing::TestWithParam<Fault> {};

TEST_P(EveryFault, isReportedLeavesNoVoltageAndIsMended) {
  const Fault& fault = GetParam();
  Failing s(fault.chip);
  fault.fit(s);
  s.rig.program();
  EXPECT_TRUE(s.rig.logged(fault.report)) << s.rig.log().back();
  EXPECT_EQ(s.bench.findings().count(sim::FindingKind::wrongVpp), fault.wrongVpp);
  EXPECT_EQ(s.rig.state.RegShadow0, 0x40);  // said to the port, if nobody heard it
  EXPECT_EQ(s.rig.controls.Error_label.colour(), Colour::Red);
  EXPECT_FALSE(s.rig.controls.Read_button.enabled() || s.rig.press("Program_button"));
  s.rig.clearLog();
  s.rig.program("menuProgramCode");  // the question, and nothing more
  EXPECT_THAT(s.rig.log(), ElementsAre("Programming Button Pressed"));
  EXPECT_TRUE(s.rig.press("Error_label"));
  fault.mend(s);
  s.board->blankChip();
  EXPECT_TRUE(s.rig.program());
  EXPECT_EQ(s.rig.log().back(), "Programming Device Successfull");
  EXPECT_TRUE(s.chipContents() == s.image);
  EXPECT_EQ(s.board->latch(0), 0x40);
}

INSTANTIATE_TEST_SUITE_P(Faults, EveryFault, testing::ValuesIn(kFaults),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(ProgramFailure, leavesWhatWasWrittenBefore) {
  Failing s;
  s.board->fitWeakCell(0x1000);
  s.rig.program();
  auto written = s.image;
  written[0x1000] = written[0x1FFF] = 0xFF;
  EXPECT_EQ(s.chipContents(), written);
}

TEST(VerifyMismatch, namesTheByteAndStartsAgainFrom0) {
  Failing s;
  auto contents = s.image;
  contents[0x2A] = static_cast<std::uint8_t>(~s.image[0x2A]);
  s.board->loadChip(contents);
  for (int round = 0; round < 2; ++round) {
    s.rig.clearLog();
    EXPECT_TRUE(s.rig.press("Verify_button"));
    EXPECT_TRUE(s.rig.log()[3].starts_with("Address: 2A ][ Buffer Data: "));
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
  EXPECT_EQ(s.board->latch(0), 0x40);
}

}  // namespace
}  // namespace kestrel::test
