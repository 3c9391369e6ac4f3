#include "cli/console_dialogs.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <iostream>

#include "app/state/text_format.h"
#include "platform/file_names.h"

namespace kestrel::cli {

Answer ConsoleDialogs::messageBox(const MessageBox& box) {
  view_.clearProgress();
  if (box.buttons == MessageButtons::OkCancel) {
    if (!yes_) return ask(box);
    return box.cannotSucceed ? Answer::Cancel : Answer::Ok;
  }
  const bool isNamed = !box.title.empty() && box.title != "Kestrel";
  std::cerr << "kestrel-cli: " << (isNamed ? box.title + ": " : std::string())
            << shownName(box.text) << std::endl;
  return Answer::Ok;
}

// The question needs somebody who reads it and somebody who answers.
Answer ConsoleDialogs::ask(const MessageBox& box) {
  if (::isatty(STDIN_FILENO) == 0 || ::isatty(STDERR_FILENO) == 0) {
    std::cerr << "kestrel-cli: " << box.text
              << " Cancelled: there is no terminal to ask at; --yes answers OK." << std::endl;
    return Answer::Cancel;
  }
  for (const Fact& fact : box.facts) {
    std::cerr << (fact.isWarning ? "! " : "  ") << fact.text << '\n';
  }
  std::cerr << box.title << ": " << box.text << " [ok/Cancel] " << std::flush;
  const std::optional<std::string> line = readLine();
  if (!line) {
    std::cerr << std::endl;
    return Answer::Cancel;
  }
  const std::string word = upperCase(trimmed(*line));
  return word == "OK" || word == "O" || word == "YES" || word == "Y" ? Answer::Ok : Answer::Cancel;
}

// Byte by byte, past the streams: what they hold back could not be waited for.
std::optional<std::string> ConsoleDialogs::readLine() const {
  std::string line;
  for (char c = 0; isLineComing();) {
    const ssize_t count = ::read(STDIN_FILENO, &c, 1);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return line.empty() ? std::nullopt : std::optional(line);
    if (c == '\n') return line;
    line += c;
  }
  return std::nullopt;
}

// A signal that arrives just before the read would leave it waiting for ever; so both are waited
// for.
bool ConsoleDialogs::isLineComing() const {
  std::array<pollfd, 2> waits{{{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0},
                               {.fd = endDescriptor_, .events = POLLIN, .revents = 0}}};
  while (::poll(waits.data(), waits.size(), -1) < 0) {
    if (errno != EINTR) return true;
  }
  return waits[1].revents == 0;
}

std::string ConsoleDialogs::inputBox(const std::string& /*prompt*/, const std::string& /*title*/) {
  return takePrepared();
}

std::string ConsoleDialogs::openFile(const std::string& /*title*/, const std::string& /*filter*/) {
  return takePrepared();
}

std::string ConsoleDialogs::saveFile(const std::string& /*title*/, const std::string& /*filter*/) {
  return takePrepared();
}

}  // namespace kestrel::cli
