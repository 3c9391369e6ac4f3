#include <gtest/gtest.h>

#include "cli/run_program.h"

namespace kestrel::test {
namespace {

struct Misuse {
  const char* name;
  Words words;
  Words told;  ///< parts of the message
};

class Usage : public testing::TestWithParam<Misuse> {};

TEST_P(Usage, isToldWithTheOptionAndTheRemedyAndTouchesNothing) {
  const Workplace work;
  const Outcome run = work.run(GetParam().words);
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_TRUE(run.err.starts_with("kestrel-cli: "));
  for (const std::string& part : GetParam().told) EXPECT_TRUE(run.told(part)) << run.err;
}

const std::vector<Misuse> kMisuses{
    {"noCommand", {"--simulate"}, {"no command", "devices, detect, read"}},
    {"unknownCommand", {"raed"}, {"\"raed\" is no command", "save-setup, safe"}},
    {"unknownOption", {"read", "--fast"}, {"--fast is no option", "--help"}},
    {"optionWithoutValue", {"read", "-d"}, {"-d needs a value"}},
    {"optionTwice", {"-d", "2764", "read", "-d", "2732"}, {"-d is given twice"}},
    {"emptyName", {"read", "--simulate", "-o", ""}, {"-o is empty"}},
    {"speedTooHigh", {"read", "--speed", "21"}, {"--speed", "21", "1 (slow) to 20"}},
    {"voltage", {"read", "--vpp", "13"}, {"--vpp", "12.5, 21 or 25"}},
    {"lane", {"read", "--lane", "both"}, {"--lane", "all, odd or even"}},
    {"slot", {"--setup", "5", "read"}, {"--setup", "1 to 4"}},
    {"saveSlot", {"save-setup", "0", "x"}, {"save-setup", "1 to 4"}},
    {"saveWithoutName", {"save-setup", "1"}, {"NAME"}},
    {"nameOfTwoLines", {"save-setup", "1", "a\nsFILE = b"}, {"one line"}},
    {"pageOfRead", {"read", "--page", "1"}, {"--page", "display"}},
    {"showOfBlank", {"blank", "--show"}, {"--show", "read"}},
    {"modelOfRealBoard", {"read", "--model", "6"}, {"--model", "add --simulate"}},
    {"chip", {"read", "--simulate", "--chip", "27C999"}, {"--chip", "27C256"}},
    {"realPort", {"read", "--port", "379=/dev/parport0"}, {"--port", "378, 278 or 3BC", "379"}},
};

INSTANTIATE_TEST_SUITE_P(Errors, Usage, testing::ValuesIn(kMisuses),
                         [](const auto& instance) { return instance.param.name; });

TEST(Options, mayStandBeforeAndAfterTheCommand) {
  const Workplace work;
  EXPECT_EQ(work.run({"--simulate", "-d", "2764", "read", "--quiet", "--show"}).status, 0);
  EXPECT_EQ(work.run({"read", "--show", "--quiet", "-d", "2764", "--simulate"}).status, 0);
}

TEST(Options, forHelpAndVersionAnswerAndEnd) {
  const Workplace work;
  EXPECT_EQ(work.run({"--version"}).out, "kestrel-cli 1.0.0\n");
  const Outcome help = work.run({"read", "--help"});
  EXPECT_EQ(help.status, 0);
  for (const char* const word : {"--blank-check", "--chip", "save-setup", "--count-ns"}) {
    EXPECT_NE(help.out.find(word), std::string::npos) << word;
  }
}

struct Disabled {
  const char* name;
  Words words;
  const char* told;
};

class DisabledControl : public testing::TestWithParam<Disabled> {};

TEST_P(DisabledControl, endsTheRunWithItsReason) {
  const Workplace work;
  const Outcome run = work.simulate(GetParam().words);
  EXPECT_EQ(run.status, 2);
  EXPECT_TRUE(run.told(GetParam().told)) << run.err;
}

const std::vector<Disabled> kDisabled{
    {"readNothing", {"read"}, "read: no device is selected; add -d NAME"},
    {"vppOfNothing", {"read", "--vpp", "21"}, "--vpp: no device is selected"},
    {"boxOfNothing", {"read", "--blank-check"}, "--blank-check: no device is selected"},
    {"vppTooHigh", {"read", "-d", "27C256", "--vpp", "21"}, "does not take 21 V (offered: 12.5 V)"},
    {"vppOfEeprom", {"read", "-d", "24C16", "--vpp", "12.5"}, "(offered: 5 V)"},
    {"blankOfSerial", {"blank", "-d", "24C16"}, "a serial EEPROM has no blank check"},
    {"verifyNothing", {"verify", "-d", "2764"}, "verify: there is nothing to compare with; add -i"},
    {"programNothing", {"program", "-d", "2764", "--yes"}, "program: there is nothing to program"},
    {"eraseOfEprom", {"erase", "-d", "2764"}, "erase: an EPROM is erased under the lamp"},
    {"saveNothing", {"blank", "-d", "2764", "-o", "x"}, "-o: the buffer holds nothing to save"},
    {"emptySlot", {"read", "--setup", "2"}, "KSSetup2.INI"},
    {"pagePastEnd", {"display", "-d", "2764", "--page", "32"}, "--page 32: the pages are 0 to 31"},
};

INSTANTIATE_TEST_SUITE_P(Refused, DisabledControl, testing::ValuesIn(kDisabled),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
}  // namespace kestrel::test
