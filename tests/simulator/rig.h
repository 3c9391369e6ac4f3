#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "simulator/bench.h"
#include "simulator/chip_factory.h"

namespace kestrel::sim::test {

/// Control line values that open a latch, latches 0 to 4, and that show a half of the data lines.
struct ControlCodes {
  std::uint8_t strobe[5];
  std::uint8_t lowHalf;
  std::uint8_t highHalf;
};

inline constexpr ControlCodes kCodes4{{0xB, 0x3, 0x9, 0x1, 0xF}, 0x0, 0x4};
inline constexpr ControlCodes kCodes56{{0x4, 0xC, 0x6, 0xE, 0x0}, 0xF, 0xB};

/// A bench with one board on 378h, worked from the connector.
class Rig {
 public:
  explicit Rig(Model model = Model::kestrel5)
      : board(bench.plug(model, 0x378)), codes(model == Model::kestrel4 ? kCodes4 : kCodes56) {
    control(codes.lowHalf);
  }

  void data(std::uint8_t value) { bench.portOut(0x378, value); }
  void control(std::uint8_t value) { bench.portOut(0x37A, value); }
  std::uint8_t status() { return bench.portIn(0x379); }

  void load(std::size_t latch, std::uint8_t value) {
    data(value);
    control(codes.strobe[latch]);
    control(codes.lowHalf);
  }

  /// Loads latches 0 to 3 in this order.
  void load(const std::uint8_t (&latches)[4]) {
    for (std::size_t latch = 0; latch < 4; ++latch) load(latch, latches[latch]);
  }

  /// The data lines of a model 5 or 6 by way of the status lines.
  std::uint8_t readBus() {
    control(codes.lowHalf);
    const unsigned low = status() >> 3 & 0x0FU;
    control(codes.highHalf);
    const unsigned high = status() >> 3 & 0x0FU;
    return static_cast<std::uint8_t>(high << 4 | low);
  }

  /// A chip with 5Ah at one address and FFh everywhere else.
  void insertMarked(std::string_view type, std::uint32_t address) {
    board.insert(makeChip(type));
    std::vector<std::uint8_t> contents(board.chip()->contents().size(), 0xFF);
    contents[address] = 0x5A;
    board.loadChip(contents);
  }

  std::uint8_t cell(std::uint32_t address) { return board.chip()->contents()[address]; }

  Bench bench;
  Board& board;
  ControlCodes codes;
};

}  // namespace kestrel::sim::test
