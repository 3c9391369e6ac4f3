#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>
#include <thread>

#include "cli/run_program.h"

namespace kestrel::test {
namespace {

/// Waits until the program has written the text; false when it has not after ten seconds.
bool hasWritten(const Workplace& work, const std::string& text) {
  using namespace std::chrono;
  const auto deadline = steady_clock::now() + seconds(10);
  while (work.text("out.txt").find(text) == std::string::npos) {
    if (steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(milliseconds(1));
  }
  return true;
}

/// The last value that latch 0 of a model 5 at 378h was loaded with, as the trace has it.
std::string lastLatch0(const std::string& trace) {
  const std::size_t strobe = trace.rfind("out 37A 04\n");
  const std::size_t data = trace.rfind("out 378 ", strobe);
  return trace.substr(data + 8, 2);
}

class Signal : public testing::TestWithParam<std::pair<int, int>> {};

// A 27C080 full of zeros is far from done when the signal comes.
TEST_P(Signal, endsProgrammingWithTheBoardIdleAndTheChipKept) {
  const auto [number, status] = GetParam();
  const Workplace work;
  work.put("rom.bin", Bytes(1'048'576, 0x00));
  const pid_t process =
      work.start({"program", "--simulate", "--yes", "-d", "27C080", "-i", "rom.bin", "--chip",
                  "27C080=chip.bin", "-o", "saved.bin", "--trace", "t.txt"});
  EXPECT_TRUE(hasWritten(work, "Programming Started... Wait"));
  ::kill(process, number);
  const Outcome run = work.finish(process);
  EXPECT_EQ(run.status, status);
  EXPECT_EQ(run.log().back(), "Operation stopped by operator");
  EXPECT_EQ(lastLatch0(work.text("t.txt")), "40");
  EXPECT_EQ(work.get("chip.bin").size(), 1'048'576U);
  EXPECT_TRUE(work.get("saved.bin").empty());
}

INSTANTIATE_TEST_SUITE_P(Each, Signal,
                         testing::Values(std::pair(SIGINT, 130), std::pair(SIGTERM, 143),
                                         std::pair(SIGHUP, 129)));

}  // namespace
}  // namespace kestrel::test
