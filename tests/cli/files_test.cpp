#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "cli/run_program.h"

namespace kestrel::test {
namespace {

namespace fs = std::filesystem;

class CodeFile : public testing::Test {
 protected:
  void expectRefused(const std::string& name) {
    const Outcome run = work.simulate({"program", "--yes", "-d", "2764", "-i", name});
    EXPECT_EQ(run.status, 2) << name;
    EXPECT_TRUE(run.told("Can't Open Code File")) << run.err;
    EXPECT_TRUE(run.told(name)) << run.err;
    EXPECT_FALSE(run.logged("Programming Button Pressed")) << name;
  }
  Workplace work;
};

TEST_F(CodeFile, thatCannotBeReadIsRefusedBeforeTheCommand) {
  expectRefused("missing.bin");
  fs::create_directory(work.path("folder"));
  expectRefused("folder");
  work.put("huge.bin", Bytes(2'100'002, 0));
  expectRefused("huge.bin");
  if (::geteuid() == 0) return;  // root may read everything
  work.put("secret.bin", Bytes(1, 0));
  fs::permissions(work.path("secret.bin"), fs::perms::none);
  expectRefused("secret.bin");
}

TEST_F(CodeFile, ofTheLargestSizeAndOfNoneIsLoaded) {
  work.put("full.bin", Bytes(2'100'001, 1));
  const Outcome full = work.simulate({"save-setup", "1", "x", "-d", "2764", "-i", "full.bin"});
  EXPECT_EQ(full.status, 0);
  EXPECT_TRUE(full.logged("Read File CRC = $0B21")) << "2,100,001 is 200B21h";
  work.put("empty.bin", {});
  const Outcome empty =
      work.simulate({"save-setup", "1", "x", "-d", "2764", "-i", "empty.bin", "-o", "copy.bin"});
  EXPECT_EQ(empty.status, 0);
  EXPECT_TRUE(empty.logged("Read File CRC = $0000"));
  EXPECT_TRUE(fs::exists(work.path("copy.bin")));
}

TEST(SaveFile, thatCannotBeWrittenIsTold) {
  const Workplace work;
  fs::create_directory(work.path("out.bin"));
  const Outcome folder = work.simulate({"read", "-d", "2764", "-o", "out.bin"});
  EXPECT_EQ(folder.status, 2);
  EXPECT_TRUE(folder.told("out.bin")) << folder.err;
  const Outcome nowhere = work.simulate({"read", "-d", "2764", "-o", "no/such/out.bin"});
  EXPECT_EQ(nowhere.status, 2);
  EXPECT_TRUE(nowhere.told("no/such/out.bin"));
}

// Nobody, root included, can make a file in /proc.
TEST(HomeFolder, thatCannotBeWrittenIsToldOnceAndTheCommandRuns) {
  const Workplace work;
  work.put("file", {'x'});
  for (const std::string& home : Words{"/proc", work.path("file")}) {
    const Outcome run = work.simulate({"read", "-d", "2764", "-o", "out.bin", "--home", home});
    EXPECT_EQ(run.status, 0) << home;
    const std::size_t told = run.err.find("kestrel6.ini");
    EXPECT_NE(told, std::string::npos) << run.err;
    EXPECT_EQ(told, run.err.rfind("kestrel6.ini")) << run.err;
    EXPECT_EQ(work.get("out.bin").size(), 8192U);
  }
  EXPECT_EQ(work.text("file"), "x");
}

TEST(HomeFolder, thatNamesThePortIsTrustedAtTheNextStart) {
  const Workplace work;
  EXPECT_EQ(work.simulate({"detect"}).log().size(), 8U) << "start-up and command both look";
  const std::string saved = work.text("home/kestrel6.ini");
  EXPECT_NE(saved.find("\r\nIO_PORT = 378\r\nMODEL =  5\r\n"), std::string::npos) << saved;
  const Words second = work.simulate({"save-setup", "1", "x"}).log();
  const Words expected{"Port Selection changed to 378h", "KESTREL-5 Device was FOUND at Port: 378",
                       "Setup Saved as KSSetup1.INI, named:x"};
  EXPECT_EQ(second, expected);
}

TEST(ChipFile, thatIsNotTheChipsIsRefusedAndLeftAlone) {
  const Workplace work;
  work.put("chip.bin", Bytes(8191, 1));
  const Outcome run = work.simulate({"read", "-d", "2764", "--chip", "2764=chip.bin"});
  EXPECT_EQ(run.status, 2);
  EXPECT_TRUE(run.told("8191 bytes")) << run.err;
  EXPECT_TRUE(run.log().empty());
  EXPECT_EQ(work.get("chip.bin"), Bytes(8191, 1));
}

TEST(ChipFile, thatCannotBeWrittenBackIsTold) {
  const Workplace work;
  const Outcome run = work.simulate({"read", "-d", "2764", "--chip", "2764=no/such/chip.bin"});
  EXPECT_EQ(run.status, 2);
  EXPECT_TRUE(run.told("no/such/chip.bin")) << run.err;
}

TEST(TraceFile, thatCannotBeWrittenIsRefusedAtOnce) {
  const Workplace work;
  const Outcome run = work.simulate({"read", "-d", "2764", "--trace", "no/such/trace.txt"});
  EXPECT_EQ(run.status, 2);
  EXPECT_TRUE(run.told("no/such/trace.txt"));
  EXPECT_TRUE(run.log().empty());
}

TEST(Setup, isSavedUnderItsNameAndLoadedByALaterRun) {
  const Workplace work;
  const Outcome save = work.simulate(
      {"save-setup", "2", "ROM set A", "-d", "2764", "--speed", "12", "--lane", "odd", "--verify"});
  EXPECT_EQ(save.status, 0);
  EXPECT_TRUE(save.logged("Setup Saved as KSSetup2.INI, named:ROM set A"));
  const std::string text = work.text("KSSetup2.INI");
  EXPECT_TRUE(text.starts_with("SetupName = ROM set A\r\nsFILE = \r\nDevice.Index = 6\r\n"));
  for (const char* const line : {"VerifyAfterProgramming.Value = 1", "HiLow_button(1).Value = True",
                                 "Slider1.Value = 12", "CheckBlankPriorProgramming.Value = 0"}) {
    EXPECT_NE(text.find(line), std::string::npos) << line;
  }
  const Outcome load = work.simulate({"--setup", "2", "read", "--chip", "2764"});
  EXPECT_EQ(load.status, 0);
  EXPECT_TRUE(load.logged("Device Eprom 2764 was Selected"));
  EXPECT_TRUE(load.logged("Program Speed Slider set to: 12"));
}

TEST(Setup, thatCannotBeWrittenIsAnUnusableFile) {
  const Workplace work;
  fs::create_directory(work.path("KSSetup1.INI"));
  const Outcome save = work.simulate({"save-setup", "1", "x"});
  EXPECT_EQ(save.status, 2);
  EXPECT_TRUE(save.told("KSSetup1.INI")) << save.err;
}

TEST(Setup, whoseCodeFileIsGoneEndsTheRun) {
  const Workplace work;
  work.put("rom.bin", Bytes(10, 0));
  EXPECT_EQ(work.simulate({"save-setup", "1", "x", "-d", "2764", "-i", "rom.bin"}).status, 0);
  fs::remove(work.path("rom.bin"));
  const Outcome load = work.simulate({"--setup", "1", "program", "--yes"});
  EXPECT_EQ(load.status, 2);
  EXPECT_TRUE(load.told(work.path("rom.bin"))) << load.err;
  EXPECT_FALSE(load.logged("Programming Button Pressed"));
}

}  // namespace
}  // namespace kestrel::test
