#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/bench.h"
#include "simulator/chip_factory.h"

namespace kestrel::sim::test {

/// Control line values of a model 4 that open a latch, latches 0 to 4, and that show a half of the
/// data lines. Models 5 and 6 invert all four lines.
inline constexpr std::uint8_t kStrobes[]{0xB, 0x3, 0x9, 0x1, 0xF};
inline constexpr std::uint8_t kLowHalf = 0x0;
inline constexpr std::uint8_t kHighHalf = 0x4;

struct Load {
  std::size_t latch;
  std::uint8_t value;
};

/// A bench with one board on 378h, worked from the connector.
class Rig {
 public:
  explicit Rig(Model model = Model::kestrel5, bool judged = false)
      : board(plugged(bench, model, judged)), inverted_(model == Model::kestrel4 ? 0x0 : 0xF) {
    control(kLowHalf);
  }

  void data(std::uint8_t value) { bench.portOut(0x378, value); }
  void control(std::uint8_t lines) { bench.portOut(0x37A, lines ^ inverted_); }
  std::uint8_t status() { return bench.portIn(0x379); }

  void load(std::size_t latch, std::uint8_t value) {
    data(value);
    control(kStrobes[latch]);
    control(kLowHalf);
  }
  void load(std::initializer_list<Load> loads) {
    for (const Load& each : loads) load(each.latch, each.value);
  }

  /// The data lines of a model 5 or 6 by way of the status lines, after these loads.
  std::uint8_t read(std::initializer_list<Load> loads = {}) {
    load(loads);
    control(kLowHalf);
    const unsigned low = status() >> 3 & 0x0FU;
    control(kHighHalf);
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
  std::size_t count(FindingKind kind) { return bench.findings().count(kind); }
  /// The texts of all findings, one after the other.
  std::string found() {
    std::string texts;
    for (const Finding& each : bench.findings().all())
      texts += (texts.empty() ? "" : "; ") + each.text;
    return texts;
  }
  bool isClean() { return bench.findings().empty(); }
  void waitUs(std::int64_t us) { bench.wait(microseconds(us)); }

  Bench bench;
  Board& board;

 private:
  static Board& plugged(Bench& bench, Model model, bool judged) {
    bench.judgePulses(judged);
    return bench.plug(model, 0x378);
  }

  std::uint8_t inverted_;
};

}  // namespace kestrel::sim::test
