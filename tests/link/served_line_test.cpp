#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "link/adapter_rig.h"
#include "link/link_error.h"
#include "link/serial_line.h"
#include "support/temporary_folder.h"

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
  test::TemporaryFolder folder;
  std::filesystem::path file = folder.path() / "chip.bin";
  ServedLine served{{"--model", "6", "--chip", "28C256=" + file.string()}};
};

TEST_F(Served, writesAByteThatIsInTheFileAtTheEnd) {
  {
    SerialLine line(served.name);
    LinkConnection connection(line);
    connection.connect();
    EXPECT_EQ(connection.adapter().name, "KESTREL LINK");
    test::LinkedBoard board(connection, sim::Model::kestrel6);
    board.load(0, 0x40);
    board.load(2, 0x21);  // address 21h
    board.load(1, 0x40);
    board.load(3, 0x06);  // supply, /CE low, latch 4 on the bus
    board.load(4, 0x5A);
    board.load(1, 0x00);  // /WE
    board.load(1, 0x40);
    connection.waitMilliseconds(20);
    board.load(3, 0x46);
    board.load(0, 0x00);
    EXPECT_EQ(board.readByte(), 0x5A);
    connection.goodbye();
  }
  served.end(SIGTERM);
  std::ifstream contents(file, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(contents), {}};
  ASSERT_EQ(bytes.size(), 32768U);
  EXPECT_EQ(bytes.at(0x21), 0x5A);
  EXPECT_EQ(bytes.at(0x20), '\xFF');
}

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
  EXPECT_LE(took, std::chrono::milliseconds(100));
}

TEST_F(Served, isGoneWhenItIsPulled) {
  SerialLine line(served.name);
  LinkConnection connection(line);
  connection.connect();
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
