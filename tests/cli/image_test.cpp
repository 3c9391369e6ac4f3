#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <tuple>

#include "cli/run_program.h"

namespace kestrel::test {
namespace {

std::string noise(std::size_t size) {
  std::string bytes(size, '\0');
  for (unsigned i = 0; i < size; ++i) bytes[i] = static_cast<char>((i * 2654435761U) >> 21U);
  return bytes;
}

/// A tool of the system in the workplace; its exit status.
int tool(const Workplace& work, const std::string& words) {
  return std::system(("cd " + work.path("") + " && " + words + " >tool.txt 2>&1").c_str());
}

// Two blocks with a hole, made by other people's tools, into a chip and out again.
TEST(Import, readsWhatOtherToolsWriteAndExportsWhatTheyRead) {
  const Workplace work;
  if (tool(work, "srec_cat --version") != 0) GTEST_SKIP() << "srec_cat is not installed";
  const std::string low = noise(0x1234);
  const std::string high = noise(0x333);
  work.put("low.bin", low);
  work.put("high.bin", high);
  work.put("whole.bin", low + std::string(0x1A00 - low.size(), '\xFF') + high);
  const std::string blocks = "srec_cat low.bin -binary high.bin -binary -offset 0x1A00 -o a.x ";
  for (const auto& [make, format] : {std::pair(blocks + "-intel", "ihex"),
                                     {blocks + "-motorola", "srec"},
                                     {blocks + "-tektronix", "tek"},
                                     {blocks + "-tektronix-extended", "tekx"},
                                     {blocks + "-texas-instruments-text", "ti-txt"},
                                     {blocks + "-texas-instruments-tagged", "ti-tagged"},
                                     {blocks + "-ascii-hex", "ascii-hex"},
                                     {blocks + "-mos-technologies", "mos"},
                                     {"objcopy -I binary -O ihex whole.bin a.x", "ihex"},
                                     {"objcopy -I binary -O srec whole.bin a.x", "srec"},
                                     {"objcopy -I binary -O verilog whole.bin a.x", "vmem"}}) {
    ASSERT_EQ(tool(work, make), 0) << work.text("tool.txt");
    const std::string name = format;
    const std::string saved = name == "vmem" ? "srec" : name;
    const Outcome run =
        work.simulate("program read --yes --chip 27C64 -d 27C64 -i a.x -o b.x --format " + name +
                      " --save-format " + saved);
    ASSERT_EQ(run.status, 0) << make << run.err << run.out;
    ASSERT_EQ(work.run("image convert -i b.x --format " + saved + " -o b.bin --save-format binary")
                  .status,
              0);
    EXPECT_TRUE(work.text("b.bin") == mostlyErased(8192, 0, work.text("whole.bin"))) << make;
    const std::string reader = make.substr(make.rfind(" -"));
    if (!make.starts_with("srec_cat")) continue;
    EXPECT_EQ(tool(work, "srec_cmp b.x" + reader + " whole.bin -binary -fill 0xFF 0 0x2000"), 0)
        << make << work.text("tool.txt");
  }
}

TEST(Export, writesTheRangeUnderTheAddressThatItIsGiven) {
  const Workplace work;
  work.put("chip.bin", mostlyErased(8192, 0x10, "abcd"));
  const std::string read =
      "read -q -d 27C64 --chip 27C64=chip.bin -o part.s28 --range 10-13 --at F0000 ";
  EXPECT_EQ(work.simulate(read + "--save-format auto").status, 0);
  // 8 + 0F + 61 + 62 + 63 + 64 = 1A1h, whose complement ends in 5E.
  EXPECT_TRUE(work.text("part.s28").starts_with("S2080F0000616263645E\n")) << work.text("part.s28");
  EXPECT_TRUE(work.simulate(read + "--save-format tek").told("has no addresses above FFFF"));
}

TEST(Import, refusesWhatIsDamagedOrDoesNotFitAndChangesNothing) {
  const Workplace work;
  const std::string good = ":0400300001020304C2\n:00000001FF\n";
  work.put("good.hex", good);
  work.put("sum.hex", ":0400300001020304C3\n:00000001FF\n");
  work.put("end.hex", ":0400300001020304C2\n");
  work.put("far.hex", ":020000040001F9\n:0400300001020304C2\n:00000001FF\n");
  work.put("empty.hex", "");
  std::filesystem::create_directory(work.path("folder"));
  const std::string program = "program --yes -d 27C64 --chip 27C64=chip.bin ";
  for (const auto& [words, told] :
       {std::pair("-i sum.hex --format auto", "Cannot import sum.hex: line 1: checksum mismatch"),
        {"-i end.hex --format auto", "no end-of-file record"},
        {"-i far.hex --format ihex", "data at 10030-10033, the chip ends at 1FFF; a range FROM-TO"},
        {"-i good.hex --format srec", "Cannot import good.hex: line "},
        {"-i good.hex --format ihex --at 1FFE", "the chip ends at 1FFF"},
        {"-i empty.hex --format auto", "empty"},
        {"-i folder --format auto", "Is a directory"},
        {"-i good.hex --at 10000000000", "is no address"}}) {
    const Outcome run = work.simulate(program + words);
    EXPECT_EQ(run.status, 2) << words << run.err;
    EXPECT_TRUE(run.told(told)) << words << ": " << run.err;
    EXPECT_FALSE(run.logged("Programming Button Pressed")) << words;
  }
  const Outcome moved = work.simulate(program + "-i far.hex --format ihex --at 0");
  EXPECT_EQ(moved.status, 0) << moved.err;
  EXPECT_EQ(work.text("chip.bin"), mostlyErased(8192, 0, "\1\2\3\4"));
  EXPECT_TRUE(work.simulate("verify -d 27C64 -i good.hex").told("--format ihex imports it"));
}

TEST(Image, isChangedWithoutABoard) {
  const Workplace work;
  work.put("a.bin", "123456789.......");
  work.put("odd.bin", "abcdefgh");
  for (const auto& [words, result] :
       {std::pair("checksum crc32 0-8 A be", std::string("123456789.\xCB\xF4\x39\x26..")),
        {"fill 1-2 0", std::string("1\0\0"
                                   "456789.......",
                                   16)},
        {"split odd", std::string("2468....")},
        {"insert odd.bin 8", std::string("12345678abcdefgh")},
        {"halve high", std::string("9.......")}}) {
    const Outcome run = work.run(std::string("image ") + words + " -i a.bin -o b.bin");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(work.text("b.bin"), result) << words;
  }
  std::filesystem::remove(work.path("b.bin"));
  for (const auto& [words, told] :
       {std::pair("image fill 10-20 0 -i a.bin -o b.bin", "0010-0020 is not in the image"),
        {"image swap -i odd.bin", "-o FILE is missing"},
        {"image copy 0-1 -i a.bin -o b.bin", "wants FROM-TO ADDRESS"}}) {
    const Outcome run = work.run(words);
    EXPECT_TRUE(run.status == 2 && run.told(told)) << words << ": " << run.err;
  }
  EXPECT_FALSE(std::filesystem::exists(work.path("b.bin")));
}

TEST(Compare, tellsAllDifferencesAndWhatTheyMean) {
  const Workplace work;
  const std::string rom = noise(8192);
  std::string chip = rom;
  chip[0x10] = static_cast<char>(~rom[0x10]);
  chip[0x11] = static_cast<char>(~rom[0x11]);
  chip[0x1FFF] = static_cast<char>(~rom[0x1FFF]);
  work.put("rom.bin", rom);
  work.put("same.bin", rom);
  work.put("chip.bin", chip);
  const std::string compare = "compare -q -d 27C64 -i rom.bin --chip 27C64";
  const Outcome differs = work.simulate(compare + "=chip.bin");
  EXPECT_EQ(differs.status, 4);
  EXPECT_TRUE(
      differs.told("3 of 8192 bytes differ, in 2 ranges\n  0010-0011 needs erasing\n  1FFF "));
  EXPECT_TRUE(differs.told("the chip has to be erased")) << differs.out;
  EXPECT_TRUE(
      work.simulate(compare + "=same.bin --fault stuck:5").told("data line D5 is always 0"));
  EXPECT_TRUE(work.simulate(compare + " --fault empty").told("there is no chip or no supply"));
  EXPECT_EQ(work.simulate("compare -d 27C64 -i rom.bin --chip 27C64=same.bin").status, 0);
  std::string pair(16384, 'e');
  for (std::size_t i = 0; i < rom.size(); ++i) pair[2 * i + 1] = rom[i];
  work.put("pair.bin", pair);
  EXPECT_EQ(work.simulate("compare -d 27C64 -i pair.bin --lane odd --chip 27C64=same.bin").status,
            0);
}

TEST(Backup, keepsWhatAChipHeldAndNothingOfABlankOne) {
  const Workplace work;
  std::filesystem::create_directory(work.path("kept"));
  const std::string old = noise(32768);
  work.put("chip.bin", old);
  work.put("rom.bin", std::string(99, 'x'));
  const std::string program =
      "program --yes --pad-ff --backup kept --speed 12 -d 28C256 -i rom.bin --chip 28C256=chip.bin";
  EXPECT_EQ(work.simulate(program).status, 0);
  EXPECT_EQ(work.text("chip.bin"), mostlyErased(32768, 0, work.text("rom.bin")));
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(work.path("kept"))) {
    files.push_back(entry.path());
  }
  ASSERT_EQ(files.size(), 1U);
  EXPECT_EQ(work.text("kept/" + files[0].filename().string()), old);
  EXPECT_NE(files[0].filename().string().find("28C256"), std::string::npos);
  work.put("chip.bin", std::string(32768, '\xFF'));
  EXPECT_TRUE(work.simulate(program).told("there is nothing to keep"));
  work.put("chip.bin", old);
  for (const std::string& folder : {std::string("missing"), std::string(300, 'n')}) {
    const Outcome refused =
        work.simulate("erase --yes --backup " + folder + " -d 28C256 --chip 28C256=chip.bin");
    EXPECT_EQ(refused.status, 2) << refused.err;
    EXPECT_EQ(work.text("chip.bin"), old) << "nothing is lost that could not be kept";
  }
  work.put("chip.bin.1", noise(32767) + "1");
  work.put("chip.bin.2", noise(32767) + "2");
  work.put("answers", "\n\nq\n");
  const pid_t process = ::fork();
  if (process == 0) work.become("--simulate --several -q <answers >out.txt 2>err.txt " + program);
  EXPECT_EQ(statusOf(process), 0) << work.text("err.txt");
  std::string ends;
  for (const auto& entry : std::filesystem::directory_iterator(work.path("kept"))) {
    ends += work.text("kept/" + entry.path().filename().string()).back();
  }
  EXPECT_TRUE(ends.find('1') != ends.npos && ends.find('2') != ends.npos)
      << ends << " of each chip what it held";
}

TEST(Project, givesTheOptionsThatTheCommandLineDoesNotAndKeepsWhatItDoesNotKnow) {
  const Workplace work;
  std::filesystem::create_directory(work.path("lot"));
  work.put("rom.bin", mostlyErased(8192, 0, "abcd"));
  EXPECT_EQ(work.run("save-project lot/a.project -d 27C64 -i rom.bin --vpp 12.5 --verify").status,
            0);
  EXPECT_EQ(work.text("lot/a.project"),
            "kestrel-project = 1\ndevice = 27C64\nfile = ../rom.bin\nvpp = 12.5\nverify = yes\n");
  work.put("lot/a.project",
           "# our lot\n" + work.text("lot/a.project") + "colour = red\nspeed=17\n");
  EXPECT_EQ(work.run("save-project lot/a.project --speed 17 --algorithms datasheet").status, 0);
  EXPECT_TRUE(work.text("lot/a.project")
                  .ends_with("verify = yes\ncolour = red\nspeed=17\nalgorithms = datasheet\n"));
  const Outcome run = work.simulate("program --yes --project lot/a.project --chip 27C64=chip.bin");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(run.logged("Device Contents MATCHES with Buffer Contents"));
  EXPECT_TRUE(run.told("lot/a.project: the key colour is unknown"));
  EXPECT_EQ(work.text("chip.bin"), work.text("rom.bin"));
  for (const auto& [text, told] :
       {std::pair("kestrel-project = 2\n", "this one knows version 1"),
        {"device = 27C64\n", "line 1: a project begins with"},
        {"kestrel-project = 1\nvpp = 12.5\nvpp = 21\n", "line 3: vpp is given twice"},
        {"kestrel-project = 1\nverify = maybe\n", "use yes or no"},
        {"kestrel-project = 1\nspeed = 99\n", "is no program speed"}}) {
    work.put("bad", text);
    const Outcome bad = work.simulate("read -d 27C64 --project bad");
    EXPECT_TRUE(bad.status == 2 && bad.told(told)) << text << bad.err;
  }
}

}  // namespace
}  // namespace kestrel::test
