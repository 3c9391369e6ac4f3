#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "link/connection.h"
#include "link/emulated_adapter.h"
#include "simulator/bench.h"
#include "simulator/chip_factory.h"

namespace kestrel::test {

/// Codes of the control register, from the table of docs/board.md.
struct ModelCodes {
  std::array<std::uint8_t, 5> idle;
  std::uint8_t lowHalf;
  std::uint8_t highHalf;
};
inline constexpr ModelCodes kCodesOf4{{0x0A, 0x02, 0x08, 0x00, 0x0E}, 0x00, 0x04};
inline constexpr ModelCodes kCodesOf56{{0x05, 0x0D, 0x07, 0x0F, 0x01}, 0x05, 0x01};

/// A board as a program reaches it through a connection.
struct LinkedBoard {
  LinkedBoard(link::LinkConnection& itsConnection, sim::Model itsModel)
      : connection(itsConnection),
        codes(itsModel == sim::Model::kestrel4 ? kCodesOf4 : kCodesOf56),
        model(itsModel) {}

  void load(std::size_t latch, std::uint8_t value, std::int64_t delayCounts = 42) {
    connection.writeData(value);
    connection.writeControl(codes.idle.at(latch));
    connection.waitCounts(delayCounts);
    connection.writeControl(codes.idle.at(latch) ^ 1U);
    connection.writeControl(codes.idle.at(latch));
  }

  /// The byte on the data bus, in one round trip.
  [[nodiscard]] std::uint8_t readByte() {
    connection.writeControl(codes.lowHalf);
    const auto low = connection.askStatus();
    connection.writeControl(codes.highHalf);
    const auto high = connection.askStatus();
    return static_cast<std::uint8_t>(half(connection.statusOf(low)) |
                                     half(connection.statusOf(high)) << 4);
  }

  link::LinkConnection& connection;
  ModelCodes codes;
  sim::Model model;

 private:
  // Half a byte from a status byte: bits 3 to 6, or on a model 4 bits 6, NOT 7, 5, 4.
  [[nodiscard]] unsigned half(unsigned status) const {
    if (model != sim::Model::kestrel4) return status >> 3U & 0x0FU;
    return (status >> 6U & 1U) | (~status >> 7U & 1U) << 1U | (status >> 5U & 1U) << 2U |
           (status >> 4U & 1U) << 3U;
  }
};

/// A board with a voltage on, an adapter that has just been switched on in front of it, and a
/// connection.
class AdapterRig : public LinkedBoard {
 public:
  /// /OE high, VPP on pins 1, 3 and 24; bit 2 switches it on where the board is a model 4.
  static constexpr std::uint8_t kAllVoltages = 0xF4;

  explicit AdapterRig(sim::Model its, std::uint64_t latencyCycles = 0)
      : LinkedBoard(connection, its),
        board(bench.plug(its, 0x378)),
        adapter(withVoltagesOn(), bench),
        line(adapter, latencyCycles),
        connection(line) {}

  /// Connected, with the time of the start passed.
  void connect() {
    adapter.runFor(2 * EmulatedAdapter::kCyclesPerMs);
    connection.connect();
  }
  void switchVoltagesOn() {
    load(0, kAllVoltages);
    connection.finish();
  }
  [[nodiscard]] bool isAnyVoltageOn() const { return board.vppPins() != 0; }
  [[nodiscard]] bool isOff() const { return board.latch(0) == 0x40 && !isAnyVoltageOn(); }

  sim::Bench bench;
  sim::Board& board;
  EmulatedAdapter adapter;
  EmulatedLine line;
  link::LinkConnection connection;

 private:
  // As a program that died on a parallel port would leave it.
  const char* withVoltagesOn() {
    board.writeControl(codes.idle[0]);
    board.writeData(kAllVoltages);
    board.writeControl(codes.idle[0] ^ 1U);
    board.writeControl(codes.idle[0]);
    return KESTREL_LINK_PROGRAM;
  }
};

}  // namespace kestrel::test
