#include <gtest/gtest.h>

#include <sstream>
#include <string_view>

#include "cli/run_program.h"

namespace kestrel::test {
namespace {

/// With S in place of each time in seconds, which has a point: behind the mark.
std::string withoutTimes(std::string line, std::string_view mark) {
  for (std::size_t at = 0; (at = line.find(mark, at)) != std::string::npos;) {
    at += mark.size();
    const std::size_t length = line.find_first_not_of("0123456789.e-", at) - at;
    if (line.substr(at, length).find('.') != std::string::npos) line.replace(at, length, "S");
  }
  return line;
}

/// What a run printed, without what differs from run to run and without start, log and progress.
std::string printed(const Workplace& work, const Outcome& run) {
  std::string text = run.out + run.err;
  const std::string folder = work.path("");
  for (std::size_t at = 0; (at = text.find(folder)) != std::string::npos;) {
    text.replace(at, folder.size(), "DIR/");
  }
  std::istringstream lines(text);
  text.clear();
  for (std::string line; std::getline(lines, line);) {
    const auto is = [&](const char* event) {
      return line.find("\"event\":\"" + std::string(event)) != std::string::npos;
    };
    if (is("start") || is("log") || is("progress")) continue;
    text += withoutTimes(withoutTimes(line, "seconds\":"), ", ") + "\n";
  }
  return text.empty() ? "\n" : text;
}

// A line "$STATUS WORDS" is a command, run with the files that the commands before it left; under
// it stands what it prints, or the beginning of that and three dots. One line on standard error,
// with the program's name before it, stands behind "=>".
TEST(Transcript, ofEachCommandIsWordForWordWhatPeopleAndProgramsRead) {
  const Workplace work;
  work.put("rom.bin", "x");
  work.put("a.bin", "123456789.......");
  work.put("odd.bin", "abcdefgh");
  work.put("empty.bin", "");
  work.put("go", "\nq\n");
  work.put("good.hex", ":0400300001020304C2\n:00000001FF\n");
  work.put("back.hex", ":020010000708DF\n:020000000102FB\n:01000200FEFF\n:00000001FF\n");
  work.put("c64.bin", mostlyErased(8192, 0, "abc"));
  work.put("big.bin", std::string(8200, 'b'));
  work.put("KSSetup4.INI", "SetupName = Lot 7\r\nDevice.Index = 5\r\n");
  std::ifstream file(KESTREL_TRANSCRIPT);
  std::string line;
  for (std::getline(file, line); file;) {
    const std::size_t arrow = line.find(" => ");
    const std::string command = line.substr(0, arrow);
    std::string expected = command + "\n";
    if (arrow != std::string::npos) expected += "kestrel-cli: " + line.substr(arrow + 4) + "\n";
    while (std::getline(file, line) && !line.starts_with('$')) expected += line + "\n";
    const Outcome run = work.run(command.substr(3));
    std::string found = "$" + std::to_string(run.status) + command.substr(2) + "\n";
    found += printed(work, run);
    if (expected.ends_with("...\n")) found = found.substr(0, expected.size() - 4) + "...\n";
    EXPECT_EQ(found, expected);
  }
}

}  // namespace
}  // namespace kestrel::test
