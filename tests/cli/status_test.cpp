#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <sstream>

#include "app/work/device_catalogue.h"
#include "cli/run_program.h"

namespace kestrel::test {
namespace {

struct Ending {
  const char* words;
  int status;
  const char* told;  ///< part of what is said
};

// Refused, or answered, before the board is touched.
const Ending kAtOnce[] = {
    {"--version", 0, "kestrel-cli 1.0.0\n"},
    {"read --help", 0, "--blank-check"},
    {"devices", 0, "\nEprom 27C256                             32 KB   12.5 V\n"},
    {"save-setup 1 'a\nsFILE = b'", 2, "one line"},
    {"setups", 2, "KSSetup3.INI"},
    {"read --simulate -d 2764 --chip 2764=short.bin", 2, "8191 bytes"},
    {"read --simulate -d 2764 --trace no/such/t.txt", 2, "no/such/t.txt"},
    {"read --simulate -d 24C256", 2, "N/A"},
};

const Ending kAfterStartUp[] = {
    {"detect --model 6 --lpt 3BC", 0, "KESTREL-6 Device was FOUND at Port: 3BC"},
    {"save-setup 4 x -d 2732 --vpp 25", 0, "Programming Voltage as 25 Volts!!!"},
    {"read -d 'eprom 27c256' --home /proc", 0, "kestrel6.ini"},
    {"read -d xicor", 0, "Device Eeprom XICOR X28C256 was Selected"},
    {"read -d 2732", 0, "Device Eprom 2732 was Selected"},
    {"read -d 24C16 --fault empty", 1, "Device 24CXX DOES NOT RESPOND - ACK Error"},
    {"display -d 24C16", 1, "serial EEPROM"},
    {"program -d 2764 -i rom.bin", 5, "--yes answers OK"},
    {"verify -q -d 2764 -i rom.bin", 4, "differs from the buffer at address 0"},
    {"read -q -d 2764", 0, "every byte read is FFh: is the board there, the chip in?"},
    {"display -q -d 2764 --chip 2764=page.bin --page 31", 0,
     "001F00| 6120627B 7D7EFFFF FFFFFFFF FFFFFFFF | a b............."},
    {"erase -y -d 28C256 --speed 12", 0, "Program Speed Slider set to: 12"},
    {"program --yes -d 2764 -i rom.bin --count-ns 1", 1, "*** Programming Failure ***"},
    {"verify -d 2764 -i rom.bin --pad-ff", 4,
     "rom.bin holds 1 byte, the device 8192: it is compared as far as the file goes"},
    {"erase -y -d X28C256 --protect on --algorithms datasheet", 0, "Erasing Device Successfull"},
    {"erase -y -d AM29F040 --chip A29040 --algorithms datasheet", 2, "is a Flash AMIC A29040"},
    {"read -d 27C64 --repeat 2", 0, "Device was Read 2 Times, Unstable Addresses: 0"},
    {"save-setup 3 x", 2, "KSSetup3.INI"},
    {"program -y -d 2764 -i missing.bin", 2, "missing.bin"},
    {"program --yes -d 2764 -i folder", 2, "Can't Open Code File"},
    {"program --yes -d 2764 -i huge.bin", 2, "huge.bin"},
    {"read -d 2764 -o folder", 2, "folder"},
    {"read -d 2764 -o rom.bin -i ./rom.bin", 2, "-i and -o name one file"},
    {"read -d 2764 -q --trace /dev/full", 2, "--trace: Cannot write /dev/full: No space left"},
    {"read -d 2764 -q --waves /dev/full", 2, "--waves: Cannot write /dev/full: No space left"},
    {"read -d 2764 --trace a.vcd --waves ./a.vcd", 2, "--trace and --waves name one file"},
    {"read -d 2764 --force-model 4 --home odd", 0, "KESTREL-4 Device was FORCED"},
    {"read -d 2764 --home odd", 3, "names model 7, which is none of 4, 5 and 6"},
    {"read --setup 1", 2, "there is nothing to read; -d NAME ticks the code"},
    {"read --setup 3", 2, "KSSetup3.INI: Is a directory"},
    {"erase-buffer -q -d 2764 -i rom.bin -o -", 0, "\xFF"},
    {"read -q -i 'a\x1B' -d 2764", 2, "a\\x1B: No such file"},
    {"read -d 2764 --chip 2764=no/such/chip.bin", 2, "no/such/chip.bin"},
};

TEST(ExitStatus, tellsHowTheRunEndedAndTheReasonIsTold) {
  const Workplace work;
  std::filesystem::create_directory(work.path("folder"));
  std::filesystem::create_directory(work.path("KSSetup3.INI"));
  std::filesystem::create_directory(work.path("odd"));
  work.put("odd/kestrel6.ini", "IO_PORT = 378\r\nMODEL = 7\r\n");
  work.put("KSSetup1.INI", "SetupName = x\r\nDevice.Index = 5\r\nCheckCode.Value = 0\r\n");
  work.put("rom.bin", "x");
  work.put("page.bin", mostlyErased(8192, 0x1F00, "a b{}~"));
  work.put("short.bin", std::string(8191, 'x'));
  work.put("huge.bin", std::string(2'100'002, '\1'));
  const auto check = [](const Ending& ending, const Outcome& run) {
    EXPECT_EQ(run.status, ending.status) << ending.words;
    EXPECT_TRUE(run.told(ending.told)) << ending.words << ": " << run.err << run.out;
    EXPECT_FALSE(run.logged("Programming Button Pressed") && ending.status == 2) << ending.words;
  };
  for (const Ending& ending : kAtOnce) {
    const Outcome run = work.run(ending.words);
    check(ending, run);
    EXPECT_EQ(run.log(), "") << ending.words;
  }
  for (const Ending& ending : kAfterStartUp) check(ending, work.simulate(ending.words));
}

TEST(Help, showsTheCommandsWithWhatTheyWantWithin80Columns) {
  const Workplace work;
  const Outcome run = work.run("--help");
  EXPECT_TRUE(run.told("\nCommands:\n") && run.told("\n  save-setup N NAME  ")) << run.out;
  std::istringstream lines(run.out);
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 80U) << line;
}

// Three devices that are not there keep a real port of the test machine out of it.
TEST(ExitStatus, ofACommandThatNeedsABoardIs3WithoutOne) {
  const Workplace work;
  for (const char* const command :
       {"read", "blank", "verify", "program", "erase", "display", "detect"}) {
    const Outcome run =
        work.run(std::string(command) + " --port 378=/dev/no1 --port 278=/dev/no2 --port 3BC=/no3");
    EXPECT_TRUE(run.status == 3 && run.told("Can't Locate Kestrel Board")) << command;
  }
}

TEST(ExitStatus, ofAFileBeyondTheLimitOfItsSizeIsAnErrorAndNoDeath) {
  const Workplace work;
  const pid_t process = ::fork();
  if (process == 0) {
    const rlimit limit{.rlim_cur = 16'384, .rlim_max = 16'384};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    work.become("--simulate read -d 27C256 -o out.bin </dev/null >out.txt 2>err.txt");
  }
  const Outcome run = work.finish(process);
  EXPECT_EQ(run.status, 2) << run.err;
  EXPECT_TRUE(run.told("out.bin: File too large")) << run.err;
  EXPECT_FALSE(std::filesystem::exists(work.path("out.bin")));
}

/// What bash offers for the last of these words; a word that is not there yet is ''.
std::string completions(const std::string& words) {
  // "compopt" works at the prompt alone.
  const std::string script =
      "source " KESTREL_COMPLETION "; compopt() { :; }; COMP_WORDS=(" KESTREL_CLI " " + words +
      "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _kestrel_cli; echo -n ${COMPREPLY[*]}";
  const std::string command = "bash --norc -c \"$(cat <<'END'\n" + script + "\nEND\n)\"";
  const std::unique_ptr<FILE, int (*)(FILE*)> bash(::popen(command.c_str(), "r"), ::pclose);
  std::string offered;
  for (int c = 0; (c = std::fgetc(bash.get())) != EOF;) offered += static_cast<char>(c);
  return offered;
}

TEST(Completion, offersWhatFitsBehindTheWordBefore) {
  EXPECT_EQ(completions("sa"), "save-project save-setup safe");
  EXPECT_EQ(completions("read ''"), "") << "the command is there";
  EXPECT_EQ(completions("read --s"),
            "--save-format --several --serial --simulate --setup --speed --show --select-port");
  EXPECT_EQ(completions("read --vpp 2"), "21 25");
  EXPECT_EQ(completions("read -d 27c259"), "27C259") << "in either case";
  EXPECT_EQ(completions("read --chip 24c08"), "24C08");
  EXPECT_EQ(completions("read --chip 24c256"), "") << "not offered";
}

TEST(Completion, ofADeviceMeansThatDevice) {
  const work::DeviceCatalogue catalogue;
  std::stringstream names;
  catalogue.printNames(names);
  int count = 0;
  for (std::string name; std::getline(names, name); ++count) {
    EXPECT_EQ(catalogue.find(name).shortName, name);
    EXPECT_EQ(name.find(' '), std::string::npos) << "bash would offer two words";
  }
  EXPECT_GT(count, 0);
}

}  // namespace
}  // namespace kestrel::test
