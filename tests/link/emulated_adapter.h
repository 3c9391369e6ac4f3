#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>

#include "link/byte_line.h"
#include "simulator/bench.h"

struct avr_t;
struct avr_irq_t;
struct avr_uart_t;

namespace kestrel::test {

/// The adapter as hardware: its program as it is flashed (Intel hex) in an emulated ATmega328P at
/// 16 MHz, the pins wired to the connector of the board at 378h of a bench.
///
/// The time of the bench is the time of the processor; nothing else moves it. While the processor
/// is reset its pins float: the control lines are then held by the resistors of the wiring at the
/// code that opens no latch, and the data lines float high.
class EmulatedAdapter {
 public:
  using Cycles = std::uint64_t;
  static constexpr Cycles kCyclesPerUs = 16;
  static constexpr Cycles kCyclesPerMs = 16'000;
  static constexpr Cycles kCyclesPerByte = 160;  // 10 bits at 1 Mbaud

  /// The bench outlives the adapter and has a board at 378h.
  EmulatedAdapter(const std::filesystem::path& program, sim::Bench& bench);
  ~EmulatedAdapter();
  EmulatedAdapter(const EmulatedAdapter&) = delete;
  EmulatedAdapter& operator=(const EmulatedAdapter&) = delete;

  [[nodiscard]] Cycles now() const;

  /// Runs until a moment; instructions and sleeps are not cut, so it may be a little later.
  void runUntil(Cycles moment);
  void runFor(Cycles duration) { runUntil(now() + duration); }

  /// One byte of the program's, that starts on the line at a moment or as soon as the line is free.
  void send(std::uint8_t value, Cycles notBefore);

  /// Called with each byte of the adapter's and the moment of its stop bit.
  void onByte(std::function<void(std::uint8_t, Cycles)> callback) {
    byteSent_ = std::move(callback);
  }

  /// Called after each change of a line of the connector.
  void onChange(std::function<void()> callback) { changed_ = std::move(callback); }

  /// The reset button; pressed in onChange it works after the instruction.
  void reset();

  /// A loop-back plug of twelve diodes instead of the board; one of its outputs (a pin of the
  /// connector) may have lost its wire.
  void fitPlug(std::size_t cutPin = 0) {
    isPlugFitted_ = true;
    cutPin_ = cutPin;
  }

  /// The line is cut in both directions.
  void pullLine();

  /// The processor runs into an endless loop until its watchdog resets it; not in onChange.
  void hang();

 private:
  struct Incoming {
    std::uint8_t value;
    Cycles startsAt;
  };

  static std::uint64_t deliver(avr_t* processor, std::uint64_t when, void* self);
  static std::uint64_t refresh(avr_t* processor, std::uint64_t when, void* self);
  static std::uint64_t wakeUp(avr_t* processor, std::uint64_t when, void* self);
  void wireOutputs();
  void takeByte(std::uint8_t value);
  void letTimePass();
  void driveBoard();
  void driveStatus();
  [[nodiscard]] unsigned statusOfConnector() const;
  [[nodiscard]] unsigned statusOfPlug() const;
  [[nodiscard]] bool pin(std::size_t db25) const { return connector_.at(db25); }
  [[nodiscard]] std::uint8_t dataRegister() const;
  [[nodiscard]] std::uint8_t controlRegister() const;

  sim::Bench& bench_;
  sim::Board& board_;
  avr_t* processor_ = nullptr;
  avr_uart_t* uart_ = nullptr;
  std::array<avr_irq_t*, 8> portCPins_{};
  std::array<bool, 26> connector_{};  // level of each DB-25 pin
  int shownData_ = -1;
  int shownControl_ = -1;
  int shownStatus_ = -1;
  std::deque<Incoming> incoming_;
  Cycles lineFreeAt_ = 0;
  Cycles answerFreeAt_ = 0;
  bool isRunning_ = false;
  bool isResetAsked_ = false;
  bool isLinePulled_ = false;
  bool isPlugFitted_ = false;
  std::size_t cutPin_ = 0;
  std::function<void(std::uint8_t, Cycles)> byteSent_;
  std::function<void()> changed_;
};

/// The line between a program and an emulated adapter, both in this process. The program's own work
/// takes no time; the adapter runs while the program reads. `latency` is what a round trip takes
/// beside the bytes themselves.
class EmulatedLine final : public link::ByteLine {
 public:
  explicit EmulatedLine(EmulatedAdapter& adapter, EmulatedAdapter::Cycles latency = 0);

  void write(std::span<const std::uint8_t> bytes) override;
  [[nodiscard]] std::size_t read(std::span<std::uint8_t> bytes,
                                 std::chrono::milliseconds limit) override;
  void writeUrgently(std::uint8_t value) noexcept override;
  [[nodiscard]] const std::string& name() const override { return name_; }

  /// The next byte that is written arrives with these bits turned over.
  void damageNextByte(std::uint8_t bits) { damage_ = bits; }

 private:
  struct Arrived {
    std::uint8_t value;
    EmulatedAdapter::Cycles at;
  };

  [[nodiscard]] bool hasByte() const {
    return !arrived_.empty() && arrived_.front().at <= adapter_.now();
  }

  EmulatedAdapter& adapter_;
  EmulatedAdapter::Cycles latency_;
  std::deque<Arrived> arrived_;
  std::uint8_t damage_ = 0;
  std::string name_ = "emulated adapter";
};

}  // namespace kestrel::test
