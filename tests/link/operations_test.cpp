#include "link/operations.h"

#include <gmock/gmock.h>

#include <vector>

namespace kestrel::link {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Bytes = std::vector<std::uint8_t>;
using Kind = Operation::Kind;

Operation data(unsigned value) {
  return {.kind = Kind::Data, .value = static_cast<std::uint8_t>(value)};
}
Operation control(unsigned value) {
  return {.kind = Kind::Control, .value = static_cast<std::uint8_t>(value)};
}
Operation wait(std::int64_t counts) { return {.kind = Kind::Wait, .counts = counts}; }
const Operation kRead{.kind = Kind::Read};

EncodedOperations encode(OperationEncoder& encoder, const std::vector<Operation>& operations) {
  for (const Operation& operation : operations) encoder.add(operation);
  return encoder.take();
}

Bytes encoded(const std::vector<Operation>& operations) {
  OperationEncoder encoder;
  return encode(encoder, operations).bytes;
}

TEST(OperationEncoder, makesOneOperationOfALatchLoad) {
  EXPECT_THAT(encoded({data(0xA5), control(0x07), control(0x06), control(0x07)}),
              ElementsAre(0x27, 0xA5));
  EXPECT_THAT(encoded({data(0xA5), control(0x08), control(0x09), control(0x08)}),
              ElementsAre(0x28, 0xA5));
  EXPECT_THAT(encoded({data(0xA5), control(0x0C), control(0x0D)}), ElementsAre(0x3D, 0xA5));
}

TEST(OperationEncoder, tellsTheDelayOnceAndAgainWhenItChanges) {
  OperationEncoder encoder;
  const std::vector<Operation> load{data(1), control(0x0D), wait(42), control(0x0C), control(0x0D)};
  std::vector<Operation> two = load;
  two.insert(two.end(), load.begin(), load.end());
  EXPECT_THAT(encode(encoder, two).bytes, ElementsAre(0x45, 42, 0, 0x2D, 1, 0x2D, 1));
  EXPECT_THAT(encode(encoder, load).bytes, ElementsAre(0x2D, 1));
  EXPECT_THAT(
      encode(encoder, {data(1), control(0x0D), wait(0x1234), control(0x0C), control(0x0D)}).bytes,
      ElementsAre(0x45, 0x34, 0x12, 0x2D, 1));
  EXPECT_THAT(encode(encoder, {data(1), control(0x0D), control(0x0C), control(0x0D)}).bytes,
              ElementsAre(0x45, 0, 0, 0x2D, 1));
}

// Another latch is addressed in the middle, the strobe stays, or another code comes after it.
TEST(OperationEncoder, leavesWhatIsNoLatchLoadAsItIs) {
  EXPECT_THAT(encoded({data(0x9F), control(0x0E), control(0x00)}),
              ElementsAre(0x40, 0x9F, 0x0E, 0x00));
  EXPECT_THAT(encoded({data(1), control(0x07), control(0x01), control(0x06)}),
              ElementsAre(0x40, 1, 0x07, 0x01, 0x06));
  EXPECT_THAT(encoded({data(1), control(0x07), wait(9), control(0x07), control(0x07)}),
              ElementsAre(0x40, 1, 0x07, 0x42, 9, 0x07, 0x07));
}

TEST(OperationEncoder, joinsAHalfSelectWithItsRead) {
  OperationEncoder encoder;
  const EncodedOperations result = encode(
      encoder, {control(0x05), kRead, control(0x01), kRead, kRead, control(0x01), wait(40), kRead});
  EXPECT_THAT(result.bytes, ElementsAre(0x15, 0x11, 0x41, 0x01, 0x42, 40, 0x41));
  EXPECT_EQ(result.reads, 4U);
}

TEST(OperationEncoder, splitsWaits) {
  EXPECT_THAT(encoded({wait(0), wait(-5)}), IsEmpty());
  EXPECT_THAT(encoded({wait(255), wait(256)}), ElementsAre(0x42, 255, 0x43, 0, 1));
  EXPECT_THAT(encoded({wait(65'535)}), ElementsAre(0x43, 0xFF, 0xFF));
  // 2 ms and 2 counts; 100 ms, of which one operation takes at most 64.
  EXPECT_THAT(encoded({wait(80'002)}), ElementsAre(0x44, 2, 0x42, 2));
  EXPECT_THAT(encoded({wait(4'000'000)}), ElementsAre(0x44, 64, 0x44, 36));
}

TEST(OperationEncoder, countsTheWaitsOfABlock) {
  OperationEncoder encoder;
  const auto result = encode(
      encoder, {data(1), control(0x0D), wait(42), control(0x0C), control(0x0D), wait(100'000)});
  EXPECT_EQ(result.waitCounts, 100'042);
}

}  // namespace
}  // namespace kestrel::link
