#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>

#include "cli/run_program.h"

namespace kestrel::test {
namespace {

std::string hex(unsigned value) {
  std::array<char, 12> text{};
  std::snprintf(text.data(), text.size(), "%02X", value);
  return text.data();
}

/// Lines of a trace, written as "d5A" to the data lines, "s87" read from the status lines, "c04" to
/// the control lines, "p12" for a busy loop and "w500" for a wait.
std::string accesses(unsigned base, const std::string& text) {
  std::string lines;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    const auto kind = static_cast<unsigned>(std::string("dscpw").find(word[0]));
    const std::string port = hex(base + kind) + " ";
    const std::string starts[] = {"out " + port, "in " + port, "out " + port, "spin ", "sleep "};
    lines += starts[kind] + word.substr(1) + "\n";
  }
  return lines;
}

/// Latch loads of model 5, such as "3=C4 0=40"; `delay` is the wait before each strobe.
std::string loads(const std::string& latches, const std::string& delay = "") {
  const std::array<const char*, 5> idle{" c05 ", " c0D ", " c07 ", " c0F ", " c01 "};
  const std::array<const char*, 5> strobe{" c04", " c0C", " c06", " c0E", " c00"};
  std::string text;
  std::istringstream words(latches);
  for (std::string word; words >> word;) {
    const auto latch = static_cast<std::size_t>(word[0] - '0');
    text += "d" + word.substr(2) + idle.at(latch) + delay + strobe.at(latch) + idle.at(latch);
  }
  return accesses(0x378, text);
}

/// A byte as model 5 shows it: status bits 3 to 6 are half of it, the others read 1.
std::string readByte(unsigned value) {
  return accesses(0x378, "c05 s" + hex((value & 0x0FU) << 3U | 0x87U) + " c01 s" +
                             hex(value >> 4U << 3U | 0x87U));
}

/// The probe of one port, whose first read gives `found` and the others FFh.
std::string probe(unsigned port, const std::string& found) {
  return accesses(port, "d9F c0E c00 d00 c06 p500 s" + found +
                            " c00 dFF c06 p500 sFF"
                            " c09 dBF c01 c09 d00 c0F c09 p500 sFF dFF c0F c09 p500 sFF c08");
}

/// Model 5 or 6: before a model is known both nibbles are selected by 0, and the pulled-up bus is
/// all that is read.
std::string askForModel6(unsigned port) {
  return accesses(port, "d60 c0E c00 c00 sFF c00 sFF d40 c0E c00 c00 sFF c00 sFF");
}

const std::string kReset = "0=40 1=00 2=00 3=C4 ";          // no device yet
const std::string kResetOf27C256 = "0=40 1=80 2=00 3=C6 ";  // its fixed bits

std::string startUpModel5At378() {
  std::string s = "out 0 00\nout 0 00\nout 0 00\nout 0 00\n";  // the lamps: no port is known
  s += probe(0x278, "FF") + probe(0x378, "87") + askForModel6(0x378);
  s += probe(0x3BC, "FF") + askForModel6(0x3BC);  // the model is that of the port before
  s += loads("0=08") + accesses(0x378, "w200") + loads("0=00 " + kReset);
  return s + loads("0=40 " + kReset);  // the lamps
}

std::string readA27C256(const std::string& chip) {
  std::string s = loads("3=C4 0=40");  // selecting it: /CE, then /OE inactive
  s += loads(kResetOf27C256 + "1=80 2=00 3=C2", "p12") + accesses(0x378, "w500");
  s += loads("3=C2 3=42 0=00 3=42", "p12");  // latch 4 off the bus; /CE, /OE active
  for (std::size_t i = 0; i < chip.size(); ++i) {
    if (i % 256 == 0) s += loads("1=" + hex(0x80U | static_cast<unsigned>(i >> 8U)), "p12");
    s += loads("2=" + hex(i & 0xFFU), "p12") + readByte(static_cast<unsigned char>(chip[i]));
  }
  return s + loads(kResetOf27C256, "p12");
}

TEST(Trace, ofAReadHoldsStartUpSelectionReadAndShutDown) {
  const Workplace work;
  std::string chip(32768, '\0');
  for (std::size_t i = 0; i < chip.size(); ++i) chip[i] = static_cast<char>(i * 5 + i / 256);
  work.put("chip.bin", chip);
  const Outcome run = work.simulate(
      "read -d 27C256 --chip 27C256=chip.bin -o out.bin --show --quiet --trace t.txt");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(std::ranges::count(run.out, '\n'), 16) << "the page alone";
  const std::string trace = work.text("t.txt");
  const std::string expected =
      startUpModel5At378() + readA27C256(chip) + loads(kResetOf27C256, "p12");  // shut-down
  const auto at =
      static_cast<std::size_t>(std::ranges::mismatch(trace, expected).in1 - trace.begin());
  EXPECT_TRUE(trace == expected) << "from " << at << ": "
                                 << trace.substr(at - std::min(at, std::size_t{60}), 90);
}

// A chip in the socket would show its zeros to the question for model 6, which enables it.
TEST(Trace, ofAStartUpIsThatOfAnEmptySocket) {
  const Workplace work;
  work.put("chip.bin", std::string(131'072, '\0'));
  EXPECT_EQ(work.simulate("save-setup 1 x --chip 27C010=chip.bin --trace t.txt").status, 0);
  EXPECT_EQ(work.text("t.txt"), startUpModel5At378() + loads(kReset));
}

// 500 ms after the chip is switched on, 100 counts behind the first address.
TEST(Trace, ofADisplayHasItsTwoWaits) {
  const Workplace work;
  EXPECT_EQ(work.simulate("display -q -d 27C64 --trace t.txt").status, 0);
  const std::string trace = work.text("t.txt");
  const std::size_t wait = trace.find("sleep 500\n");
  EXPECT_LT(wait, trace.find("spin 100\n"));
  EXPECT_NE(trace.find("spin 100\n"), std::string::npos);
}

// The trace is the first file that the program opens.
TEST(Trace, isNotMixedWithTheLogWhereTheStandardFilesAreClosed) {
  const Workplace work;
  const pid_t process = ::fork();
  if (process == 0) work.become("--simulate save-setup 1 x --trace t.txt <&- >&- 2>&-");
  EXPECT_EQ(statusOf(process), 0);
  EXPECT_EQ(work.text("t.txt"), startUpModel5At378() + loads(kReset));
}

TEST(Safe, loadsTheIdleValueIntoLatch0OfEitherFamily) {
  const Workplace work;
  const Outcome run = work.simulate("safe --lpt 278 --trace t.txt");
  EXPECT_TRUE(run.status == 0 && run.told("Port 278h: latch 0 loaded with 40h")) << run.out;
  EXPECT_EQ(work.text("t.txt"), accesses(0x278, "d40 c05 c04 c05 c0A c0B c0A"));
}

// A 24-pin chip has its supply from latch 1 bit 5: off while a hand is in the socket, on and given
// time before the chip is asked for anything.
TEST(Trace, ofASeriesHasNoSupplyAtTheSocketWhileAChipIsChanged) {
  const Workplace work;
  work.put("rom.bin", std::string(4096, '\0'));
  work.put("go", "\n");
  const Outcome run =
      work.finish(work.start("--simulate --yes program --several -d 2732A --vpp 21 -i rom.bin "
                             "--trace trace.txt <go >out.txt 2>err.txt #"));
  EXPECT_EQ(run.status, 0) << run.err;
  const std::string trace = work.text("trace.txt");
  const std::string off = loads("0=00 3=40 1=00 2=00", " p102");
  const std::size_t before = trace.find(off + loads("0=40 1=20 2=00 3=C4", " p102"));
  ASSERT_NE(before, std::string::npos);
  EXPECT_LT(trace.find("sleep 500", before), before + 1000);
  EXPECT_NE(trace.find(off, before + off.size()), std::string::npos) << "nor after the last chip";
}

}  // namespace
}  // namespace kestrel::test
