// The form over the real ports' whole code: commands, stops and faults, with the simulated board
// behind a kernel that is stood in for.

#include <gtest/gtest.h>

#include <random>

#include "support/real_form.h"

namespace kestrel::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

struct Family {
  const char *code, *device, *chip;
  std::int32_t bytes;  // handled: of EPROMs the beginning, to be quick
  sim::Model model = sim::Model::kestrel5;
  std::size_t voltage = 0;   // Voltage_button: 1 = 12.5 V, 2 = 21 V; 0: none is pressed
  bool isProgrammed = true;  // these two end with the acknowledge report on a true chip
};

constexpr auto k4 = sim::Model::kestrel4, k5 = sim::Model::kestrel5, k6 = sim::Model::kestrel6;

// clang-format off
constexpr Family kFamilies[]{
    {"P1", "Eprom 2732A",        "2732A",    512, k5, 2},
    {"P2", "Eprom 2764",         "2764",     512, k6, 2},
    {"P3", "Eprom 27C128",       "27C128",   512, k4, 1},
    {"P4", "Eprom 27C256",       "27C256",   512, k5, 1},
    {"P5", "Eprom 27C512",       "27C512",   512, k6, 1},
    {"P6", "Eprom 27C010",       "27C010",   512, k4, 1},
    {"P7", "Eprom 27C020",       "27C020",   512, k5, 1},
    {"P8", "Eprom 27C040",       "27C040",   512, k6, 1},
    {"P9", "Eprom 27C080",       "27C080",   512, k4, 1},
    {"EN", "Eeprom XICOR X28C256", "28C256", 512, k5},
    {"SA", "Eeprom 24C08",       "24C08",   1024, k6, 0, false},
    {"SB", "Eeprom 24C16",       "24C16",   2048, k4, 0, false},
    {"SC", "Eeprom 24C32",       "24C32",    512, k5},
};
// clang-format on

/// Programs, verifies and reads back; returns what the procedures asked of the port.
template <typename Form>
std::string traceOf(const Family& family) {
  Form f(family.model);
  Bytes image = randomBytes(static_cast<std::size_t>(family.bytes), 41);
  image[0] = 0xC3;  // a 24Cxx whose first bit is 0 holds SDA, and the next command, after a verify
  f.start();
  f.insert(family.chip, family.isProgrammed ? Bytes() : image);
  f.rig.select(family.device);
  EXPECT_EQ(f.rig.state.FamilyCode, family.code);
  f.rig.openImage(image);
  if (family.voltage != 0) f.rig.controls.Voltage_button[family.voltage].press();
  f.rig.state.DeviceSizeBytes = family.bytes;
  f.rig.clearLog();
  f.trace.str("");
  if (family.isProgrammed) {
    f.rig.program();
    EXPECT_TRUE(f.rig.logged("Programming Device Successfull"));
  }
  f.rig.press("Verify_button");
  EXPECT_TRUE(f.rig.logged("Device Contents MATCHES with Buffer Contents"));
  std::ranges::fill(f.rig.state.CodeBuffer, std::uint8_t{0});
  f.rig.press("Read_button");
  EXPECT_TRUE(std::equal(image.begin(), image.end(), f.rig.state.CodeBuffer.begin()));
  EXPECT_EQ(f.board->vppPins(), 0U);
  return f.trace.str();
}

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
  const std::string real = traceOf<RealForm>(GetParam());
  const std::string simulated = traceOf<SimulatedForm>(GetParam());
  EXPECT_GT(std::ranges::count(simulated, '\n'), 10 * GetParam().bytes);
  EXPECT_TRUE(real == simulated);
  expectVoltageKnown(simulated, GetParam().model);
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
