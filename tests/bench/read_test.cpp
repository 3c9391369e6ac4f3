// The program against the simulated board: what is in the chip arrives in the buffer.

#include <gtest/gtest.h>

#include "support/form_rig.h"

namespace kestrel::test {
namespace {

struct ReadCase {
  const char* device;
  const char* chip;
  std::size_t bytes;
};

class ReadParallel : public testing::TestWithParam<std::tuple<sim::Model, ReadCase>> {};

TEST_P(ReadParallel, givesTheChipByteForByte) {
  const auto& [model, chip] = GetParam();
  SimulatedForm s(model, SimulatedForm::Trace::Off);
  s.start();
  const std::vector<std::uint8_t> contents = randomBytes(chip.bytes, 7);
  s.insert(chip.chip, contents);
  s.rig.select(chip.device);
  s.bench.findings().clear();
  ASSERT_TRUE(s.rig.press("Read_button"));
  unsigned sum = 0;
  for (const std::uint8_t byte : contents) sum += byte;
  EXPECT_TRUE(std::equal(contents.begin(), contents.end(), s.rig.state.CodeBuffer.begin()));
  EXPECT_EQ(s.rig.state.DeviceChecksum, static_cast<std::int32_t>(sum % 65536));
  EXPECT_TRUE(s.rig.logged(std::to_string(chip.bytes) + " bytes Read from Device"));
  EXPECT_TRUE(s.bench.findings().all().empty());
}

INSTANTIATE_TEST_SUITE_P(
    EveryModel, ReadParallel,
    testing::Combine(testing::Values(sim::Model::kestrel4, sim::Model::kestrel5,
                                     sim::Model::kestrel6),
                     testing::Values(ReadCase{"Eprom 27C256", "27C256", 32768},
                                     ReadCase{"Eprom 2764", "2764", 8192},
                                     ReadCase{"Eprom 2732A", "2732A", 4096},
                                     ReadCase{"Eprom 27C512", "27C512", 65536},
                                     ReadCase{"Eprom 27C010", "27C010", 131072},
                                     ReadCase{"Eprom 27C020", "27C020", 262144})));

}  // namespace
}  // namespace kestrel::test
