// What the five EPROM routines say to the board, latch load by latch load. The values are worked
// out by hand from the wiring: latch 3 bit 7 /CE, bit 6 data latch off, bit 2 pin 31; latch 0 bit 7
// VPP on pin 24, bit 6 /OE, bits 5 and 4 VPP on pins 1 and 3, bit 3 the board's lamp.

#include <gtest/gtest.h>

#include "support/unit_rig.h"

namespace kestrel::test {
namespace {

using Routine = void (EpromProgrammer::*)();

struct PulseCase {
  const char* name;
  Routine routine;
  std::int16_t reg1Fixed;
  std::int16_t reg3Fixed;
  const char* subCode;
  std::vector<std::uint8_t> answers;  ///< what is read back: the byte is right after one pulse
  const char* expected;
};

void PrintTo(const PulseCase& pulse, std::ostream* stream) { *stream << pulse.name; }

class OneByte : public testing::TestWithParam<PulseCase> {};

TEST_P(OneByte, isLatchedPulsedAndReadBack) {
  const PulseCase& pulse = GetParam();
  UnitRig rig;
  rig.state.FamilySubCode = pulse.subCode;
  rig.state.VppVolts = 12;
  rig.state.DelayCountB = 700;
  rig.state.DelayCountA = 3000;
  rig.image({0x5A});
  rig.start(pulse.reg1Fixed, pulse.reg3Fixed);
  rig.port.answer(pulse.answers);
  (rig.eprom.*pulse.routine)();
  EXPECT_EQ(rig.traffic(), pulse.expected);
  EXPECT_EQ(rig.log(), std::vector<std::string>{"Programming Started... Wait "});
  EXPECT_EQ(rig.state.ProgramFailed, 0);
}

// One line: set-up, what comes before the first pulse, the pulse, the read-back, the lamp.
INSTANTIATE_TEST_SUITE_P(
    Routines, OneByte,
    testing::Values(PulseCase{"P2732",
                              &EpromProgrammer::P2732,
                              0x20,
                              0x00,
                              "1",
                              {0xFF, 0x5A},
                              "3=80 3=80 0=40 0=48 0=08 "
                              "1=20 2=00 3=80 0=08 0=08 3=00 4=FF spin=10 3=40 spin=10 lo hi 3=C0 "
                              "1=20 2=00 3=C0 "
                              "4=5A 3=80 3=80 0=C8 3=00 sleep=5 3=80 0=08 3=00 spin=20 "
                              "4=FF spin=10 3=40 spin=10 lo hi 0=00"},
                    PulseCase{"P2764_128",
                              &EpromProgrammer::P2764_128,
                              0xC0,
                              0x02,
                              "2",
                              {0x5A},
                              "3=82 3=82 0=40 0=58 "
                              "1=C0 2=00 3=82 3=02 "
                              "3=02 4=5A 1=80 spin=700 1=C0 spin=20 "
                              "0=18 4=FF spin=10 3=42 spin=10 lo hi 0=58 0=50 3=C2"},
                    PulseCase{"P27256_040",
                              &EpromProgrammer::P27256_040,
                              0x80,
                              0x02,
                              "4",
                              {0x5A},
                              "3=82 3=82 0=40 0=58 "
                              "1=80 2=00 3=82 "
                              "3=82 4=5A 3=82 0=58 3=02 spin=700 3=82 spin=20 "
                              "0=18 4=FF spin=10 3=C2 spin=10 lo hi 0=58 0=50"},
                    PulseCase{"P27080",
                              &EpromProgrammer::P27080,
                              0x00,
                              0x02,
                              "5",
                              {0xFF, 0x5A},
                              "3=82 3=82 0=40 0=48 0=08 "
                              "1=00 2=00 3=82 3=02 4=FF spin=10 3=42 spin=10 lo hi 3=C2 "
                              "3=82 4=5A 0=C8 3=02 spin=700 3=82 0=08 3=02 spin=20 "
                              "4=FF spin=10 3=42 spin=10 lo hi 0=00"},
                    PulseCase{"P27010_020",
                              &EpromProgrammer::P27010_020,
                              0x00,
                              0x0C,
                              "6",
                              {0x5A},
                              "3=8C 3=0C 0=40 0=68 "
                              "1=00 2=00 3=0C "
                              "3=0C 4=5A 3=08 spin=700 3=0C spin=20 "
                              "0=28 4=FF spin=10 3=4C spin=10 lo hi 0=68 0=60"}));

struct SetUpCase {
  Routine routine;
  int model;
  const char* subCode;
  std::int16_t vppClass;
  std::int16_t vppVolts;
  const char* latch0;  ///< every load of latch 0 before the first address
  bool waits;
};

TEST(EpromSetUp, loadsLatch0ByModelAndVoltage) {
  constexpr Routine k2732 = &EpromProgrammer::P2732;
  constexpr Routine k2764 = &EpromProgrammer::P2764_128;
  constexpr Routine k27256 = &EpromProgrammer::P27256_040;
  constexpr Routine k27080 = &EpromProgrammer::P27080;
  constexpr Routine k27010 = &EpromProgrammer::P27010_020;
  const SetUpCase cases[]{
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
  for (const SetUpCase& c : cases) {
    UnitRig rig(c.model == 7 ? 5 : c.model);
    rig.start(0x20, 0x02);
    rig.state.KestrelModel = static_cast<std::int16_t>(c.model);
    rig.state.FamilySubCode = c.subCode;
    rig.state.VppClass = c.vppClass;
    rig.state.VppVolts = c.vppVolts;
    (rig.eprom.*c.routine)();
    const auto events = rig.events();
    SCOPED_TRACE(std::string(c.subCode) + " on model " + std::to_string(c.model) + " at " +
                 std::to_string(c.vppVolts) + " V");
    EXPECT_EQ(loadsOf(0, events), c.latch0);
    EXPECT_EQ(countOf(BoardEvent::Kind::Sleep, 1500, events), c.waits ? 1 : 0);
    EXPECT_EQ(rig.log().front(),
              c.waits ? "Wait 1500ms second VPP Settling" : "Programming Started... Wait ");
  }
}

// FFh costs no bus cycle at all; a 24-pin or /OE-VPP part is read first, and what it holds already
// is passed over.
TEST(EpromSkipRules, passOverErasedBytesAndWhatIsThere) {
  for (const Routine routine :
       {&EpromProgrammer::P2764_128, &EpromProgrammer::P27256_040, &EpromProgrammer::P27010_020}) {
    UnitRig rig;
    rig.image({0xFF, 0xFF, 0x5A, 0xFF});
    rig.start(0, 0x0C);
    rig.port.answer({0x5A});
    (rig.eprom.*routine)();
    EXPECT_EQ(loadsOf(2, rig.events()), "02");
    EXPECT_EQ(loadsOf(4, rig.events()), "5A FF");
  }
  for (const Routine routine : {&EpromProgrammer::P2732, &EpromProgrammer::P27080}) {
    UnitRig rig;
    rig.image({0xFF, 0x11, 0x22});
    rig.start(0, 0x02);
    rig.port.answer({0x00, 0x11, 0x2F, 0x22});
    (rig.eprom.*routine)();
    EXPECT_EQ(loadsOf(2, rig.events()),
              routine == &EpromProgrammer::P2732 ? "00 01 02 02" : "00 01 02");
    EXPECT_EQ(loadsOf(4, rig.events()), "FF FF FF 22 FF");
  }
}

TEST(EpromLamp, blinksAt64Or512Or1024Addresses) {
  const std::pair<Routine, int> cases[]{{&EpromProgrammer::P2732, 33},
                                        {&EpromProgrammer::P2764_128, 5},
                                        {&EpromProgrammer::P27256_040, 5},
                                        {&EpromProgrammer::P27080, 3},
                                        {&EpromProgrammer::P27010_020, 5}};
  for (const auto& [routine, blinks] : cases) {
    UnitRig rig;
    rig.image(std::vector<std::uint8_t>(2049, 0xFF));
    rig.start(0, 0x0C);
    rig.port.thereafter = 0xFF;
    (rig.eprom.*routine)();
    int changes = -1;  // the set-up switches the lamp on
    long lamp = 0;
    for (const BoardEvent& event : rig.events()) {
      if (event.kind != BoardEvent::Kind::Load || event.latch != 0) continue;
      changes += (event.value & 0x08) != lamp;
      lamp = event.value & 0x08;
    }
    EXPECT_EQ(changes, blinks);
    EXPECT_EQ(rig.controls.Program_label.colour(),
              blinks % 2 == 1 ? Colour::Green : Colour::ButtonFace);
  }
}

TEST(EpromPulses, are55ShortAnd199LongOnAByteThatNeverTakes) {
  for (const Routine routine : {&EpromProgrammer::P2764_128, &EpromProgrammer::P27256_040,
                                &EpromProgrammer::P27080, &EpromProgrammer::P27010_020}) {
    UnitRig rig;
    rig.state.DelayCountB = 700;
    rig.state.DelayCountA = 3000;
    rig.image({0x5A, 0x5B});
    rig.start(0, 0x0E);
    rig.port.thereafter = 0x7B;
    (rig.eprom.*routine)();
    std::string widths;
    for (const BoardEvent& event : rig.events()) {
      if (event.kind != BoardEvent::Kind::Spin) continue;
      if (event.value == 700) widths += 's';
      if (event.value == 3000) widths.back() = 'L';  // on top of the short one
    }
    EXPECT_EQ(widths, std::string(55, 's') + std::string(199, 'L'));
    EXPECT_EQ(rig.log()[2], "*** Address:0h, Programming BYTE:5Ah, Read BYTE:7Bh");
    EXPECT_EQ(rig.state.ProgramFailed, 1);
  }
}

}  // namespace
}  // namespace kestrel::test
