// What the five EPROM routines say to the board, latch load by latch load. The values are worked
// out by hand from the wiring: latch 3 bit 7 /CE, bit 6 data latch off, bit 2 pin 31; latch 0 bit 7
// VPP on pin 24, bit 6 /OE, bits 5 and 4 VPP on pins 1 and 3, bit 3 the board's lamp.

#include <gtest/gtest.h>

#include "support/unit_rig.h"

namespace kestrel::test {
namespace {

using Routine = void (operations::EpromProgrammer::*)();
using Bytes = std::vector<std::uint8_t>;

constexpr Routine k2732 = &operations::EpromProgrammer::P2732;
constexpr Routine k2764 = &operations::EpromProgrammer::P2764_128;
constexpr Routine k27256 = &operations::EpromProgrammer::P27256_040;
constexpr Routine k27080 = &operations::EpromProgrammer::P27080;
constexpr Routine k27010 = &operations::EpromProgrammer::P27010_020;

/// An image in place, and the counts of the short and the long pulse.
struct EpromRig : UnitRig {
  EpromRig(const Bytes& bytes, std::int16_t reg1Fixed, std::int16_t reg3Fixed) {
    state.DelayCountB = 700;
    state.DelayCountA = 3000;
    setImage(bytes);
    start(reg1Fixed, reg3Fixed);
  }
};

// One line of text: set-up, what comes before the first pulse, the pulse, the read-back, the lamp.
TEST(EpromRoutine, latchesPulsesAndReadsBackOneByte) {
  struct Case {
    Routine routine;
    const char* subCode;
    std::int16_t reg1Fixed, reg3Fixed;
    Bytes answers;  ///< what is read back: the byte is right after one pulse
    const char* expected;
  };
  // clang-format off
  const Case cases[]{
      {k2732, "1", 0x20, 0x00, {0xFF, 0x5A},
       "3=80 3=80 0=40 0=48 0=08 "
       "1=20 2=00 3=80 0=08 0=08 3=00 4=FF spin=10 3=40 spin=10 lo hi 3=C0 1=20 2=00 3=C0 "
       "4=5A 3=80 3=80 0=C8 3=00 sleep=5 3=80 0=08 3=00 spin=20 "
       "4=FF spin=10 3=40 spin=10 lo hi 0=00"},
      {k2764, "2", 0xC0, 0x02, {0x5A},
       "3=82 3=82 0=40 0=58 1=C0 2=00 3=82 3=02 3=02 4=5A 1=80 spin=700 1=C0 spin=20 "
       "0=18 4=FF spin=10 3=42 spin=10 lo hi 0=58 0=50 3=C2"},
      {k27256, "4", 0x80, 0x02, {0x5A},
       "3=82 3=82 0=40 0=58 1=80 2=00 3=82 3=82 4=5A 3=82 0=58 3=02 spin=700 3=82 spin=20 "
       "0=18 4=FF spin=10 3=C2 spin=10 lo hi 0=58 0=50"},
      {k27080, "5", 0x00, 0x02, {0xFF, 0x5A},
       "3=82 3=82 0=40 0=48 0=08 1=00 2=00 3=82 3=02 4=FF spin=10 3=42 spin=10 lo hi 3=C2 "
       "3=82 4=5A 0=C8 3=02 spin=700 3=82 0=08 3=02 spin=20 "
       "4=FF spin=10 3=42 spin=10 lo hi 0=00"},
      {k27010, "6", 0x00, 0x0C, {0x5A},
       "3=8C 3=0C 0=40 0=68 1=00 2=00 3=0C 3=0C 4=5A 3=08 spin=700 3=0C spin=20 "
       "0=28 4=FF spin=10 3=4C spin=10 lo hi 0=68 0=60"},
  };
  // clang-format on
  for (const Case& c : cases) {
    EpromRig rig({0x5A}, c.reg1Fixed, c.reg3Fixed);
    rig.state.FamilyCode = std::string("P") + c.subCode;
    rig.state.VppVolts = 12;
    rig.port.answer(c.answers);
    (rig.eprom.*c.routine)();
    EXPECT_EQ(rig.traffic(), c.expected);
    EXPECT_EQ(rig.log(), std::vector<std::string>{"Programming Started... Wait "});
    EXPECT_EQ(rig.state.ProgramFailed, 0);
  }
}

TEST(EpromSetUp, loadsLatch0ByModelAndVoltage) {
  struct Case {
    Routine routine;
    int model;
    const char* subCode;
    std::int16_t vppClass, vppVolts;
    const char* latch0;  ///< every load of latch 0 before the first address
    bool waits;
  };
  const Case cases[]{
      {k2732, 4, "1", 3, 12, "40 4C 0C", false},  {k2732, 4, "1", 3, 25, "40 4C 0C", true},
      {k2732, 5, "1", 1, 12, "40 48 08", false},  {k2732, 5, "1", 3, 21, "40 4A 0A", true},
      {k2732, 6, "1", 3, 25, "40 4B 0B", true},   {k2732, 5, "1", 1, 25, "40 48 08", true},
      {k2732, 7, "1", 3, 21, "40 40 00", true},   {k2764, 4, "2", 3, 21, "40 5C", true},
      {k2764, 5, "2", 3, 12, "40 58", false},     {k2764, 6, "2", 3, 21, "40 5A", true},
      {k2764, 5, "2", 3, 25, "40 5B", true},      {k2764, 6, "2", 1, 21, "40 58", true},
      {k2764, 7, "2", 3, 21, "40 50", true},      {k27256, 4, "4", 1, 12, "40 5C", false},
      {k27256, 5, "4", 3, 25, "40 58", false},    {k27256, 4, "8", 1, 12, "40 6C", false},
      {k27256, 6, "8", 1, 12, "40 68", false},    {k27256, 5, "5", 1, 12, "40 48", false},
      {k27256, 7, "4", 1, 12, "40 40", false},    {k27080, 4, "5", 1, 12, "40 4C 0C", false},
      {k27080, 6, "9", 1, 25, "40 48 08", false}, {k27010, 4, "6", 1, 12, "40 6C", false},
      {k27010, 5, "7", 3, 25, "40 68", false},    {k27010, 7, "6", 1, 12, "40 40", false},
  };
  for (const Case& c : cases) {
    UnitRig rig(c.model == 7 ? 5 : c.model);
    rig.start(0x20, 0x02);
    rig.state.KestrelModel = static_cast<std::int16_t>(c.model);
    rig.state.FamilyCode = std::string("P") + c.subCode;
    rig.state.VppClass = c.vppClass;
    rig.state.VppVolts = c.vppVolts;
    rig.port.onSleep = [&rig] { EXPECT_EQ(rig.log().size(), 1U) << "the wait is announced"; };
    (rig.eprom.*c.routine)();
    const auto events = rig.events();
    EXPECT_EQ(joined(valuesOf("0=", events)), c.latch0) << c.subCode << " on model " << c.model;
    EXPECT_EQ(std::ranges::count(events, "sleep=1500"), c.waits ? 1 : 0);
    EXPECT_EQ(rig.log().front(),
              c.waits ? "Wait 1500ms second VPP Settling" : "Programming Started... Wait ");
  }
}

// FFh costs no bus cycle at all; a 24-pin or /OE-VPP part is read first, and what it holds already
// is passed over.
TEST(EpromSkipRules, passOverErasedBytesAndWhatIsThere) {
  struct Case {
    Routine routine;
    Bytes image, answers;
    const char *latch2, *latch4;
  };
  const Case cases[]{
      {k2764, {0xFF, 0xFF, 0x5A, 0xFF}, {0x5A}, "02", "5A FF"},
      {k27256, {0xFF, 0xFF, 0x5A, 0xFF}, {0x5A}, "02", "5A FF"},
      {k27010, {0xFF, 0xFF, 0x5A, 0xFF}, {0x5A}, "02", "5A FF"},
      {k2732, {0xFF, 0x11, 0x22}, {0, 0x11, 0x2F, 0x22}, "00 01 02 02", "FF FF FF 22 FF"},
      {k27080, {0xFF, 0x11, 0x22}, {0, 0x11, 0x2F, 0x22}, "00 01 02", "FF FF FF 22 FF"},
  };
  for (const Case& c : cases) {
    EpromRig rig(c.image, 0, 0x0E);
    rig.port.answer(c.answers);
    (rig.eprom.*c.routine)();
    EXPECT_EQ(joined(valuesOf("2=", rig.events())), c.latch2);
    EXPECT_EQ(joined(valuesOf("4=", rig.events())), c.latch4);
  }
}

TEST(EpromPulses, are55ShortAnd199LongOnAByteThatNeverTakes) {
  for (const Routine routine : {k2764, k27256, k27080, k27010}) {
    EpromRig rig({0x5A, 0x5B}, 0, 0x0E);
    rig.port.thereafter = 0x7B;
    (rig.eprom.*routine)();
    std::string widths;
    for (const std::string& counts : valuesOf("spin=", rig.events())) {
      if (counts == "700") widths += 's';
      if (counts == "3000") widths.back() = 'L';  // on top of the short one
    }
    EXPECT_EQ(widths, std::string(55, 's') + std::string(199, 'L'));
    EXPECT_EQ(rig.log()[2], "*** Address:0h, Programming BYTE:5Ah, Read BYTE:7Bh");
    EXPECT_EQ(rig.state.ProgramFailed, 1);
  }
}

}  // namespace
}  // namespace kestrel::test
