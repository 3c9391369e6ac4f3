#include <gmock/gmock.h>

#include <algorithm>
#include <vector>

#include "link/frame.h"
#include "link/operations.h"

namespace kestrel::link {
namespace {

using testing::ElementsAre;
using Bytes = std::vector<std::uint8_t>;

std::vector<Answer> answersIn(const Bytes& line, AnswerReader& reader) {
  std::vector<Answer> answers;
  for (const std::uint8_t value : line) {
    if (auto answer = reader.take(value)) answers.push_back(*answer);
  }
  return answers;
}

// The check values were computed apart from this program.
const Bytes kTwoHalves{0x7E, 0x00, 0x02, 0x15, 0x11, 0xB8, 0x5C};
const Bytes kSilent{0x7E, 0x81, 0x01, 0x04, 0xFF, 0x30};

TEST(Frame, hasStartHeadLengthContentsAndCheck) {
  EXPECT_THAT(frameBlock(BlockKind::Hello, 0, Bytes{1}),
              ElementsAre(0x7E, 0x40, 0x01, 0x01, 0x14, 0x37));
  EXPECT_EQ(frameBlock(BlockKind::Operations, 64, Bytes{0x15, 0x11}), kTwoHalves);
}

TEST(Frame, escapesMarksInContentsAndCheck) {
  EXPECT_THAT(frameBlock(BlockKind::Operations, 5, Bytes{0x25, 0x7E, 0x7C}),
              ElementsAre(0x7E, 0x05, 0x03, 0x25, 0x7D, 0x5E, 0x7D, 0x5C, 0xA8, 0xDA));
  EXPECT_THAT(frameBlock(BlockKind::Operations, 1, Bytes{0x08}),
              ElementsAre(0x7E, 0x01, 0x01, 0x08, 0x7D, 0x5F, 0xF6));
}

TEST(Frame, hasALengthOfTwoBytesFrom128) {
  const Bytes block = frameBlock(BlockKind::Operations, 2, Bytes(896, 0x05));
  EXPECT_EQ(Bytes(block.begin(), block.begin() + 5), (Bytes{0x7E, 0x02, 0x83, 0x80, 0x05}));
  EXPECT_EQ(frameBlock(BlockKind::Operations, 2, Bytes(120, 0x05)).at(2), 120);
}

TEST(AnswerReader, findsAnswersBetweenOtherBytes) {
  AnswerReader reader;
  Bytes line{0x41, 0x42};
  line.insert(line.end(), kTwoHalves.begin(), kTwoHalves.end());
  line.insert(line.end(), kTwoHalves.begin(), kTwoHalves.begin() + 4);  // cut short by the next
  line.insert(line.end(), kSilent.begin(), kSilent.end());
  const auto answers = answersIn(line, reader);
  ASSERT_EQ(answers.size(), 2U);
  EXPECT_EQ(answers[0].kind, AnswerKind::Done);
  EXPECT_THAT(answers[0].contents, ElementsAre(0x15, 0x11));
  EXPECT_EQ(answers[1].kind, AnswerKind::Trouble);
  EXPECT_EQ(answers[1].sequence, 1U);
  EXPECT_THAT(answers[1].contents, ElementsAre(4));
  EXPECT_EQ(reader.rejected(), 3U);
}

// A right answer never comes out of a damaged one, and the reader finds the next one.
TEST(AnswerReader, refusesEveryDamagedByte) {
  for (std::size_t place = 0; place < kTwoHalves.size(); ++place) {
    for (unsigned bit = 0; bit < 8; ++bit) {
      AnswerReader reader;
      Bytes line = kTwoHalves;
      line[place] ^= static_cast<std::uint8_t>(1U << bit);
      EXPECT_TRUE(answersIn(line, reader).empty()) << place << " bit " << bit;
      line.assign(300, 0x00);  // what a length that has grown may swallow
      static_cast<void>(answersIn(line, reader));
      EXPECT_EQ(answersIn(kSilent, reader).size(), 1U) << place << " bit " << bit;
    }
  }
}

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

TEST(OperationEncoder, gathersLatchLoadsAndReadsAndSplitsWaits) {
  const struct {
    const char* what;
    std::vector<Operation> operations;
    Bytes bytes;
  } cases[]{
      {"a latch load", {data(0xA5), control(7), control(6), control(7)}, {0x27, 0xA5}},
      {"of a model 4", {data(0xA5), control(8), control(9), control(8)}, {0x28, 0xA5}},
      {"without idle code before", {data(0xA5), control(0x0C), control(0x0D)}, {0x3D, 0xA5}},
      {"a strobe that stays", {data(0x9F), control(0x0E), control(0)}, {0x40, 0x9F, 0x0E, 0x00}},
      {"another latch", {data(1), control(7), control(1), control(6)}, {0x40, 1, 7, 1, 6}},
      {"another code after the wait",
       {data(1), control(7), wait(9), control(7), control(7)},
       {0x40, 1, 7, 0x42, 9, 7, 7}},
      {"a half select and its read, and what is not one",
       {control(5), kRead, control(1), kRead, kRead, control(1), wait(40), kRead},
       {0x15, 0x11, 0x41, 1, 0x42, 40, 0x41}},
      {"no time", {wait(0), wait(-5)}, {}},
      {"short waits", {wait(255), wait(256)}, {0x42, 255, 0x43, 0, 1}},
      {"the longest in counts", {wait(65'535)}, {0x43, 0xFF, 0xFF}},
      {"2 ms and 2 counts", {wait(80'002)}, {0x44, 2, 0x42, 2}},
      {"100 ms, at most 64 in one", {wait(4'000'000)}, {0x44, 64, 0x44, 36}}};
  for (const auto& [what, operations, bytes] : cases) {
    OperationEncoder encoder;
    const EncodedOperations result = encode(encoder, operations);
    EXPECT_EQ(result.bytes, bytes) << what;
    EXPECT_EQ(result.reads, std::ranges::count(operations, Kind::Read, &Operation::kind)) << what;
  }
}

TEST(OperationEncoder, sendsTheDelayOnceAndAgainWhenItChanges) {
  OperationEncoder encoder;
  const auto load = [](std::int64_t delay) {
    std::vector<Operation> steps{data(1), control(0x0D), control(0x0C), control(0x0D)};
    if (delay > 0) steps.insert(steps.begin() + 2, wait(delay));
    return steps;
  };
  const std::pair<std::int64_t, Bytes> loads[]{{42, {0x45, 42, 0, 0x2D, 1}},
                                               {42, {0x2D, 1}},
                                               {0x1234, {0x45, 0x34, 0x12, 0x2D, 1}},
                                               {0, {0x45, 0, 0, 0x2D, 1}}};
  for (const auto& [delay, bytes] : loads) EXPECT_EQ(encode(encoder, load(delay)).bytes, bytes);
}

}  // namespace
}  // namespace kestrel::link
