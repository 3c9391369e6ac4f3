#include <gmock/gmock.h>

#include <algorithm>
#include <numeric>
#include <sstream>

#include "link/adapter_rig.h"
#include "link/loop_back.h"

// The adapter's program in an emulated processor, the simulated board behind its pins.
namespace kestrel::test {
namespace {

using testing::ElementsAre;
using Cycles = EmulatedAdapter::Cycles;

constexpr double kCountUs = 0.025;

double microseconds(Cycles cycles) { return static_cast<double>(cycles) / 16.0; }

struct Adapter : testing::TestWithParam<sim::Model> {
  Adapter() { rig.connect(); }
  AdapterRig rig{GetParam()};
};

std::string modelName(const testing::TestParamInfo<sim::Model>& info) {
  return std::string(info.param == sim::Model::kestrel4   ? "model4"
                     : info.param == sim::Model::kestrel5 ? "model5"
                                                          : "model6");
}
INSTANTIATE_TEST_SUITE_P(Boards, Adapter,
                         testing::Values(sim::Model::kestrel4, sim::Model::kestrel5,
                                         sim::Model::kestrel6),
                         modelName);

TEST_P(Adapter, loadsEachLatchWithAndWithoutDelay) {
  const auto latches = [this] {
    return std::vector<unsigned>{rig.board.latch(0), rig.board.latch(1), rig.board.latch(2),
                                 rig.board.latch(3), rig.board.latch(4)};
  };
  const std::array<std::uint8_t, 5> first{0x48, 0x7E, 0x5A, 0xC6, 0x81};
  for (std::size_t i = 0; i < 5; ++i) rig.load(i, first.at(i));
  rig.connection.finish();
  EXPECT_THAT(latches(), ElementsAre(0x48, 0x7E, 0x5A, 0xC6, 0x81));
  const std::array<std::uint8_t, 5> second{0x40, 0x81, 0xA5, 0xC4, 0x7E};
  for (std::size_t i = 0; i < 5; ++i) {
    rig.connection.writeData(second.at(i));
    rig.connection.writeControl(rig.codes.idle.at(i) ^ 1U);
    rig.connection.writeControl(rig.codes.idle.at(i));
  }
  rig.connection.finish();
  EXPECT_THAT(latches(), ElementsAre(0x40, 0x81, 0xA5, 0xC4, 0x7E));
}

// Latch 3 bit 6 = 0 puts latch 4 on the bus.
TEST_P(Adapter, readsBackEveryByte) {
  rig.load(3, 0x84);
  for (unsigned value = 0; value < 256; ++value) {
    rig.load(4, static_cast<std::uint8_t>(value));
    EXPECT_EQ(rig.readByte(), value);
  }
}

// The probes, with a strobe that stands while the data change: the signatures of docs/board.md.
TEST_P(Adapter, tellsTheModelsApart) {
  // "d9F" to the data lines, "c0E" to the control lines; "?": what the status lines show.
  const auto probe = [this](const std::string& script) {
    std::string shown;
    std::istringstream words(script);
    for (std::string word; words >> word;) {
      const auto value = static_cast<std::uint8_t>(std::strtol(word.c_str() + 1, nullptr, 16));
      if (word[0] == 'd') rig.connection.writeData(value);
      if (word[0] == 'c') rig.connection.writeControl(value);
      if (word[0] != '?') continue;
      rig.connection.waitCounts(2000);
      shown += std::to_string(rig.connection.readStatus() >> 4U & 7U);
    }
    return shown;
  };
  const bool is4 = GetParam() == sim::Model::kestrel4;
  EXPECT_EQ(probe("d9F c0E c00 d00 c06 ? c00 dFF c06 ?") == "07", !is4);
  EXPECT_EQ(probe("c09 dBF c01 c09 d00 c0F c09 ? dFF c0F c09 ? c08") == "07", is4);
  if (is4) return;
  rig.load(3, 0x60);
  EXPECT_EQ(rig.readByte(), GetParam() == sim::Model::kestrel6 ? 0xEF : 0xFF);
}

struct AdapterOfModel5 : testing::Test {
  AdapterOfModel5() { rig.connect(); }

  /// From the strobe of one load of latch 1 to that of another with a wait between them.
  double widthUs(std::int64_t waitCounts, std::int64_t delayCounts) {
    std::vector<Cycles> changes;
    rig.load(1, 0x00, delayCounts);
    rig.connection.finish();
    unsigned shown = 0;
    rig.adapter.onChange([&] {
      if (rig.board.latch(1) == shown) return;
      shown = rig.board.latch(1);
      changes.push_back(rig.adapter.now());
    });
    rig.load(1, 0x40, delayCounts);
    rig.connection.waitCounts(waitCounts);
    rig.load(1, 0x00, delayCounts);
    rig.connection.finish();
    rig.adapter.onChange(nullptr);
    return changes.size() == 2 ? microseconds(changes[1] - changes[0]) : -1;
  }

