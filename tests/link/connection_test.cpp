#include "link/connection.h"

#include <algorithm>
#include <deque>
#include <vector>

#include "link/link_failure.h"

namespace kestrel::link {
namespace {

using testing::ElementsAre;
using Bytes = std::vector<std::uint8_t>;

/// A line whose other end is a script: answers that come one after the other, each to be asked for
/// by a read. Time passes by the limits of the reads that find nothing.
class ScriptedLine final : public ByteLine {
 public:
  void answer(AnswerKind kind, unsigned sequence, const Bytes& contents) {
    // An answer and a block differ in nothing but their kinds.
    coming_.push_back(frameBlock(static_cast<BlockKind>(kind), sequence, contents));
  }
  void welcome(unsigned sequence, std::uint8_t version = 1) {
    answer(AnswerKind::Welcome, sequence, {version, 100, 0, 20, 4, 'L', 'I', 'N', 'K'});
  }
  void noise(const Bytes& bytes) { coming_.push_back(bytes); }

  void write(std::span<const std::uint8_t> bytes) override {
    writes.emplace_back(bytes.begin(), bytes.end());
  }
  std::size_t read(std::span<std::uint8_t> bytes, std::chrono::milliseconds limit) override {
    if (coming_.empty()) {
      passed += limit;
      return 0;
    }
    const Bytes next = coming_.front();
    coming_.pop_front();
    std::copy(next.begin(), next.end(), bytes.begin());
    ++reads;
    return next.size();
  }
  void writeUrgently(std::uint8_t value) noexcept override { writes.push_back({value}); }
  [[nodiscard]] const std::string& name() const override { return name_; }

  std::vector<Bytes> writes;
  int reads = 0;
  std::chrono::milliseconds passed{0};

 private:
  std::deque<Bytes> coming_;
  std::string name_ = "/dev/ttyTEST";
};

struct Connected : testing::Test {
  Connected() {
    line.welcome(0);
    connection.connect();
    line.writes.clear();
  }
  ScriptedLine line;
  LinkConnection connection{line};
};

TEST(Connect, tellsWhyItFailed) {
  ScriptedLine silent;
  EXPECT_THAT([&] { LinkConnection(silent).connect(); }, failsWith(LinkProblem::NoAnswer));
  EXPECT_GE(silent.passed.count(), 2500);  // longer than a boot loader takes
  ScriptedLine modem;
  modem.noise({'A', 'T', '\r', '\n', 'O', 'K'});
  EXPECT_THAT([&] { LinkConnection(modem).connect(); }, failsWith(LinkProblem::NotAnAdapter));
  ScriptedLine newer;
  newer.welcome(0, 2);
  EXPECT_THAT([&] { LinkConnection(newer).connect(); }, failsWith(LinkProblem::OtherVersion));
}

TEST_F(Connected, sendsNothingUntilAStatusIsAskedFor) {
  connection.writeData(0x5A);
  connection.writeControl(0xC5);  // the adapter has no lines for bits 4 to 7
  EXPECT_TRUE(line.writes.empty());
  line.answer(AnswerKind::Done, 1, {0x38});
  EXPECT_EQ(connection.readStatus(), 0x38);
  ASSERT_EQ(line.writes.size(), 1U);
  EXPECT_THAT(Bytes(line.writes[0].begin() + 1, line.writes[0].end() - 2),
              ElementsAre(0x01, 3, 0x40, 0x5A, 0x15));
}

// 20 bytes may follow an unanswered block: the second block of 11 has room behind the first, the
// third must wait for an answer.
TEST_F(Connected, keepsToTheCredit) {
  const auto sendEleven = [this] {
    for (unsigned i = 0; i < 3; ++i) connection.writeData(static_cast<std::uint8_t>(i));
    connection.flush();
  };
  sendEleven();
  sendEleven();
  EXPECT_EQ(line.reads, 1);  // the welcome
  line.answer(AnswerKind::Done, 1, {});
  sendEleven();
  EXPECT_EQ(line.reads, 2);
  EXPECT_EQ(line.writes.size(), 3U);
}

TEST_F(Connected, splitsWhatDoesNotFitIntoABlock) {
  for (unsigned i = 0; i < 60; ++i) connection.writeData(static_cast<std::uint8_t>(i & 0x0FU));
  ASSERT_EQ(line.writes.size(), 1U);
  EXPECT_LE(line.writes[0].size(), 100U + 5U);
  line.answer(AnswerKind::Done, 1, {});
  for (int i = 0; i < 4; ++i) static_cast<void>(connection.askStatus());
  EXPECT_EQ(line.writes.size(), 1U);
  static_cast<void>(connection.askStatus());  // four reads are the most of one block
  EXPECT_EQ(line.writes.size(), 2U);
}

TEST_F(Connected, livesOnWhileALongWaitLasts) {
  connection.waitCounts(50 * 40'000);
  EXPECT_THAT([&] { connection.finish(); }, failsWith(LinkProblem::NoAnswer));
  EXPECT_THAT(line.writes.back(), ElementsAre(0x7F));
  EXPECT_GE(line.writes.size(), 10U);
}

TEST_F(Connected, takesNoAnswerToAnotherBlock) {
  line.answer(AnswerKind::Done, 2, {0x38});
  EXPECT_THAT([&] { (void)connection.readStatus(); }, failsWith(LinkProblem::NoAnswer));
}

}  // namespace
}  // namespace kestrel::link
