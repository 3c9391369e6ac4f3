#include "link/frame.h"

#include <gmock/gmock.h>

#include <random>
#include <vector>

#include "link/crc16.h"

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

TEST(Crc16, givesTheStandardCheckValue) {
  const Bytes digits{'1', '2', '3', '4', '5', '6', '7', '8', '9'};
  EXPECT_EQ(crc16(digits), 0x6F91);
}

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

TEST(AnswerReader, resolvesEscapes) {
  AnswerReader reader;
  const auto answers =
      answersIn({0x7E, 0x05, 0x03, 0x25, 0x7D, 0x5E, 0x7D, 0x5C, 0xA8, 0xDA}, reader);
  ASSERT_EQ(answers.size(), 1U);
  EXPECT_THAT(answers[0].contents, ElementsAre(0x25, 0x7E, 0x7C));
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

TEST(AnswerReader, survivesNoise) {
  std::mt19937 random(7);
  AnswerReader reader;
  for (int i = 0; i < 200'000; ++i) {
    static_cast<void>(reader.take(static_cast<std::uint8_t>(random() & 0xFFU)));
  }
  static_cast<void>(answersIn(Bytes(300, 0x00), reader));
  EXPECT_EQ(answersIn(kSilent, reader).size(), 1U);
}

}  // namespace
}  // namespace kestrel::link
