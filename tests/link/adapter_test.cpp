#include <gmock/gmock.h>

#include <functional>
#include <utility>
#include <vector>

#include "link/adapter_rig.h"
#include "link/loop_back.h"

// The adapter's program in an emulated processor, the simulated board behind its pins.
namespace kestrel::test {
namespace {

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
  for (const std::int64_t delay : {42, 0}) {
    const auto valueOf = [&](std::size_t latch) {
      return static_cast<std::uint8_t>((delay == 0 ? 0x81U : 0x7EU) ^ latch << 2U);
    };
    for (std::size_t latch = 0; latch < 5; ++latch) rig.load(latch, valueOf(latch), delay);
    rig.connection.finish();
    for (std::uint8_t latch = 0; latch < 5; ++latch) {
      EXPECT_EQ(rig.board.latch(latch), valueOf(latch)) << "delay " << delay;
    }
  }
}

// Latch 3 bit 6 = 0 puts latch 4 on the bus.
TEST_P(Adapter, readsBackEveryByte) {
  rig.load(3, 0x84);
  for (unsigned value = 0; value < 256; ++value) {
    rig.load(4, static_cast<std::uint8_t>(value));
    EXPECT_EQ(rig.readByte(), value);
  }
}

struct AdapterOfModel5 : testing::Test {
  AdapterOfModel5() { rig.connect(); }

  /// The moments at which what is shown of the board changes.
  std::vector<Cycles> changesOf(const std::function<int()>& shown,
                                const std::function<void()>& work) {
    std::vector<Cycles> changes;
    rig.connection.finish();
    rig.adapter.onChange([&, before = shown()]() mutable {
      if (std::exchange(before, shown()) != before) changes.push_back(rig.adapter.now());
    });
    work();
    rig.connection.finish();
    rig.adapter.onChange(nullptr);
    return changes;
  }

  /// Never shorter than asked for, never more than 1 us longer.
  static void expectWidth(const std::vector<Cycles>& changes, std::int64_t counts) {
    ASSERT_EQ(changes.size(), 2U) << counts;
    const double excess =
        microseconds(changes[1] - changes[0]) - static_cast<double>(counts) * kCountUs;
    EXPECT_GE(excess, 0) << counts;
    EXPECT_LE(excess, 1.0) << counts;
  }

  AdapterRig rig{sim::Model::kestrel5};
};

// From the strobe of one latch load to that of another: odd lengths around each way of asking.
TEST_F(AdapterOfModel5, keepsPulsesToTheMicrosecond) {
  for (const std::int64_t delay : {2, 42, 400, 4000}) {
    for (const std::int64_t base : {800, 3999, 40'002, 65'535, 65'536, 199'999, 2'000'000}) {
      // The poll of the timer takes 10 cycles, 25 counts: a long pulse takes its chance.
      const std::int64_t step = base < 100'000 ? 2 : 11;
      for (std::int64_t counts = base; counts < base + 25; counts += step) {
        rig.load(1, 0x00, delay);
        const auto pulse = [&] {
          rig.load(1, 0x40, delay);
          rig.connection.waitCounts(counts);
          rig.load(1, 0x00, delay);
        };
        expectWidth(changesOf([&] { return rig.board.latch(1); }, pulse), counts + delay);
      }
    }
  }
}

TEST_F(AdapterOfModel5, keepsWaitsBetweenSingleWrites) {
  for (std::int64_t counts = 800; counts < 830; ++counts) {
    rig.connection.writeControl(0x0F);
    const auto pulse = [&] {
      rig.connection.writeControl(0x07);
      rig.connection.waitCounts(counts);
      rig.connection.writeControl(0x0F);
    };
    expectWidth(changesOf([n = 0]() mutable { return ++n; }, pulse), counts);
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
  const auto loadPage = [&] {
    for (unsigned i = 0; i < 64; ++i) {
      rig.load(2, static_cast<std::uint8_t>(0x40 + i));
      rig.load(3, 0x86);
      rig.load(4, static_cast<std::uint8_t>(0x7C - i));
      rig.load(3, 0x06);
      rig.load(1, 0x00);
      rig.load(1, 0x40);
      rig.load(3, 0x86);
    }
  };
  const auto strobes = changesOf([&] { return rig.board.latch(1); }, loadPage);
  ASSERT_EQ(strobes.size(), 2 * 64U);
  for (std::size_t i = 2; i < strobes.size(); i += 2) {
    EXPECT_LE(microseconds(strobes[i] - strobes[i - 2]), 60.0);
  }
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
