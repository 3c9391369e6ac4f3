#pragma once

#include <cstdint>

#include "link/connection.h"
#include "link/emulated_adapter.h"
#include "simulator/bench.h"
#include "simulator/chip_factory.h"
#include "simulator/rig.h"

namespace kestrel::test {

/// A board with a voltage on, an adapter that has just been switched on in front of it, and a
/// connection.
class AdapterRig {
 public:
  /// /OE high, VPP on pins 1, 3 and 24; bit 2 switches it on where the board is a model 4.
  static constexpr std::uint8_t kAllVoltages = 0xF4;

  explicit AdapterRig(sim::Model its, std::uint64_t latencyCycles = 0)
      : is4(its == sim::Model::kestrel4),
        board(bench.plug(its, 0x378)),
        adapter(withVoltagesOn(), bench),
        line(adapter, latencyCycles),
        connection(line) {}

  /// Connected, with the time of the start passed.
  void connect() {
    adapter.runFor(2 * EmulatedAdapter::kCyclesPerMs);
    connection.connect();
  }
  /// The control register for levels of a model 4's lines; the others invert all four.
  [[nodiscard]] std::uint8_t control(unsigned lines) const {
    return static_cast<std::uint8_t>(is4 ? lines : lines ^ 0x0FU);
  }
  [[nodiscard]] std::uint8_t strobe(std::size_t latch) const {
    return control(sim::test::kStrobes[latch]);
  }
  [[nodiscard]] std::uint8_t idle(std::size_t latch) const { return strobe(latch) ^ 1U; }

  void load(std::size_t latch, std::uint8_t value, std::int64_t delayCounts = 42) {
    connection.writeData(value);
    if (delayCounts > 0) {
      connection.writeControl(idle(latch));
      connection.waitCounts(delayCounts);
    }
    connection.writeControl(strobe(latch));
    connection.writeControl(idle(latch));
  }

  /// The byte on the data bus, in one round trip.
  [[nodiscard]] std::uint8_t readByte() {
    connection.writeControl(control(sim::test::kLowHalf));
    const auto low = connection.askStatus();
    connection.writeControl(control(sim::test::kHighHalf));
    const auto high = connection.askStatus();
    return static_cast<std::uint8_t>(half(connection.statusOf(low)) |
                                     half(connection.statusOf(high)) << 4);
  }

  void switchVoltagesOn() {
    load(0, kAllVoltages);
    connection.finish();
  }
  [[nodiscard]] bool isAnyVoltageOn() const { return board.vppPins() != 0; }
  [[nodiscard]] bool isOff() const { return board.latch(0) == 0x40 && !isAnyVoltageOn(); }

  bool is4;
  sim::Bench bench;
  sim::Board& board;
  EmulatedAdapter adapter;
  EmulatedLine line;
  link::LinkConnection connection;

 private:
  // Half a byte from a status byte: bits 3 to 6, or on a model 4 bits 6, NOT 7, 5, 4.
  [[nodiscard]] unsigned half(unsigned status) const {
    if (!is4) return status >> 3U & 0x0FU;
    return (status >> 6U & 1U) | (~status >> 7U & 1U) << 1U | (status >> 5U & 1U) << 2U |
           (status >> 4U & 1U) << 3U;
  }

  // As a program that died on a parallel port would leave it.
  const char* withVoltagesOn() {
    board.writeControl(idle(0));
    board.writeData(kAllVoltages);
    board.writeControl(strobe(0));
    board.writeControl(idle(0));
    return KESTREL_LINK_PROGRAM;
  }
};

}  // namespace kestrel::test
