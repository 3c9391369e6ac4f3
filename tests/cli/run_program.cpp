#include "cli/run_program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace kestrel::test {
namespace {

/// A null-terminated array of C strings, as exec wants it.
std::vector<char*> pointersTo(Words& words) {
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

Words Outcome::log() const {
  constexpr std::size_t kTimeLength = 8;  // 14:03:07
  Words messages;
  std::istringstream lines(out);
  for (std::string line; std::getline(lines, line);) {
    if (line.find(">  ") == kTimeLength) messages.push_back(line.substr(kTimeLength + 3));
  }
  return messages;
}

bool Outcome::logged(std::string_view message) const {
  const Words messages = log();
  return std::ranges::find(messages, message) != messages.end();
}

Workplace::Workplace() { std::filesystem::create_directory(folder_ / "home"); }

pid_t Workplace::start(const Words& words) const {
  Words all{KESTREL_CLI};
  if (std::ranges::find(words, "--home") == words.end()) {
    all.insert(all.end(), {"--home", path("home")});
  }
  all.insert(all.end(), words.begin(), words.end());
  Words environment{"HOME=" + folder_.path().string(), "PATH=/usr/bin:/bin", "TERM=xterm"};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addchdir_np(&actions, folder_.path().c_str());
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  constexpr int kCreate = O_WRONLY | O_CREAT | O_TRUNC;
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, path("out.txt").c_str(), kCreate, 0600);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, path("err.txt").c_str(), kCreate, 0600);
  pid_t process = 0;
  const int error = posix_spawn(&process, KESTREL_CLI, &actions, nullptr, pointersTo(all).data(),
                                pointersTo(environment).data());
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::runtime_error("kestrel-cli cannot be started");
  return process;
}

Outcome Workplace::finish(pid_t process) const {
  int status = 0;
  if (waitpid(process, &status, 0) != process) throw std::runtime_error("kestrel-cli is lost");
  const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
  return {.status = code, .out = text("out.txt"), .err = text("err.txt")};
}

Outcome Workplace::run(const Words& words) const { return finish(start(words)); }

Outcome Workplace::simulate(Words words) const {
  words.emplace_back("--simulate");
  return run(words);
}

void Workplace::put(const std::string& name, const Bytes& bytes) const {
  std::ofstream file(path(name), std::ios::binary);
  std::ranges::copy(bytes, std::ostreambuf_iterator<char>(file));
  if (!file.flush()) throw std::runtime_error("cannot write " + name);
}

Bytes Workplace::get(const std::string& name) const {
  const std::string content = text(name);
  return {content.begin(), content.end()};
}

std::string Workplace::text(const std::string& name) const {
  std::ifstream file(path(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

Bytes mostlyErased(std::size_t size, std::size_t address, std::string_view text) {
  Bytes bytes(size, 0xFF);
  std::ranges::copy(text, bytes.begin() + static_cast<std::ptrdiff_t>(address));
  return bytes;
}

}  // namespace kestrel::test
