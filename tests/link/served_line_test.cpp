#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "link/connection.h"
#include "link/link_error.h"
#include "link/serial_line.h"

// The emulated adapter in a process of its own, behind a true serial line and in true time.
namespace kestrel::link {
namespace {

class ServedLine {
 public:
  explicit ServedLine(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), KESTREL_EMULATED_LINK);
    std::vector<char*> words;
    for (std::string& argument : arguments) words.push_back(argument.data());
    words.push_back(nullptr);
    int ends[2];
    EXPECT_EQ(::pipe(ends), 0);
    process_ = ::fork();
    if (process_ == 0) {
      ::dup2(ends[1], STDOUT_FILENO);
      ::close(ends[0]);
      ::execv(words[0], words.data());
      ::_exit(127);
    }
    ::close(ends[1]);
    for (char letter = 0; ::read(ends[0], &letter, 1) == 1 && letter != '\n';) name += letter;
    ::close(ends[0]);
  }
  ~ServedLine() { end(SIGTERM); }

  void end(int signal) {
    if (process_ <= 0) return;
    ::kill(process_, signal);
    ::waitpid(process_, nullptr, 0);
    process_ = -1;
  }

  std::string name;

 private:
  pid_t process_ = -1;
};

struct Served : testing::Test {
  ServedLine served{{"--model", "6"}};
};

TEST_F(Served, isStoppedInTheMiddleOfAWait) {
  SerialLine line(served.name);
  LinkConnection connection(line);
  connection.connect();
  std::chrono::steady_clock::time_point stoppedAt;
  std::thread stopper([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    stoppedAt = std::chrono::steady_clock::now();
    connection.stop();
  });
  EXPECT_THROW(connection.waitMilliseconds(5000), LinkError);
  const auto took = std::chrono::steady_clock::now() - stoppedAt;
  stopper.join();
  EXPECT_LE(took, std::chrono::seconds(1));
}

TEST_F(Served, isGoneWhenItIsPulled) {
  SerialLine line(served.name);
  LinkConnection connection(line);
  connection.connect();
  EXPECT_EQ(connection.adapter().name, "KESTREL LINK");
  served.end(SIGKILL);
  try {
    static_cast<void>(connection.readStatus());
    FAIL();
  } catch (const LinkError& error) {
    EXPECT_EQ(error.problem(), LinkProblem::Gone);
  }
}

}  // namespace
}  // namespace kestrel::link
