#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <set>
#include <thread>

#include "cli/run_program.h"

namespace kestrel::test {
namespace {

constexpr int kChips = 20;

/// The serial numbers of the report's good chips, each as it stands in that chip's file.
std::multiset<int> numbersInGoodChips(const Workplace& work) {
  std::multiset<int> numbers;
  std::istringstream rows(work.text("report.csv"));
  for (std::string row; std::getline(rows, row);) {
    if (row.find(",good,") == std::string::npos) continue;
    const std::string bytes = work.text("chip.bin." + row.substr(0, row.find(',')));
    EXPECT_TRUE(bytes.starts_with("image")) << row;
    const int number = static_cast<unsigned char>(bytes.at(0x100)) +
                       256 * static_cast<unsigned char>(bytes.at(0x101));
    EXPECT_NE(row.find("," + std::to_string(number) + ",good,"), std::string::npos) << row;
    numbers.insert(number);
  }
  return numbers;
}

int rowsWith(const Workplace& work, const std::string& word) {
  std::istringstream rows(work.text("report.csv"));
  int count = 0;
  for (std::string row; std::getline(rows, row);) {
    count += row.find(word) != std::string::npos ? 1 : 0;
  }
  return count;
}

/// Waits until the program has written so many rows of its report.
bool hasRows(const Workplace& work, int rows) {
  for (int i = 0; i < 4000; ++i) {
    if (rowsWith(work, ",good,") + rowsWith(work, ",bad,") >= rows) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return false;
}

// Twenty chips of which two are bad, in five runs: three ended by Ctrl-C and one killed.
TEST(Series, givesEachChipItsOwnNumberWhateverEndsTheProgram) {
  const Workplace work;
  work.put("rom.bin", mostlyErased(4096, 0, "image"));
  for (const int bad : {4, 11}) {
    work.put("chip.bin." + std::to_string(bad), mostlyErased(4096, 7, std::string(1, '\0')));
  }
  const std::string words =
      "--simulate program --several --yes -q -d 2732A --vpp 21 -i rom.bin --chip 2732A=chip.bin "
      "--serial at=100,bytes=2,start=500,step=3 --report report.csv <go >>out.txt 2>>err.txt";
  ASSERT_EQ(::mkfifo(work.path("go").c_str(), 0600), 0);
  int done = 0;
  for (const auto& [chips, ending] :
       {std::pair(4, SIGINT), {3, SIGINT}, {5, SIGKILL}, {2, SIGTERM}, {20, 0}}) {
    const pid_t process = ::fork();
    if (process == 0) work.become(words);
    std::ofstream go(work.path("go"));
    const int wanted = ending == 0 ? kChips - done : chips;
    for (int i = 0; i < wanted; ++i) go << '\n' << std::flush;
    ASSERT_TRUE(hasRows(work, done + wanted)) << work.text("err.txt");
    if (ending != 0) {
      // One more chip, in the middle of which it ends; the killed one is between two chips.
      if (ending != SIGKILL) go << '\n' << std::flush;
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      ::kill(process, ending);
    }
    go.close();
    const int status = statusOf(process);
    EXPECT_TRUE(ending == 0 ? status <= 1 : status >= 128) << status;
    done = rowsWith(work, ",good,") + rowsWith(work, ",bad,");
  }
  EXPECT_GE(done, kChips);
  const std::multiset<int> numbers = numbersInGoodChips(work);
  EXPECT_EQ(std::set<int>(numbers.begin(), numbers.end()).size(), numbers.size()) << "given twice";
  for (const int number : numbers) EXPECT_EQ((number - 500) % 3, 0) << number;
  // The killed run's last number may be in doubt; no other is lost.
  EXPECT_LE(*numbers.rbegin(), 500 + 3 * static_cast<int>(numbers.size()));
  EXPECT_GE(rowsWith(work, "not blank at address 7"), 2) << "looked at before it is written";
  EXPECT_TRUE(work.text("out.txt").starts_with("Chip 1: good, serial number 500, sum EBFF\n"));
  EXPECT_TRUE(
      work.text("report.csv").starts_with("chip,device,serial,result,sum,seconds,time,reason\n1,"));
}

// The script of the manual, letter for letter.
TEST(Script, ofTheManualProgramsAChipAndSaysWhatCameOfIt) {
  const Workplace work;
  std::ifstream page(KESTREL_DATA "/help/scripts.html");
  std::string html{std::istreambuf_iterator<char>(page), {}};
  const std::string mark = "<pre id=\"script\">";
  html = html.substr(html.find(mark) + mark.size());
  html = html.substr(0, html.find("</pre>"));
  for (std::size_t at = 0; (at = html.find("&gt;")) != std::string::npos;) html.replace(at, 4, ">");
  work.put("program-one", html);
  work.put("rom.bin", mostlyErased(8192, 0, "abcd"));
  const auto runs = [&](const std::string& chip, int status, const std::string& told) {
    work.put("chip.bin", chip);
    const std::string words =
        "cd " + work.path("") +
        " && ln -sf " KESTREL_CLI
        " kestrel-cli && env -i HOME=$PWD PATH=.:$PATH "
        "KESTREL_OPTIONS='--simulate --chip 27C64=chip.bin' sh program-one 27C64 rom.bin >out.txt";
    EXPECT_EQ(WEXITSTATUS(std::system(words.c_str())), status);
    EXPECT_EQ(work.text("out.txt"), told) << work.text("programming.log");
  };
  // FFh 8,188 times and "abcd": 1FDD8Eh.
  runs(mostlyErased(8192, 0, ""), 0, "27C64 rom.bin: good, sum DD8E\n");
  runs(mostlyErased(8192, 5, "x"), 4, "27C64 rom.bin: not blank, or it does not hold the image\n");
}

TEST(Series, refusesNumbersAndReportsThatCannotBe) {
  const Workplace work;
  work.put("rom.bin", std::string(4096, 'x'));
  work.put("list.txt", "ab\ntoo long\n");
  work.put("table.csv", "something else\n");
  work.put("damaged.txt",
           "Kestrel serial numbers 1\nplan at=0000,bytes=4,start=1,step=1,order=le,form=binary\n");
  work.put("other.txt", "Kestrel serial numbers 1\nplan at=0000\ngiven 3\n");
  for (const auto& [words, told] :
       {std::pair("--serial at=FFE", "are not in the chip"),
        {"--serial at=0,bytes=1,start=256", "256 does not fit into 1 bytes"},
        {"--serial at=0,bytes=4,form=ascii,list=list.txt", "too long does not fit"},
        {"--serial at=0,counter=damaged.txt", "line 3"},
        {"--serial at=0,counter=other.txt", "counts for another plan"},
        {"--serial at=0,list=missing.txt", "missing.txt"},
        {"--report table.csv", "another kind of file"},
        {"--report no/such/folder.csv", "no/such/folder.csv"}}) {
    const Outcome run =
        work.run("--simulate program --several --yes -d 2732A --vpp 21 -i rom.bin " +
                 std::string(words) + " --chip 2732A=chip.bin");
    EXPECT_EQ(run.status, 2) << words << run.err;
    EXPECT_TRUE(run.told(told)) << words << ": " << run.err;
    EXPECT_EQ(work.text("table.csv"), "something else\n");
  }
}

}  // namespace
}  // namespace kestrel::test
