#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

#include "cli/run_program.h"

namespace kestrel::test {
namespace {

/// kestrel-cli at a terminal of 60 columns, with a person who types `answer` when asked.
Outcome atTerminal(const Workplace& work, Words words, const std::string& answer) {
  words.insert(words.begin(), {KESTREL_CLI, "--simulate", "--home", work.path("home")});
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  const winsize size{.ws_row = 24, .ws_col = 60, .ws_xpixel = 0, .ws_ypixel = 0};
  int terminal = -1;
  const pid_t process = ::forkpty(&terminal, nullptr, nullptr, &size);
  if (process == 0) {
    if (::chdir(work.path("").c_str()) == 0 && ::setenv("TERM", "xterm", 1) == 0) {
      ::execv(KESTREL_CLI, pointers.data());
    }
    ::_exit(127);
  }
  Outcome run;
  bool isAnswered = false;
  std::array<char, 4096> piece{};
  for (ssize_t n = 0; (n = ::read(terminal, piece.data(), piece.size())) > 0;) {
    run.out.append(piece.data(), static_cast<std::size_t>(n));
    if (isAnswered || run.out.find("[ok/Cancel] ") == std::string::npos) continue;
    isAnswered = ::write(terminal, answer.data(), answer.size()) > 0;
  }
  int status = 0;
  ::waitpid(process, &status, 0);
  ::close(terminal);
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
  return run;
}

bool showed(const Outcome& run, const std::string& part) {
  return run.out.find(part) != std::string::npos;
}

class Question : public testing::Test {
 protected:
  Question() { work.put("rom.bin", mostlyErased(8192, 0, "x")); }
  Outcome program(const std::string& answer) {
    return atTerminal(work, {"program", "-d", "27C64", "-i", "rom.bin", "--chip", "27C64=chip.bin"},
                      answer);
  }
  Workplace work;
};

TEST_F(Question, isAskedAtTheTerminalAndTakesOk) {
  const Outcome run = program("ok\n");
  EXPECT_EQ(run.status, 0) << run.out;
  EXPECT_TRUE(showed(run, "Safety Question: Program the Device? [ok/Cancel] ")) << run.out;
  EXPECT_EQ(work.get("chip.bin"), work.get("rom.bin"));
}

TEST_F(Question, isCancelledByAnythingElse) {
  for (const char* const answer : {"\n", "no\n", "okay then\n", "\x04"}) {
    const Outcome run = program(answer);
    EXPECT_EQ(run.status, 1) << answer;
    EXPECT_TRUE(showed(run, "Programming was Canceled by Operator")) << answer;
  }
  EXPECT_EQ(work.get("chip.bin"), Bytes(8192, 0xFF));
}

TEST_F(Question, endsByCtrlC) {
  EXPECT_EQ(program("\x03").status, 130);
  EXPECT_EQ(work.get("chip.bin"), Bytes(8192, 0xFF));
}

TEST(Progress, isDrawnWithinTheWidthAndTakenAwayAtTheEnd) {
  const Workplace work;
  const Outcome run = atTerminal(work, {"read", "-d", "27C080"}, "");
  EXPECT_EQ(run.status, 0);
  const std::size_t full = run.out.find("[####");
  ASSERT_NE(full, std::string::npos) << run.out;
  const std::size_t end = run.out.find('\033', full);
  EXPECT_LT(end - full, 60U) << "as wide as the terminal it would wrap";
  EXPECT_TRUE(showed(run, "] ") && showed(run, " %\033[K"));
  const std::size_t lastBar = run.out.rfind(" %");
  EXPECT_NE(run.out.find("\r\033[K", lastBar), std::string::npos) << "the bar stays behind";
}

TEST(Progress, isNotDrawnOffTheTerminal) {
  const Workplace work;
  EXPECT_EQ(work.simulate({"read", "-d", "27C010"}).err, "");
}

}  // namespace
}  // namespace kestrel::test
