// link-speed: how long a 27C256 takes to be read through the adapter, in emulated time, by the
// accesses of the program's read: address latch, both halves of the byte. Checked byte by byte.
#include <iostream>

#include "link/adapter_rig.h"

namespace kestrel::test {
namespace {

constexpr unsigned kBytes = 32768;

std::vector<std::uint8_t> someContents() {
  std::vector<std::uint8_t> contents(kBytes);
  for (std::size_t i = 0; i < kBytes; ++i) contents[i] = static_cast<std::uint8_t>(i * 7 + i / 256);
  return contents;
}

// A8 to A14 of a 28-pin chip in latch 1, with pin 1 (VPP) high.
std::uint8_t middleLatch(unsigned address) {
  struct Wire {
    unsigned addressBit;
    unsigned latchBit;
  };
  constexpr std::array<Wire, 7> kWires{
      {{8, 0}, {9, 1}, {10, 2}, {11, 3}, {12, 4}, {13, 5}, {14, 6}}};
  unsigned latch = 0x80;
  for (const Wire& wire : kWires) latch |= (address >> wire.addressBit & 1U) << wire.latchBit;
  return static_cast<std::uint8_t>(latch);
}

void readChip(unsigned latencyUs) {
  AdapterRig rig(sim::Model::kestrel5, latencyUs * EmulatedAdapter::kCyclesPerUs);
  rig.connect();  // the board starts with all voltages on: no chip before they are off
  const auto contents = someContents();
  rig.board.insert(sim::makeChip("27C256"));
  rig.board.loadChip(contents);
  const auto start = rig.adapter.now();
  rig.load(3, 0x46);
  rig.load(0, 0x00);
  unsigned wrong = 0;
  for (unsigned address = 0; address < kBytes; ++address) {
    if (address % 256 == 0) rig.load(1, middleLatch(address));
    rig.load(2, static_cast<std::uint8_t>(address));
    if (rig.readByte() != contents[address]) ++wrong;
  }
  const double seconds = static_cast<double>(rig.adapter.now() - start) / 16e6;
  std::cout << "27C256, " << latencyUs << " us a round trip: " << seconds << " s, "
            << seconds / kBytes * 1e6 << " us a byte, " << wrong << " wrong\n";
}

}  // namespace
}  // namespace kestrel::test

int main() {
  kestrel::test::readChip(0);
  kestrel::test::readChip(1000);
  return 0;
}