  AdapterRig rig{sim::Model::kestrel5};
};

// Never shorter than asked for, never more than 1 us longer: odd lengths around each way of asking.
TEST_F(AdapterOfModel5, keepsPulsesToTheMicrosecond) {
  for (const std::int64_t delay : {2, 42, 400, 4000}) {
    for (const std::int64_t base : {800, 3999, 40'002, 65'535, 65'536, 199'999, 2'000'000}) {
      // The poll of the timer takes 10 cycles, 25 counts: a long pulse takes its chance.
      const std::int64_t step = base < 100'000 ? 2 : 11;
      for (std::int64_t more = 0; more < 25; more += step) {
        const double asked = static_cast<double>(base + more + delay) * kCountUs;
        const double excess = widthUs(base + more, delay) - asked;
        EXPECT_GE(excess, 0) << base + more << " delay " << delay;
        EXPECT_LE(excess, 1.0) << base + more << " delay " << delay;
      }
    }
  }
}

TEST_F(AdapterOfModel5, keepsWaitsBetweenSingleWrites) {
  for (std::int64_t counts = 800; counts < 830; ++counts) {
    rig.connection.writeControl(0x0F);
    rig.connection.finish();
    std::vector<Cycles> changes;
    rig.adapter.onChange([&] { changes.push_back(rig.adapter.now()); });
    rig.connection.writeControl(0x07);
    rig.connection.waitCounts(counts);
    rig.connection.writeControl(0x0F);
    rig.connection.finish();
    rig.adapter.onChange(nullptr);
    ASSERT_EQ(changes.size(), 2U);
    const double excess =
        microseconds(changes[1] - changes[0]) - static_cast<double>(counts) * kCountUs;
    EXPECT_GE(excess, 0) << counts;
    EXPECT_LE(excess, 1.0) << counts;
  }
}

// A 28C256 starts to write 100 us after the last byte. Seven latch loads a byte, as the page writer
// does them; /WE is latch 1 bit 6.
TEST_F(AdapterOfModel5, loadsAPageOf64BytesInOneBlock) {
  rig.board.insert(sim::makeChip("28C256"));
  rig.load(0, 0x40);
  rig.load(3, 0xC6);
  rig.load(1, 0x40);
  rig.connection.finish();
  std::vector<Cycles> strobes;
  unsigned shown = rig.board.latch(1);
  rig.adapter.onChange([&] {
    if (rig.board.latch(1) < shown) strobes.push_back(rig.adapter.now());
    shown = rig.board.latch(1);
  });
  for (unsigned i = 0; i < 64; ++i) {
    rig.load(2, static_cast<std::uint8_t>(0x40 + i));
    rig.load(3, 0x86);
    rig.load(4, static_cast<std::uint8_t>(0x7C - i));
    rig.load(3, 0x06);
    rig.load(1, 0x00);
    rig.load(1, 0x40);
    rig.load(3, 0x86);
  }
  rig.connection.finish();
  rig.adapter.onChange(nullptr);
  ASSERT_EQ(strobes.size(), 64U);
  std::adjacent_difference(strobes.begin(), strobes.end(), strobes.begin());
  EXPECT_LE(microseconds(*std::max_element(strobes.begin() + 1, strobes.end())), 60.0);
  rig.connection.waitMilliseconds(10);
  rig.connection.finish();
  const auto cells = rig.board.chip()->contents();
  for (unsigned i = 0; i < 64; ++i) EXPECT_EQ(cells[0x40 + i], 0x7C - i);
  EXPECT_TRUE(rig.bench.findings().empty());
}

TEST_F(AdapterOfModel5, waitsLongWithTheVoltageOn) {
  rig.switchVoltagesOn();
  const Cycles before = rig.adapter.now();
  rig.connection.waitMilliseconds(1500);
  rig.connection.finish();
  EXPECT_TRUE(rig.isAnyVoltageOn());
  EXPECT_NEAR(microseconds(rig.adapter.now() - before), 1'500'000, 15'000);
}

// By the plug of docs/link.md; each wire of the adapter's table cut once.
TEST(LoopBack, findsTheLineThatIsCut) {
  constexpr std::array<std::size_t, 12> kOutputs{2, 3, 4, 5, 6, 7, 8, 9, 1, 14, 16, 17};
  AdapterRig rig(sim::Model::kestrel5);
  rig.connect();
  EXPECT_FALSE(link::testLines(rig.connection).hasPlug) << "a board is no plug";
  EXPECT_TRUE(rig.isOff());
  for (std::size_t cut = 0; cut <= kOutputs.size(); ++cut) {
    rig.adapter.fitPlug(cut < kOutputs.size() ? kOutputs.at(cut) : 0);
    const auto lines = link::testLines(rig.connection).lines;
    ASSERT_EQ(lines.size(), kOutputs.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
      EXPECT_EQ(lines[i].fault.empty(), i != cut) << lines[i].output << ": " << lines[i].fault;
    }
  }
}

TEST(AdapterSpeed, readsAByteInOneRoundTrip) {
  const auto usPerByte = [](Cycles latency) {
    AdapterRig rig(sim::Model::kestrel5, latency);
    rig.connect();
    rig.load(1, 0x80);
    rig.connection.finish();
    const Cycles before = rig.adapter.now();
    for (unsigned address = 0; address < 64; ++address) {
      rig.load(2, static_cast<std::uint8_t>(address));
      static_cast<void>(rig.readByte());
    }
    return microseconds(rig.adapter.now() - before) / 64;
  };
  // 32768 bytes in 10 s are 305 us each, in 60 s 1831 us.
  EXPECT_LE(usPerByte(0), 305.0);
  EXPECT_LE(usPerByte(EmulatedAdapter::kCyclesPerMs), 1831.0);
}

}  // namespace
}  // namespace kestrel::test
