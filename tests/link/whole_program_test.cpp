// The whole program on a chip behind the emulated adapter.

#include <gmock/gmock.h>

#include <cstdlib>
#include <random>
#include <string_view>

#include "link/link_form.h"
#include "support/families.h"

namespace kestrel::test {
namespace {

bool isLongRun() { return std::getenv("KESTREL_LINK_ALL") != nullptr; }

/// One family a model; KESTREL_LINK_ALL=1 for every family on every model.
std::vector<Family> families() {
  std::vector<Family> chosen;
  for (Family family : kFamilies) {
    const std::string_view code = family.code;
    const bool isShort = code == "P6" || code == "SC" || code == "P8";
    family.bytes = std::min(family.bytes, 256);
    for (const sim::Model model : {k4, k5, k6}) {
      if (!isLongRun() && (!isShort || model != family.model)) continue;
      family.model = model;
      chosen.push_back(family);
    }
  }
  return chosen;
}

class ThroughTheAdapter : public testing::TestWithParam<Family> {};

TEST_P(ThroughTheAdapter, aChipIsProgrammedVerifiedAndReadWithTheTraceOfAnyPort) {
  const FamilyTrace linked = traceOf<LinkForm>(GetParam());
  const FamilyTrace simulated = traceOf<SimulatedForm>(GetParam());
  EXPECT_TRUE(linked.reading == simulated.reading);
  // CMOS EPROMs get pulses of some microseconds until they hold the byte. An adapter's are longer
  // by its slower accesses, so that a chip takes fewer of them.
  const std::string_view code = GetParam().code;
  const bool areRowsOfPulses = code.front() == 'P' && code >= "P3";
  EXPECT_TRUE(areRowsOfPulses || linked.programming == simulated.programming);
  EXPECT_EQ(linked.findings, simulated.findings);
}

INSTANTIATE_TEST_SUITE_P(Families, ThroughTheAdapter, testing::ValuesIn(families()),
                         [](const auto& family) {
                           return std::string(family.param.code) + "_" +
                                  std::to_string(static_cast<int>(family.param.model));
                         });

/// What may happen in the middle of a command, and what the log says then.
struct Mishap {
  const char* name;
  void (*happens)(LinkForm&);
  const char* said;
  double offWithinMs;
  bool isGone = false;  // the adapter, until the next hardware test
};

class InTheMiddle : public testing::TestWithParam<Mishap> {};

TEST_P(InTheMiddle, endsTheCommandWithTheVoltageOff) {
  const Mishap& mishap = GetParam();
  std::mt19937 random(8);
  for (int i = 0; i < (isLongRun() ? 100 : 2); ++i) {
    LinkForm f(std::array{k4, k5, k6}.at(static_cast<std::size_t>(i) % 3));
    f.start();
    f.insert("27C64");
    f.rig.select("Eprom 27C64");
    f.rig.openImage(randomBytes(256, 42));
    f.rig.controls.Voltage_button[1].press();
    f.rig.state.DeviceSizeBytes = 256;
    int left = 1 + static_cast<int>(random() % 4'000);
    sim::Nanoseconds happenedAt = 0, offAt = 0;
    f.adapter.onChange([&] {
      if (happenedAt != 0 && offAt == 0 && f.board->vppPins() == 0) offAt = f.bench.now();
      if (happenedAt != 0 || --left > 0 || f.board->vppPins() == 0) return;
      happenedAt = f.bench.now();
      mishap.happens(f);
    });
    f.rig.program();
    f.adapter.runFor(EmulatedAdapter::kCyclesPerMs);
    ASSERT_NE(happenedAt, 0);
    EXPECT_THAT(f.rig.log(), testing::Contains(testing::StartsWith(mishap.said)));
    EXPECT_EQ(f.rig.logged(form::kVoltageWarning), mishap.isGone) << "nobody knows";
    EXPECT_EQ(f.board->latch(0), 0x40);
    EXPECT_LE(static_cast<double>(offAt - happenedAt) / 1e6, mishap.offWithinMs);
    f.adapter.onChange(nullptr);
    if (mishap.isGone) continue;
    f.rig.press("Read_button");
    EXPECT_EQ(f.rig.result.ending, Ending::Done);
    EXPECT_EQ(f.rig.state.CodeBuffer[0], f.chipContents()[0]);
  }
}

constexpr Mishap kMishaps[]{
    {"aStop", [](LinkForm& f) { f.stop.stopCommand(); }, "Operation stopped by operator", 100},
    {"aReset", [](LinkForm& f) { f.adapter.reset(); }, "Run-time error 57: ", 1},
    {"aDamagedBlock", [](LinkForm& f) { f.line->damageNextByte(0x10); },
     "Run-time error 57: ", 600},
    {"aPulledLine", [](LinkForm& f) { f.adapter.pullLine(); }, "Run-time error 68: ", 600, true},
};

INSTANTIATE_TEST_SUITE_P(Mishaps, InTheMiddle, testing::ValuesIn(kMishaps),
                         [](const auto& mishap) { return mishap.param.name; });

TEST(HardwareTest, findsTheBoardWhereTheAdapterIsChosenToBe) {
  LinkForm f;
  f.start();
  for (const char* const choice : {"", "278=link:/dev/adapter"}) {
    const bool isThere = *choice != '\0';
    f.ports.chooseLink(isThere ? std::optional(ports::parsePortChoice(choice)) : std::nullopt);
    f.rig.press("TestHardware_button");
    EXPECT_EQ(f.rig.controls.Ready_label.caption(), isThere ? "Ready" : "NotReady");
    EXPECT_EQ(f.ports.taken().size(), isThere ? 1U : 0U) << "the one before is given back";
  }
  EXPECT_EQ(f.rig.state.PortBase, 0x278);
}

}  // namespace
}  // namespace kestrel::test
