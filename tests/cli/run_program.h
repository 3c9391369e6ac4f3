#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

#include "support/temporary_folder.h"

namespace kestrel::test {

/// How a run of the program ended and what it said.
struct Outcome {
  int status = -1;  ///< exit status; 1000 and the number when a signal killed it
  std::string out;
  std::string err;

  [[nodiscard]] bool logged(const std::string& message) const {
    return out.find(">  " + message + "\n") != std::string::npos;
  }
  [[nodiscard]] bool told(const std::string& part) const {
    return (err + out).find(part) != std::string::npos;
  }
  /// The messages of the log, a line each, without their times.
  [[nodiscard]] std::string log() const {
    std::string messages;
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);) {
      if (line.find(">  ") == 8) messages += line.substr(11) + "\n";
    }
    return messages;
  }
};

inline int statusOf(pid_t process) {
  int status = -1;
  ::waitpid(process, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

/// A folder of its own in which kestrel-cli runs; the configuration folder is in it too.
class Workplace {
 public:
  /// Becomes `kestrel-cli` with these words, quoted as in a shell.
  void become(const std::string& words) const {
    std::signal(SIGINT, SIG_DFL);  // however the tests were started
    if (::chdir(folder_.path().c_str()) != 0) ::_exit(127);
    const std::string all =
        "exec env -i TERM=xterm HOME=$PWD XDG_CONFIG_HOME=$PWD " KESTREL_CLI " " + words;
    ::execl("/bin/sh", "sh", "-c", all.c_str(), nullptr);
    ::_exit(127);
  }
  /// Starts it with no terminal and gives its process.
  [[nodiscard]] pid_t start(const std::string& words) const {
    const pid_t process = ::fork();
    if (process == 0) become(words + " </dev/null >out.txt 2>err.txt");
    return process;
  }
  [[nodiscard]] Outcome finish(pid_t process) const {
    return {.status = statusOf(process), .out = text("out.txt"), .err = text("err.txt")};
  }
  [[nodiscard]] Outcome run(const std::string& words) const { return finish(start(words)); }
  [[nodiscard]] Outcome simulate(const std::string& words) const {
    return run("--simulate " + words);
  }

  void put(const std::string& name, const std::string& contents) const {
    std::ofstream(path(name), std::ios::binary) << contents;
  }
  /// The contents of a file; empty if there is none.
  [[nodiscard]] std::string text(const std::string& name) const {
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  [[nodiscard]] std::string path(const std::string& name) const { return folder_ / name; }

 private:
  TemporaryFolder folder_;
};

/// FFh but for the bytes of `text` from the address on.
[[nodiscard]] inline std::string mostlyErased(std::size_t size, std::size_t address,
                                              const std::string& text) {
  return std::string(size, '\xFF').replace(address, text.size(), text);
}

}  // namespace kestrel::test
