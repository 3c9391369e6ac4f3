#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <iomanip>
#include <sstream>

#include "cli/run_program.h"

namespace kestrel::test {
namespace {

/// The accesses that a board is to be given, written down from its contract.
class Script {
 public:
  /// The strobe codes of latches 0 to 4; an idle code differs from them in bit 0.
  Script(unsigned base, std::array<unsigned, 5> strobes) : base_(base), strobes_(strobes) {}

  void out(unsigned port, unsigned value) { access("out ", port, value); }
  void in(unsigned port, unsigned value) { access("in ", port, value); }
  void spin(unsigned counts) { lines.push_back("spin " + std::to_string(counts)); }
  void sleep(unsigned ms) { lines.push_back("sleep " + std::to_string(ms)); }

  void load(std::size_t latch, unsigned value) {
    const unsigned strobe = strobes_.at(latch);
    out(base_, value);
    out(base_ + 2, strobe ^ 1U);
    if (busDelay > 0) spin(busDelay);
    out(base_ + 2, strobe);
    out(base_ + 2, strobe ^ 1U);
  }

  /// Outputs disabled and voltages off, address 0, chip deselected.
  void reset(unsigned fixed1, unsigned fixed3) {
    load(0, 0x40);
    load(1, fixed1);
    load(2, 0x00);
    load(3, 0xC4 | fixed3);
  }

  /// A byte as model 5 shows it: status bits 3 to 6 are half of it, the others read 1.
  void readByte(unsigned value) {
    out(base_ + 2, 0x05);
    in(base_ + 1, ((value & 0x0F) << 3) | 0x87);
    out(base_ + 2, 0x01);
    in(base_ + 1, ((value >> 4) << 3) | 0x87);
  }

  unsigned busDelay = 0;  ///< none before a device is selected
  Words lines;

 private:
  void access(const char* what, unsigned port, unsigned value) {
    std::ostringstream line;
    line << std::hex << std::uppercase << what << port << ' ' << std::setfill('0') << std::setw(2)
         << value;
    lines.push_back(line.str());
  }

