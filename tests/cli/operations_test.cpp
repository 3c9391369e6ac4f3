#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

#include "cli/run_program.h"

namespace kestrel::test {
namespace {

TEST(Read, savesTheChipByteForByteWithItsChecksum) {
  const Workplace work;
  Bytes chip(32768, 0x03);
  for (std::size_t i = 0; i < 256; ++i) chip[i * 128] = static_cast<std::uint8_t>(i);
  work.put("chip.bin", chip);
  const Outcome run =
      work.simulate({"--chip", "27C256=chip.bin", "read", "-d", "27C256", "-o", "out.bin"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(work.get("out.bin"), chip);
  // The start-up's lines too, although the form empties its log after it. The sum is 32,640 of the
  // counted bytes and 32,512 times 3: 130,176 = 1FC80h.
  const Words expected{"Port 278 Not Responding",
                       "Port 3BC Not Responding",
                       "Port Selection changed to 378h",
                       "KESTREL-5 Device was FOUND at Port: 378",
                       "Most Common Programming Voltage Selected: 12.5 Volts!!!",
                       "Device Eprom 27C256 was Selected",
                       "Device Size is: 32768 Bytes, Initial VPP suggested: 12.5V",
                       "32768 bytes Read from Device",
                       "Device CHKSUMM = $FC80",
                       "Data is available at above Window, use Scroll Bar",
                       "You can Save the file using [FILE - Save As] menu",
                       "File Sucessfully Saved as " + work.path("out.bin")};
  EXPECT_EQ(run.log(), expected);
}

TEST(Read, showsTheFirstPageAlsoWhenTheLogIsOff) {
  const Workplace work;
  work.put("chip.bin", mostlyErased(8192, 16, "ABCDEFGHIJKLMNOP"));
  const Outcome run =
      work.simulate({"read", "-d", "2764", "--chip", "2764=chip.bin", "--show", "--quiet"});
  EXPECT_EQ(run.status, 0);
  EXPECT_TRUE(
      run.out.starts_with("000000| FFFFFFFF FFFFFFFF FFFFFFFF FFFFFFFF | ................\n"
                          "000010| 41424344 45464748 494A4B4C 4D4E4F50 | ABCDEFGHIJKLMNOP\n"))
      << run.out;
  EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 16);
}

TEST(Display, showsThePageOfTheChip) {
  const Workplace work;
  work.put("chip.bin", mostlyErased(8192, 0x1F00, "a b{}~"));
  const Outcome run =
      work.simulate({"display", "-d", "2764", "--chip", "2764=chip.bin", "--page", "31"});
  EXPECT_EQ(run.status, 0);
  EXPECT_TRUE(run.logged("Fetching Device Binary Contents to Screen"));
  EXPECT_NE(run.out.find("\n001F00| 6120627B 7D7EFFFF FFFFFFFF FFFFFFFF | a b.............\n"),
            std::string::npos)
      << run.out;
}

TEST(Display, ofASerialChipIsARoutineThatIsNotThere) {
  const Workplace work;
  const Outcome run = work.simulate({"display", "-d", "24C16"});
  EXPECT_EQ(run.status, 1);
  EXPECT_TRUE(run.logged("Fetching Device Binary Contents to Screen"));
  EXPECT_TRUE(run.told("serial EEPROM"));
}

// From one run to the next the chip is its file.
TEST(Program, thenVerifyInAnotherRunByTheChipsFile) {
  const Workplace work;
  work.put("rom.bin", mostlyErased(8192, 0x1FF0, "sixteen bytes..."));
  const Words chip{"-d", "2764", "--vpp", "21", "--chip", "2764=chip.bin", "-i", "rom.bin"};
  const auto with = [&](Words words) {
    words.insert(words.end(), chip.begin(), chip.end());
    return work.simulate(words);
  };
  const Outcome program = with({"program", "--yes", "--blank-check", "--verify"});
  EXPECT_EQ(program.status, 0);
  EXPECT_TRUE(program.logged("Device IS BLANK (ERASED)"));
  EXPECT_TRUE(program.logged("Programming Device Successfull"));
  EXPECT_TRUE(program.logged("Device Contents MATCHES with Buffer Contents"));
  EXPECT_EQ(work.get("chip.bin"), work.get("rom.bin"));
  EXPECT_EQ(with({"verify"}).status, 0);

  const Outcome blank = with({"blank"});
  EXPECT_EQ(blank.status, 1);
  EXPECT_TRUE(blank.logged("Device IS NOT BLANK (ERASED)"));
  EXPECT_TRUE(blank.logged("Address: 1FF0 ][ Device Data: 73"));

  work.put("rom.bin", mostlyErased(8192, 0x1FF0, "sixteen byteS..."));
  const Outcome verify = with({"verify"});
  EXPECT_EQ(verify.status, 1);
  EXPECT_TRUE(verify.logged("Address: 1FFC ][ Buffer Data: 53 ][ Device Data: 73"));
}

TEST(Program, asksAndWithoutATerminalTheAnswerIsCancel) {
  const Workplace work;
  work.put("rom.bin", mostlyErased(8192, 0, "x"));
  const Outcome run =
      work.simulate({"program", "-d", "2764", "--chip", "2764=chip.bin", "-i", "rom.bin"});
  EXPECT_EQ(run.status, 1);
  EXPECT_TRUE(run.logged("Programming was Canceled by Operator"));
  EXPECT_TRUE(run.told("--yes answers OK"));
  EXPECT_EQ(work.get("chip.bin"), Bytes(8192, 0xFF)) << "a new chip is written back blank";
}

TEST(Program, writesTheLaneThatWasChosen) {
  const Workplace work;
  work.put("rom.bin", mostlyErased(8192, 0, "abcd"));
  for (const auto& [lane, text] : {std::pair("odd", "bd"), std::pair("even", "ac")}) {
    const std::string file = std::string(lane) + ".bin";
    const Outcome run = work.simulate({"program", "--yes", "-d", "27C64", "-i", "rom.bin", "--lane",
                                       lane, "--chip", "27C64=" + file});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(work.get(file), mostlyErased(8192, 0, text)) << lane;
  }
}

TEST(Program, failsAtAWeakCellAndKeepsWhatWasWritten) {
  const Workplace work;
  work.put("rom.bin", mostlyErased(8192, 0x10, "AB"));
  const Outcome run =
      work.simulate({"program", "--yes", "--verify", "-d", "27C64", "-i", "rom.bin", "--chip",
                     "27C64=chip.bin", "--fault", "weak:11", "-o", "saved.bin"});
  EXPECT_EQ(run.status, 1);
  EXPECT_TRUE(run.logged("*** Programming Failure ***")) << run.out;
  EXPECT_FALSE(run.logged("Verify Function Started... Wait"));
  EXPECT_EQ(work.get("chip.bin"), mostlyErased(8192, 0x10, "A"));
  EXPECT_TRUE(work.get("saved.bin").empty()) << "what follows a failed command is not done";
}

TEST(Faults, ofTheBoardAreSeenByTheCommand) {
  const Workplace work;
  const Outcome stuck = work.simulate({"read", "-d", "2764", "--fault", "stuck:0"});
  EXPECT_EQ(stuck.status, 0) << "the hardware test looks at other lines";
  EXPECT_TRUE(stuck.logged("Device CHKSUMM = $C000")) << "8192 times FEh: 1FC000h";
  const Outcome blank = work.simulate({"blank", "-d", "2764", "--fault", "stuck:0"});
  EXPECT_EQ(blank.status, 1);
  EXPECT_TRUE(blank.logged("Address: 0 ][ Device Data: FE"));
  const Outcome empty = work.simulate({"read", "-d", "24C16", "--fault", "empty", "-o", "out.bin"});
  EXPECT_EQ(empty.status, 1);
  EXPECT_TRUE(empty.logged("Device 24CXX DOES NOT RESPOND - ACK Error"));
  EXPECT_TRUE(work.get("out.bin").empty());
}

// A port that reads FFh everywhere: the byte does not read back, the rest of the chip stays.
TEST(Faults, unpluggingInTheMiddleOfProgrammingIsAFailure) {
  const Workplace work;
  const Bytes rom(8192, 0x00);
  work.put("rom.bin", rom);
  const Outcome run = work.simulate({"program", "--yes", "-d", "27C64", "-i", "rom.bin", "--chip",
                                     "27C64=chip.bin", "--fault", "unplug:9000"});
  EXPECT_EQ(run.status, 1);
  EXPECT_TRUE(run.logged("*** Programming Failure ***")) << run.out;
  const Bytes chip = work.get("chip.bin");
  const auto written = std::ranges::count(chip, 0x00);
  EXPECT_GT(written, 10);
  EXPECT_LT(written, 4000);
  EXPECT_EQ(std::ranges::count(chip, 0xFF), 8192 - written);
}

TEST(Erase, ofAnEepromLeavesItBlank) {
  const Workplace work;
  work.put("chip.bin", Bytes(32768, 0x00));
  const Outcome run =
      work.simulate({"erase", "-d", "X28C256", "--speed", "12", "--chip", "28C256=chip.bin"});
  EXPECT_EQ(run.status, 0) << run.out;
  EXPECT_EQ(work.get("chip.bin"), Bytes(32768, 0xFF));
}

TEST(Detect, tellsAModel6OnEachPort) {
  const Workplace work;
  for (const std::string& port : Words{"378", "278", "3BC"}) {
    const Outcome run = work.simulate({"detect", "--model", "6", "--lpt", port});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.log().back(), "KESTREL-6 Device was FOUND at Port: " + port);
  }
}

TEST(Safe, loadsTheIdleValueIntoLatch0OfEitherFamily) {
  const Workplace work;
  const Outcome run = work.simulate({"safe", "--lpt", "278", "--trace", "t.txt"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, "Port 278h: latch 0 loaded with 40h, every voltage is off\n");
  EXPECT_EQ(work.text("t.txt"),
            "out 278 40\nout 27A 05\nout 27A 04\nout 27A 05\n"
            "out 27A 0A\nout 27A 0B\nout 27A 0A\n");
}

// Three devices that are not there keep a real port of the test machine out of it.
TEST(NoBoard, endsEveryCommandThatNeedsOne) {
  const Workplace work;
  const Words nothing{"--port", "378=/dev/no1", "--port", "278=/dev/no2", "--port", "3BC=/dev/no3"};
  for (const char* const command :
       {"read", "blank", "verify", "program", "erase", "display", "detect"}) {
    Words words{command};
    words.insert(words.end(), nothing.begin(), nothing.end());
    const Outcome run = work.run(words);
    EXPECT_EQ(run.status, 3) << command;
    EXPECT_TRUE(run.logged("Can't Locate Kestrel Board at Any LPT port.")) << command;
    EXPECT_TRUE(run.told("board")) << command;
  }
}

}  // namespace
}  // namespace kestrel::test
