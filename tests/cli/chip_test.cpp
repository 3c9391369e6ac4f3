#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <tuple>

#include "cli/run_program.h"

namespace kestrel::test {
namespace {

TEST(Read, savesTheChipByteForByteWithItsChecksum) {
  const Workplace work;
  std::string chip(32768, '\3');
  for (std::size_t i = 0; i < 256; ++i) chip[i * 128] = static_cast<char>(i);
  work.put("chip.bin", chip);
  const Outcome run = work.simulate("--chip 27C256=chip.bin read -d 27C256 -o out.bin");
  EXPECT_TRUE(run.status == 0 && run.err.empty()) << run.err << "no bar off the terminal";
  EXPECT_EQ(work.text("out.bin"), chip);
  // The start-up's lines too, although the form empties its log after it. The sum is 32,640 of the
  // counted bytes and 32,512 times 3: 130,176 = 1FC80h.
  EXPECT_EQ(run.log(),
            "Port 278 Not Responding\nPort 3BC Not Responding\n"
            "Port Selection changed to 378h\nKESTREL-5 Device was FOUND at Port: 378\n"
            "Most Common Programming Voltage Selected: 12.5 Volts!!!\n"
            "Device Eprom 27C256 was Selected\n"
            "Device Size is: 32768 Bytes, Initial VPP suggested: 12.5V\n"
            "32768 bytes Read from Device\nDevice CHKSUMM = $FC80\n"
            "Data is available at above Window, use Scroll Bar\n"
            "You can Save the file using [FILE - Save As] menu\nFile Sucessfully Saved as " +
                work.path("out.bin") + "\n");
}

// From one run to the next the chip is its file.
TEST(Program, thenVerifyInAnotherRunByTheChipsFile) {
  const Workplace work;
  work.put("rom.bin", mostlyErased(8192, 0x1FF0, "sixteen bytes..."));
  const std::string chip = " -d 2764 --chip 2764=chip.bin -i rom.bin";
  const auto endsWith = [&](const std::string& words, int status, const std::string& message) {
    const Outcome run = work.simulate(words + chip);
    EXPECT_TRUE(run.status == status && run.logged(message)) << words << run.err << run.out;
  };
  endsWith("program --yes --vpp 21 --blank-check --verify", 0,
           "Device Contents MATCHES with Buffer Contents");
  EXPECT_EQ(work.text("chip.bin"), work.text("rom.bin"));
  endsWith("verify", 0, "Device Contents MATCHES with Buffer Contents");
  endsWith("blank", 4, "Address: 1FF0 ][ Device Data: 73");
  work.put("rom.bin", mostlyErased(8192, 0x1FF0, "sixteen byteS..."));
  endsWith("verify", 4, "Address: 1FFC ][ Buffer Data: 53 ][ Device Data: 73");
}

TEST(Program, leavesInTheChipsFileWhatWasWritten) {
  const Workplace work;
  work.put("rom.bin", mostlyErased(8192, 0x10, "abcd"));
  for (const auto& [words, status, chip] :
       {std::tuple(" --yes", 0, mostlyErased(8192, 0x10, "abcd")),
        {" --yes --lane odd", 0, mostlyErased(8192, 8, "bd")},
        {"", 5, mostlyErased(8192, 0, "")},
        {" --yes --verify --fault weak:11", 1, mostlyErased(8192, 0x10, "a")}}) {
    std::filesystem::remove(work.path("chip.bin"));
    std::filesystem::remove(work.path("saved.bin"));
    const Outcome run = work.simulate(
        std::string("program -d 27C64 -i rom.bin --chip 27C64=chip.bin -o saved.bin") + words);
    EXPECT_EQ(run.status, status) << words;
    EXPECT_EQ(work.text("chip.bin"), chip) << words;
    EXPECT_FALSE(run.logged("Verify Function Started... Wait")) << words;
    EXPECT_EQ(work.text("saved.bin").empty(), status != 0) << "nothing follows a failure";
  }
}

// A port that reads FFh everywhere: the byte does not read back, the rest of the chip stays.
// An EPROM makes zeros of ones, never the other way; told before the first pulse, also unattended.
TEST(Program, refusesAnImageThatTheChipCannotTakeBeforeTheFirstPulse) {
  const Workplace place;
  const std::string chip = mostlyErased(8'192, 0x10, "abc");
  place.put("possible.bin", mostlyErased(8'192, 0x10, "  @"));
  place.put("short.bin", mostlyErased(0x12, 0x10, "gg"));
  for (const char* const way : {"classic", "datasheet"}) {
    const std::string program =
        std::string("program -d 27C64 --chip 27C64=chip.bin --algorithms ") + way;
    place.put("chip.bin", chip);
    const Outcome refused = place.simulate(program + " -i short.bin --pad-ff --check -y");
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.told("a 0 would have to become a 1 in 3 bytes (0010-0012)")) << refused.err;
    EXPECT_EQ(place.text("chip.bin"), chip);
    EXPECT_EQ(place.simulate(program + " -i possible.bin --check -y --verify").status, 0);
    EXPECT_NE(place.text("chip.bin"), chip);
  }
}

TEST(Program, failsWhenTheBoardIsUnplugged) {
  const Workplace work;
  work.put("rom.bin", std::string(8192, '\0'));
  const Outcome run =
      work.simulate("program --yes -d 27C64 -i rom.bin --chip 27C64=chip.bin --fault unplug:9000");
  EXPECT_TRUE(run.status == 1 && run.logged("*** Programming Failure ***")) << run.out;
  const std::string chip = work.text("chip.bin");
  const auto written = std::ranges::count(chip, '\0');
  EXPECT_TRUE(written > 10 && written < 4000) << written;
  EXPECT_EQ(std::ranges::count(chip, '\xFF'), 8192 - written);
}

TEST(Progress, tellsEachHundredthOnceInJson) {
  const Workplace work;
  const Outcome run = work.simulate("read -q --json -d 27C256");
  const std::string mark = "\"event\":\"progress\",\"percent\":";
  std::vector<int> percents;
  for (std::size_t at = 0; (at = run.out.find(mark, at)) != std::string::npos; ++at) {
    percents.push_back(std::atoi(run.out.c_str() + at + mark.size()));
  }
  ASSERT_EQ(percents.size(), 101U) << "128 pages; 0 at the first, which is below one";
  const Outcome alert = work.simulate("blank -q --json -d 2764 --fault stuck:0");
  EXPECT_GT(alert.out.find("\"event\":\"result\""), alert.out.rfind(mark)) << alert.out;
}

TEST(Setup, isSavedUnderItsNameAndLoadedByALaterRun) {
  const Workplace work;
  work.put("rom.bin", "x");
  const Outcome save =
      work.simulate("save-setup 2 'ROM set A' -d 2764 -i rom.bin --speed 12 --lane odd --verify");
  EXPECT_TRUE(save.logged("Setup Saved as KSSetup2.INI, named:ROM set A")) << save.err;
  const Outcome list = work.run("setups");
  EXPECT_TRUE(list.status == 0 && list.told("1  empty\n2  ROM set A ")) << list.out;
  EXPECT_TRUE(list.told(" Eprom 2764 ") && list.told(work.path("rom.bin") + "\n")) << list.out;
  const Outcome load = work.simulate("--setup 2 read --chip 2764 --speed 7");
  const std::string log = load.log();
  const std::size_t device = log.find("Device Eprom 2764 was Selected\n");
  const std::size_t speed = log.find("Program Speed Slider set to: 12\n");
  EXPECT_TRUE(log.starts_with("Port Selection changed to 378h\n")) << "a saved port is not probed";
  EXPECT_TRUE(load.status == 0 && device < speed) << log;
  EXPECT_LT(speed, log.find("Program Speed Slider set to: 7\n")) << "the options come after it";
  std::filesystem::remove(work.path("rom.bin"));
  EXPECT_EQ(work.simulate("--setup 2 program --yes").status, 2);
}

}  // namespace
}  // namespace kestrel::test
