// The form over the real ports' whole code: commands, stops and faults, with the simulated board
// behind a kernel that is stood in for.

#include <gtest/gtest.h>

#include <random>

#include "support/families.h"
#include "support/real_form.h"

namespace kestrel::test {
namespace {

// Replays the writes of a trace: where the board has VPP on a pin, the follower must know it.
void expectVoltageKnown(const std::string& trace, sim::Model model) {
  using Load = ports::Latch0Follower::Load;
  sim::Bench bench;
  const sim::Board& board = bench.plug(model, 0x378);
  ports::Latch0Follower follower;
  bool isKnownOn = false;
  std::istringstream lines(trace);
  for (std::string line; std::getline(lines, line);) {
    unsigned port = 0, value = 0;
    if (std::sscanf(line.c_str(), "out %x %x", &port, &value) != 2) continue;
    bench.portOut(static_cast<std::uint16_t>(port), static_cast<std::uint8_t>(value));
    const Load load = follower.follow(static_cast<ports::PortRegister>(port - 0x378),
                                      static_cast<std::uint8_t>(value));
    if (load != Load::None) isKnownOn = load == Load::WithVoltage;
    ASSERT_TRUE(isKnownOn || board.vppPins() == 0);
  }
  EXPECT_FALSE(isKnownOn);
}

class WholeForm : public testing::TestWithParam<Family> {};

TEST_P(WholeForm, hasTheSameTraceOnARealPortAsOnTheSimulatedOne) {
  const FamilyTrace real = traceOf<RealForm>(GetParam());
  const FamilyTrace simulated = traceOf<SimulatedForm>(GetParam());
  EXPECT_GT(std::ranges::count(simulated.reading, '\n'), 10 * GetParam().bytes);
  EXPECT_TRUE(real == simulated);
  expectVoltageKnown(simulated.programming + simulated.reading, GetParam().model);
}

INSTANTIATE_TEST_SUITE_P(EveryFamily, WholeForm, testing::ValuesIn(kFamilies),
                         [](const auto& family) { return family.param.code; });

TEST(Stop, atAnyMomentLeavesTheBoardIdleAndTheNextCommandWorking) {
  constexpr std::int32_t kBytes = 256;  // of a 27C64, so that a command is short
  std::mt19937 random(6);
  int begun = 0;
  for (const bool programs : {true, false}) {
    RealForm f;
    f.start();
    f.rig.select("Eprom 27C64");
    f.rig.openImage(randomBytes(kBytes, 42));
    f.rig.controls.Voltage_button[1].press();
    f.rig.state.DeviceSizeBytes = kBytes;
    // Programs or reads, stopped at a port access; returns how many there were.
    const auto run = [&](int stopAt) {
      int count = 0;
      f.insert("27C64", programs ? Bytes() : randomBytes(8192, 43));
      f.kernel.onAccess = [&] {
        if (++count == stopAt) f.stop.stopCommand();
      };
      programs ? f.rig.program() : f.rig.press("Read_button");
      f.kernel.onAccess = nullptr;
      return count;
    };
    Bytes& buffer = f.rig.state.CodeBuffer;
    std::uniform_int_distribution<int> moment(1, run(0) - 1);
    for (int i = 0; i < 100; ++i) {
      const Bytes before = buffer = randomBytes(buffer.size(), 42);
      const int stopAt = moment(random);
      SCOPED_TRACE(std::to_string(stopAt) + (programs ? " of programming" : " of a read"));
      run(stopAt);
      EXPECT_EQ(f.rig.log().back(), "Operation stopped by operator");
      EXPECT_EQ(f.board->latch(0), 0x40);
      EXPECT_TRUE(buffer == before);
      const Bytes chip = f.chipContents();
      begun += chip != Bytes(8192, 0xFF) ? 1 : 0;
      f.rig.press("Read_button");
      EXPECT_EQ(f.rig.result.ending, Ending::Done);
      EXPECT_TRUE(std::equal(chip.begin(), chip.begin() + kBytes, buffer.begin()));
      f.rig.clearLog();
    }
  }
  EXPECT_GT(begun, 150) << "chips that were not blank";
}

TEST(HardwareTest, takesAVanishedPortAnewAndTellsWhyNoBoardAnswers) {
  RealForm f;
  f.start();
  f.rig.select("Eprom 27C64");
  f.kernel.failures["status"].resize(1'000);
  f.kernel.failures["status"].push_back(ENODEV);
  f.rig.press("Read_button");
  EXPECT_EQ(f.rig.log().back(),
            "Run-time error 68: Device unavailable: /dev/parport0 (No such device)");
  f.rig.press("TestHardware_button");
  EXPECT_EQ(f.rig.controls.Ready_label.caption(), "Ready");
  EXPECT_EQ(f.board->latch(0), 0x40);
  f.bench.unplug(0x378);
  f.rig.press("TestHardware_button");
  EXPECT_EQ(f.rig.log().back(),
            "Port 378h (/dev/parport0): the port works, but no board answers. Check the board's "
            "cable and power, and that its socket is empty");
}

}  // namespace
}  // namespace kestrel::test
