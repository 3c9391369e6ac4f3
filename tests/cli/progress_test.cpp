#include <gtest/gtest.h>

#include "cli/progress_line.h"

namespace kestrel::test {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

class Line : public testing::Test {
 protected:
  const ProgressLine::Time begin{std::chrono::hours(100)};  // the machine has run for days
  ProgressLine line;
};

TEST_F(Line, hasBarPercentAndTimeLeftOnceThatIsNoGuess) {
  line.set(1, 101, begin);
  EXPECT_EQ(line.text(44, begin), "[--------------------]   0 %");
  line.set(26, 101, begin + milliseconds(900));
  EXPECT_EQ(line.text(44, begin + milliseconds(900)), "[#####---------------]  25 %");
  line.set(51, 101, begin + seconds(50));
  EXPECT_EQ(line.text(44, begin + seconds(50)), "[##########----------]  50 %  0:50 left");
  line.set(101, 101, begin + seconds(100));
  EXPECT_EQ(line.text(44, begin + seconds(100)), "[####################] 100 %  0:00 left");
}

TEST_F(Line, countsFromTheFirstStepOfTheCommandThatRuns) {
  line.set(5, 10, begin);
  line.set(0, 100, begin + seconds(1));  // a question stands meanwhile
  line.set(1, 100, begin + seconds(500));
  line.set(11, 100, begin + seconds(510));
  EXPECT_EQ(line.text(44, begin + seconds(510)), "[##------------------]  11 %  1:29 left");
}

TEST_F(Line, isNeverWiderThanTheTerminal) {
  line.set(1, 10, begin);
  line.set(2, 10, begin + seconds(5'000));
  for (const std::size_t columns : {5U, 10U, 24U, 40U, 200U}) {
    EXPECT_LE(line.text(columns, begin + seconds(5'000)).size(), columns);
  }
}

}  // namespace
}  // namespace kestrel::test