  unsigned base_;
  std::array<unsigned, 5> strobes_;
};

constexpr std::array<unsigned, 5> kModel4{0x0B, 0x03, 0x09, 0x01, 0x0F};
constexpr std::array<unsigned, 5> kModel56{0x04, 0x0C, 0x06, 0x0E, 0x00};

/// The probe of one port, with what the four reads find.
void probe(Script& s, unsigned base, std::array<unsigned, 4> found) {
  const auto control = [&](std::initializer_list<unsigned> codes) {
    for (const unsigned code : codes) s.out(base + 2, code);
  };
  const auto settleAndRead = [&](std::size_t i) {
    s.spin(500);
    s.in(base + 1, found.at(i));
  };
  s.out(base, 0x9F);
  control({0x0E, 0x00});
  s.out(base, 0x00);
  control({0x06});
  settleAndRead(0);
  control({0x00});
  s.out(base, 0xFF);
  control({0x06});
  settleAndRead(1);
  control({0x09});
  s.out(base, 0xBF);
  control({0x01, 0x09});
  s.out(base, 0x00);
  control({0x0F, 0x09});
  settleAndRead(2);
  s.out(base, 0xFF);
  control({0x0F, 0x09});
  settleAndRead(3);
  control({0x08});
}

/// Model 5 or 6: before a model is known both nibbles are selected by 0, and the pulled-up bus is
/// all that is read.
void askForModel6(Script& s, unsigned base) {
  for (const unsigned latch3 : {0x60U, 0x40U}) {
    s.out(base, latch3);
    s.out(base + 2, 0x0E);
    s.out(base + 2, 0x00);
    for (int nibble = 0; nibble < 2; ++nibble) {
      s.out(base + 2, 0x00);
      s.in(base + 1, 0xFF);
    }
  }
}

/// The lamps go off while no port is known: latch 0 is loaded at port 0, with codes of 0.
void lampsOffNowhere(Script& s) {
  for (int write = 0; write < 4; ++write) s.out(0, 0x00);
}

constexpr std::array<unsigned, 4> kNothing{0xFF, 0xFF, 0xFF, 0xFF};

void startUpModel5At378(Script& s) {
  lampsOffNowhere(s);
  probe(s, 0x278, kNothing);
  probe(s, 0x378, {0x87, 0xFF, 0xFF, 0xFF});
  askForModel6(s, 0x378);
  probe(s, 0x3BC, kNothing);
  askForModel6(s, 0x3BC);  // the model is that of the port before
  s.load(0, 0x08);
  s.sleep(200);
  s.load(0, 0x00);
  s.reset(0, 0);
  s.load(0, 0x40);  // the lamps
  s.reset(0, 0);
}

void readA27C256(Script& s, const Bytes& chip) {
  s.load(3, 0xC4);  // selecting it: /CE, then /OE inactive
  s.load(0, 0x40);
  s.busDelay = 12;
  s.reset(0x80, 0x02);
  s.load(1, 0x80);
  s.load(2, 0x00);
  s.load(3, 0xC2);
  s.sleep(500);
  s.load(3, 0xC2);  // latch 4 off the bus
  s.load(3, 0x42);  // /CE, /OE active
  s.load(0, 0x00);
  s.load(3, 0x42);
  for (unsigned mid = 0; mid < 128; ++mid) {
    s.load(1, 0x80 | mid);
    for (unsigned low = 0; low < 256; ++low) {
      s.load(2, low);
      s.readByte(chip.at(mid * 256 + low));
    }
  }
  s.reset(0x80, 0x02);
}

Words linesOf(const std::string& text) {
  Words lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// Equal, told by the first line that is not.
void expectSame(const Words& trace, const Words& expected) {
  const auto [got, want] = std::ranges::mismatch(trace, expected);
  const auto at = got - trace.begin();
  EXPECT_TRUE(got == trace.end()) << "line " << at + 1 << " of the trace: " << *got;
  EXPECT_TRUE(want == expected.end()) << "line " << at + 1 << " should be: " << *want;
}

TEST(Trace, ofAReadHoldsStartUpSelectionReadAndShutDown) {
  const Workplace work;
  Bytes chip(32768);
  for (std::size_t i = 0; i < chip.size(); ++i)
    chip[i] = static_cast<std::uint8_t>(i * 5 + i / 256);
  work.put("chip.bin", chip);
  EXPECT_EQ(work.simulate({"read", "-d", "27C256", "--chip", "27C256=chip.bin", "-o", "out.bin",
                           "--show", "--quiet", "--trace", "t.txt"})
                .status,
            0);
  Script s(0x378, kModel56);
  startUpModel5At378(s);
  readA27C256(s, chip);
  s.reset(0x80, 0x02);  // shut-down
  expectSame(linesOf(work.text("t.txt")), s.lines);
}

// A chip in the socket would show its zeros to the question for model 6, which enables it.
TEST(Trace, ofAStartUpIsThatOfAnEmptySocket) {
  const Workplace work;
  work.put("chip.bin", Bytes(131'072, 0x00));
  EXPECT_EQ(work.simulate({"save-setup", "1", "x", "--chip", "27C010=chip.bin", "--trace", "t.txt"})
                .status,
            0);
  Script s(0x378, kModel56);
  startUpModel5At378(s);
  s.reset(0, 0);  // shut-down
  expectSame(linesOf(work.text("t.txt")), s.lines);
}

TEST(Trace, ofModel4HasNoPulseAndItsOwnCodes) {
  const Workplace work;
  EXPECT_EQ(
      work.simulate({"save-setup", "1", "x", "--model", "4", "--lpt", "278", "--trace", "t.txt"})
          .status,
      0);
  // What the lines show on the way is the board's affair; here it is what they are asked.
  Script s(0x278, kModel4);
  lampsOffNowhere(s);
  Words trace = linesOf(work.text("t.txt"));
  probe(s, 0x278, kNothing);
  probe(s, 0x378, kNothing);
  probe(s, 0x3BC, kNothing);
  s.reset(0, 0);
  s.load(0, 0x40);
  s.reset(0, 0);
  s.reset(0, 0);
  const auto maskReads = [](Words& lines) {
    for (std::string& line : lines) {
      if (line.starts_with("in ")) line.resize(6);
    }
  };
  maskReads(trace);
  maskReads(s.lines);
  expectSame(trace, s.lines);
}

TEST(Trace, ofAKnownPortHasNoProbe) {
  const Workplace work;
  const std::string ini = "IO_PORT = 378\r\nMODEL =  5\r\n";
  work.put("home/kestrel6.ini", Bytes(ini.begin(), ini.end()));
  EXPECT_EQ(work.simulate({"save-setup", "1", "x", "--trace", "t.txt"}).status, 0);
  Script s(0x378, kModel56);
  s.load(0, 0x08);
  s.sleep(200);
  s.load(0, 0x00);
  s.reset(0, 0);
  s.load(0, 0x40);
  s.reset(0, 0);
  s.reset(0, 0);
  expectSame(linesOf(work.text("t.txt")), s.lines);
}

}  // namespace
}  // namespace kestrel::test
