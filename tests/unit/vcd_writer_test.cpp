#include "waveform/vcd_writer.h"

#include <gtest/gtest.h>

#include <sstream>

namespace kestrel::waveform {
namespace {

TEST(VcdWriter, writesEachChangeOfALineAtItsTime) {
  std::ostringstream out;
  VcdWriter writer(out);
  std::vector<VcdWriter::Line> lines = writer.declareVector("bus", 5);
  lines.push_back(writer.declare("/CE"));
  const VcdWriter::Group bus = writer.group(lines);
  const VcdWriter::Line volts = writer.declareReal("VPP");
  writer.begin("27C256");
  writer.set(bus, {.bits = 0b10011'1});
  writer.setReal(volts, 12.5);
  writer.at(9'999);
  writer.set(bus, {.bits = 0b10011'1});
  writer.set(bus, {.bits = 0b00010'1});
  writer.at(10'000);
  writer.set(bus, kFloating);
  writer.at(30'000'105);
  writer.set(bus, kUnknown);
  writer.setReal(volts, 12.5);
  writer.at(30'010'000);
  writer.set(bus, {});
  EXPECT_EQ(out.str(), "") << "a buffer that is not worth it waits for the end";
  writer.writeOut();
  EXPECT_EQ(out.str(), "");
  writer.finish();
  EXPECT_EQ(out.str(),
            "$comment 27C256 in the socket of the board $end\n"
            "$timescale 100 ns $end\n$scope module socket $end\n"
            "$var wire 1 ! bus[4] $end\n$var wire 1 \" bus[3] $end\n$var wire 1 # bus[2] $end\n"
            "$var wire 1 $ bus[1] $end\n$var wire 1 % bus[0] $end\n$var wire 1 & /CE $end\n"
            "$var real 64 ' VPP $end\n$upscope $end\n$enddefinitions $end\n"
            "#0\n1!\n0\"\n0#\n1$\n1%\n1&\nr12.5 '\n#9999\n0!\n0%\n#10000\nz!\nz\"\nz#\nz$\nz%\nz&\n"
            "#30000105\nx!\nx\"\nx#\nx$\nx%\nx&\n#30010000\n0!\n0\"\n0#\n0$\n0%\n0&\n");
}

}  // namespace
}  // namespace kestrel::waveform
