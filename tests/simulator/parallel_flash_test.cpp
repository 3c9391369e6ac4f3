#include <gtest/gtest.h>

#include "simulator/write_rig.h"

namespace kestrel::sim {
namespace {

class FlashRig : public test::WriteRig {
 public:
  explicit FlashRig(const char* type) : WriteRig(type, 3, 0x04, 0x40) {}
  void command(std::uint8_t code) {
    write(0x3D55, 0xAA);  // address bits 11 to 13 do not count
    write(0x2AAA, 0x55);
    write(0x0555, code);
  }
};

// Maker and device code in identify mode, read at an address and at the next.
int codes(const char* type, std::uint32_t address) {
  FlashRig rig(type);
  rig.command(0x90);
  return rig.read(address) << 8 | rig.read(address + 1);
}

TEST(ParallelFlash, showsItsCodes) {
  EXPECT_EQ(codes("AM29F010", 0x0000), 0x0120);
  EXPECT_EQ(codes("AM29F040", 0x0000), 0x01A4);
  EXPECT_EQ(codes("A29040", 0x0000), 0x3786);
  EXPECT_EQ(codes("EN29F040", 0x0000), 0x7F7F);
  EXPECT_EQ(codes("EN29F040", 0x0100), 0x1C04);
}

TEST(ParallelFlash, erasesAndProgramsFromOneToZero) {
  FlashRig rig("AM29F040");
  rig.command(0x80);
  rig.command(0x10);
  EXPECT_EQ((rig.read(0) ^ rig.read(0)) & 0xC0, 0x40);  // busy
  rig.command(0x90);
  EXPECT_EQ(rig.bench.findings().count(FindingKind::writeLost), 3U);
  rig.waitUs(8'000'000);
  rig.command(0xA0);
  rig.write(0x1234, 0xF0);  // a reset anywhere else
  rig.waitUs(10);
  rig.command(0xA0);
  rig.write(0x1234, 0x3C);
  rig.waitUs(10);
  rig.command(0x90);
  EXPECT_EQ(rig.read(0x1234), 0x01);
  rig.write(0x0000, 0xF0);
  EXPECT_EQ(rig.read(0x1234), 0x30);
  EXPECT_EQ(rig.cell(0x7FFFF), 0xFF);
}

}  // namespace
}  // namespace kestrel::sim
