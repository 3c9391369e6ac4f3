#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <random>
#include <string>

#include "link/adapter_rig.h"
#include "link/frame.h"
#include "link/link_error.h"

// The adapter as the guard of the board: what it does when nobody tells it what to do.
namespace kestrel::link {
namespace {

using test::AdapterRig;
using test::EmulatedAdapter;
using Bytes = std::vector<std::uint8_t>;
using Cycles = EmulatedAdapter::Cycles;

constexpr Cycles kMs = EmulatedAdapter::kCyclesPerMs;
constexpr std::array kModels{sim::Model::kestrel4, sim::Model::kestrel5, sim::Model::kestrel6};

// Start, head, length, two latch loads, check.
constexpr std::size_t kDamagedBlockBytes = 9;

/// How many random moments a case tries; KESTREL_LINK_MOMENTS=100 for the long run.
int moments() {
  const char* const asked = std::getenv("KESTREL_LINK_MOMENTS");
  return asked != nullptr ? std::atoi(asked) : 6;
}

/// Runs until no voltage is on; the milliseconds that took, or a thousand.
double msUntilOff(AdapterRig& rig) {
  const Cycles start = rig.adapter.now();
  const auto passed = [&] { return static_cast<double>(rig.adapter.now() - start) / kMs; };
  while (rig.isAnyVoltageOn() && passed() < 1000) rig.adapter.runFor(kMs / 10);
  return passed();
}

/// A 50 ms pulse with all voltages on, left at a random moment: its block may still be on the line,
/// the pulse may be running or over.
void startPulse(AdapterRig& rig, std::mt19937& random) {
  rig.switchVoltagesOn();
  rig.load(3, 0x46);
  rig.connection.waitCounts(50 * 40'000);
  rig.load(3, 0xC6);
  rig.connection.flush();
  rig.adapter.runFor(random() % (60 * kMs));
}

void sendWrongCheckValue(AdapterRig& rig) {
  auto block = frameBlock(BlockKind::Operations, 3, Bytes{0x05});
  block.back() ^= 0x01;
  rig.line.write(block);
}

struct Mishap {
  const char* name;
  void (*happens)(AdapterRig&);
  double offWithinMs;
};
constexpr Mishap kMishaps[]{
    {"theProgramIsGone", [](AdapterRig&) {}, 600},
    {"theLineIsPulled", [](AdapterRig& rig) { rig.adapter.pullLine(); }, 600},
    {"aReset", [](AdapterRig& rig) { rig.adapter.reset(); }, 0.2},
    {"aStop", [](AdapterRig& rig) { rig.connection.stop(); }, 0.2},
    {"aWrongCheckValue", sendWrongCheckValue, 600},
    {"itsProgramHangs", [](AdapterRig& rig) { rig.adapter.hang(); }, 300},
};

class GuardAfter : public testing::TestWithParam<Mishap> {};

TEST_P(GuardAfter, switchesOffInTime) {
  std::mt19937 random(20261121);
  double longest = 0;
  for (int i = 0; i < moments(); ++i) {
    AdapterRig rig(kModels.at(static_cast<std::size_t>(i) % kModels.size()));
    rig.connect();
    startPulse(rig, random);
    ASSERT_TRUE(rig.isAnyVoltageOn());
    GetParam().happens(rig);
    const double ms = msUntilOff(rig);
    EXPECT_LE(ms, GetParam().offWithinMs) << "moment " << i;
    EXPECT_TRUE(rig.isOff());
    longest = std::max(longest, ms);
  }
  RecordProperty("longestMs", std::to_string(longest));
}
INSTANTIATE_TEST_SUITE_P(Mishaps, GuardAfter, testing::ValuesIn(kMishaps),
                         [](const auto& mishap) { return mishap.param.name; });

TEST(Guard, switchesOffAtPowerUp) {
  for (const sim::Model model : kModels) {
    AdapterRig rig(model);
    ASSERT_TRUE(rig.isAnyVoltageOn());
    EXPECT_LE(msUntilOff(rig), 0.2);
    EXPECT_TRUE(rig.isOff());
  }
}

void sendDamagedBlock(sim::Model model, std::size_t place, unsigned bit) {
  AdapterRig rig(model);
  rig.connect();
  rig.load(2, 0x11);
  rig.switchVoltagesOn();
  const auto load2 = static_cast<std::uint8_t>(0x20 | rig.idle(2));
  Bytes block = frameBlock(BlockKind::Operations, 2, Bytes{load2, 0x22, load2, 0x11});
  rig.line.write(block);
  rig.adapter.runFor(kMs);
  ASSERT_TRUE(rig.isAnyVoltageOn());  // as it is it does no harm
  block = frameBlock(BlockKind::Operations, 3, Bytes{load2, 0x22, load2, 0x33});
  ASSERT_EQ(block.size(), kDamagedBlockBytes);
  block.at(place) ^= static_cast<std::uint8_t>(1U << bit);
  unsigned latch2 = 0x11;
  rig.adapter.onChange([&] { latch2 |= rig.board.latch(2); });
  rig.line.write(block);
  EXPECT_LE(msUntilOff(rig), 520) << "byte " << place << " bit " << bit;
  EXPECT_EQ(latch2, 0x11U) << "byte " << place << " bit " << bit;
  EXPECT_TRUE(rig.isOff());
}

TEST(Guard, executesNothingOfADamagedBlock) {
  for (std::size_t place = 0; place < kDamagedBlockBytes; ++place) {
    for (unsigned bit = 0; bit < 8; ++bit)
      sendDamagedBlock(kModels.at((place + bit) % 3), place, bit);
  }
}

TEST(Guard, refusesBlocksThatCannotBeExecuted) {
  const std::pair<unsigned, Bytes> blocks[]{
      {2, {0x46}},             // no such operation
      {2, {0x2D}},             // operand missing
      {2, {0x44, 0}},          // no time
      {2, {0x44, 65}},         // too long
      {2, Bytes(129, 0x41)},   // too many reads
      {2, Bytes(1401, 0x05)},  // too many bytes
      {3, {0x05}},             // 2 is missing
  };
  for (const auto& [sequence, wrong] : blocks) {
    AdapterRig rig(sim::Model::kestrel5);
    rig.connect();
    rig.switchVoltagesOn();
    rig.line.write(frameBlock(BlockKind::Operations, sequence, wrong));
    EXPECT_LE(msUntilOff(rig), 20) << wrong.size();
  }
}

// Blocks that are right in everything but their sense, and bytes without any: the adapter stays the
// guard, and can be talked to afterwards.
TEST(Guard, survivesWhateverIsSaid) {
  std::mt19937 random(6);
  const auto bytes = [&random](std::size_t most, unsigned mask) {
    Bytes result(1 + random() % most);
    for (std::uint8_t& value : result) value = static_cast<std::uint8_t>(random() & mask);
    return result;
  };
  AdapterRig rig(sim::Model::kestrel4);
  for (int i = 0; i < 2 * moments(); ++i) {
    rig.connect();
    for (unsigned sequence = 0; sequence < 8; ++sequence) {
      // Mostly operations that exist, so that many blocks are executed.
      rig.line.write(frameBlock(BlockKind::Operations, static_cast<unsigned>(random()) % 64,
                                bytes(40, sequence % 2 == 0 ? 0x3F : 0x4F)));
      rig.line.write(bytes(20, 0xFF));
    }
    rig.adapter.runFor(20 * kMs);
    EXPECT_LE(msUntilOff(rig), 600) << "case " << i;
  }
}

TEST(Guard, keepsTheVoltageWhileTheProgramLives) {
  AdapterRig rig(sim::Model::kestrel5);
  rig.connect();
  rig.switchVoltagesOn();
  for (int i = 0; i < 4; ++i) {
    rig.adapter.runFor(400 * kMs);
    ASSERT_TRUE(rig.isAnyVoltageOn());
    rig.connection.keepAlive();
  }
  const double ms = msUntilOff(rig);
  EXPECT_GE(ms, 495);
  EXPECT_LE(ms, 510);
}

TEST(Guard, tellsWhyAndConnectsAgain) {
  AdapterRig rig(sim::Model::kestrel5);
  rig.connect();
  const auto resetAndRun = [&] {
    rig.adapter.reset();
    rig.adapter.runFor(kMs);
  };
  const std::pair<SwitchOffCause, std::function<void()>> mishaps[]{
      {SwitchOffCause::Silent, [&] { rig.adapter.runFor(510 * kMs); }},
      {SwitchOffCause::Stopped, [&] { rig.connection.stop(); }},
      {SwitchOffCause::Broken, [&] { rig.line.damageNextByte(0x10); }},
      {SwitchOffCause::SwitchedOn, resetAndRun},
  };
  for (const auto& [cause, mishap] : mishaps) {
    rig.switchVoltagesOn();
    mishap();
    rig.connection.writeControl(5);
    EXPECT_THAT([&] { (void)rig.connection.readStatus(); },
                testing::Throws<LinkError>(testing::Property(&LinkError::cause, cause)));
    rig.connection.writeControl(5);
    EXPECT_THROW(rig.connection.flush(), LinkError) << "until the next connect";
    EXPECT_TRUE(rig.isOff());
    rig.connection.connect();
    rig.load(2, 0x5A);
    rig.connection.finish();
    EXPECT_EQ(rig.board.latch(2), 0x5A);
  }
}

TEST(Guard, isOffAfterTheGoodbye) {
  AdapterRig rig(sim::Model::kestrel4);
  rig.connect();
  rig.switchVoltagesOn();
  rig.connection.goodbye();
  EXPECT_TRUE(rig.isOff());
}

TEST(Guard, connectsToItsOwnVersionOnly) {
  AdapterRig rig(sim::Model::kestrel5);
  rig.adapter.runFor(2 * kMs);
  rig.line.write(frameBlock(BlockKind::Hello, 0, Bytes{2}));
  rig.line.write(frameBlock(BlockKind::Operations, 1, Bytes{0x25, 0xF4}));
  rig.adapter.runFor(5 * kMs);
  EXPECT_TRUE(rig.isOff());
}

}  // namespace
}  // namespace kestrel::link
