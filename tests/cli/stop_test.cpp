#include <gtest/gtest.h>
#include <pty.h>
#include <signal.h>

#include <utility>

#include "cli/progress_line.h"
#include "cli/run_program.h"

namespace kestrel::test {
namespace {

bool isWaiting(pid_t process) {
  std::string line;
  std::getline(std::ifstream("/proc/" + std::to_string(process) + "/stat"), line);
  return line.find(") R ") == std::string::npos;
}

/// kestrel-cli at a terminal of 60 columns, with a person who types `answer` when asked.
Outcome atTerminal(const Workplace& work, const std::string& words, const std::string& answer) {
  const winsize size{.ws_row = 24, .ws_col = 60, .ws_xpixel = 0, .ws_ypixel = 0};
  int terminal = -1;
  const pid_t process = ::forkpty(&terminal, nullptr, nullptr, &size);
  if (process == 0) work.become("--simulate " + words);
  Outcome run;
  bool isAnswered = false;
  char piece[4096];
  for (ssize_t n = 0; (n = ::read(terminal, piece, sizeof piece)) > 0;) {
    run.out.append(piece, static_cast<std::size_t>(n));
    if (isAnswered || !run.told("Safety Question: Program the Device? [ok/Cancel] ")) continue;
    // A person answers when the program waits; a Ctrl-C between prompt and wait is another matter.
    while (!isWaiting(process)) ::usleep(1000);
    isAnswered = ::write(terminal, answer.data(), answer.size()) > 0;
  }
  run.status = statusOf(process);
  ::close(terminal);
  return run;
}

TEST(Question, isAskedAtTheTerminalAndOnlyOkPrograms) {
  const Workplace work;
  work.put("rom.bin", mostlyErased(8192, 0, "x"));
  for (const auto& [answer, status] :
       {std::pair("\n", 5), {"okay then\n", 5}, {"\x04", 5}, {"\x03", 130}, {"ok\n", 0}}) {
    const Outcome run =
        atTerminal(work, "program -d 27C64 -i rom.bin --chip 27C64=chip.bin", answer);
    EXPECT_EQ(run.status, status) << answer << run.out;
    EXPECT_EQ(work.text("chip.bin") == work.text("rom.bin"), status == 0) << answer;
  }
}

// The time left counts from the first step of the command that runs, once it is no guess.
TEST(Progress, hasBarPercentAndTimeLeft) {
  using std::chrono::seconds;
  const cli::ProgressLine::Time begin{std::chrono::hours(100)};  // the machine has run for days
  cli::ProgressLine line;
  line.set(5, 10, begin);
  line.set(0, 100, begin + seconds(1));  // a question stands meanwhile
  line.set(1, 100, begin + seconds(500));
  EXPECT_EQ(line.text(44, begin + seconds(500)), "[--------------------]   1 %");
  line.set(11, 100, begin + seconds(510));
  EXPECT_EQ(line.text(44, begin + seconds(510)), "[##------------------]  11 %  1:29 left");
}

TEST(Progress, isDrawnWithinTheWidthAndTakenAwayAtTheEnd) {
  const Workplace work;
  const Outcome run = atTerminal(work, "read -d 27C080", "");
  const std::size_t full = run.out.find("[####");
  ASSERT_NE(full, std::string::npos) << run.out;
  EXPECT_LT(run.out.find('\033', full) - full, 60U) << "as wide as the terminal it would wrap";
  EXPECT_NE(run.out.find("\r\033[K", run.out.rfind(" %")), std::string::npos) << "it stays behind";
}

// Ctrl-S before the command begins; its output goes to a file.
TEST(Progress, isLostRatherThanWaitedForWhenTheTerminalStands) {
  const Workplace work;
  work.put("chip.bin", std::string(1U << 20U, 'x'));
  int terminal = -1;
  int line = -1;
  ASSERT_EQ(::openpty(&terminal, &line, nullptr, nullptr, nullptr), 0);
  ASSERT_EQ(::tcflow(line, TCOOFF), 0);
  const pid_t process = ::fork();
  if (process == 0) {
    ::dup2(line, STDERR_FILENO);
    ::setenv("TERM", "xterm", 1);
    work.become("--simulate read -d 27C080 --chip 27C080=chip.bin -o saved.bin >out.txt");
  }
  int status = -1;
  for (int wait = 0; wait < 3'000 && ::waitpid(process, &status, WNOHANG) == 0; ++wait) {
    ::usleep(10'000);
  }
  EXPECT_EQ(status, 0);
  EXPECT_EQ(work.text("saved.bin").size(), 1'048'576U);
  ::kill(process, SIGKILL);
  ::close(terminal), ::close(line);
}

// A 27C080 full of zeros is far from done when the signal comes.
TEST(Signal, endsProgrammingWithTheBoardIdleAndTheChipKept) {
  for (const auto& [number, status] :
       {std::pair(SIGINT, 130), std::pair(SIGTERM, 143), std::pair(SIGHUP, 129)}) {
    const Workplace work;
    work.put("rom.bin", std::string(1'048'576, '\0'));
    const pid_t process = work.start(
        "program --simulate --yes -d 27C080 -i rom.bin --chip 27C080=chip.bin -o saved.bin "
        "--trace t.txt");
    for (int wait = 0; wait < 10'000; ++wait) {
      if (work.text("out.txt").find("Programming Started... Wait") != std::string::npos) break;
      ::usleep(1000);
    }
    ::kill(process, number);
    const Outcome run = work.finish(process);
    EXPECT_EQ(run.status, status);
    EXPECT_TRUE(run.log().ends_with("\nOperation stopped by operator\n")) << run.out;
    const std::string trace = work.text("t.txt");  // what latch 0 was loaded with last
    const std::size_t data = trace.rfind("out 378 ", trace.rfind("out 37A 04\n"));
    EXPECT_EQ(trace.substr(data, 11), "out 378 40\n");
    EXPECT_TRUE(work.text("chip.bin").size() == 1'048'576 && work.text("saved.bin").empty());
  }
}

}  // namespace
}  // namespace kestrel::test
