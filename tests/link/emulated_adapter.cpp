#include "link/emulated_adapter.h"

#include <simavr/avr_ioport.h>
#include <simavr/avr_uart.h>
#include <simavr/sim_avr.h>
#include <simavr/sim_hex.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <utility>

/// simavr gives back little of what it takes for a processor.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:libsimavr"; }

namespace kestrel::test {

using Cycles = EmulatedAdapter::Cycles;

namespace {

constexpr std::uint16_t kBase = 0x378;
constexpr sim::Nanoseconds kNsPer2Cycles = 125;  // 62.5 ns a cycle

// How often the status lines follow a chip that changes by itself.
constexpr Cycles kRefreshCycles = 160;

// The wiring of the adapter, from processor pins to the 25-pin connector (docs/link.md). A pin that
// is no output floats; the control lines have resistors.
struct OutputWire {
  std::uint16_t portRegister;
  int bit;
  std::size_t db25;
  bool floatsHigh;
};
constexpr std::uint16_t kPortB = 0x25;  // in the data space; the direction register stands before
constexpr std::uint16_t kPortC = 0x28;
constexpr std::uint16_t kPortD = 0x2B;
// clang-format off
constexpr std::array<OutputWire, 12> kOutputs{{
    {kPortB, 0, 2, true},   {kPortC, 0, 3, true},  {kPortD, 2, 4, true},  {kPortD, 3, 5, true},
    {kPortD, 4, 6, true},   {kPortD, 5, 7, true},  {kPortD, 6, 8, true},  {kPortD, 7, 9, true},
    {kPortB, 1, 1, false},  {kPortB, 2, 14, true}, {kPortB, 3, 16, true}, {kPortB, 4, 17, true},
}};

struct StatusWire {
  int statusBit;
  std::size_t portCBit;
  bool isInverted;
};
constexpr std::array<StatusWire, 5> kStatusWires{{
    {3, 1, false}, {4, 2, false}, {5, 3, false}, {6, 4, false}, {7, 5, true},
}};
// clang-format on

avr_uart_t* findUart(avr_t* processor) {
  for (avr_io_t* part = processor->io_port; part != nullptr; part = part->next) {
    if (std::strcmp(part->kind, "uart") == 0) return reinterpret_cast<avr_uart_t*>(part);
  }
  throw std::runtime_error("no serial line in this simavr");
}

// The last word of the flash, which the program does not reach.
avr_flashaddr_t endlessLoop(const avr_t& processor) { return processor.flashend - 1; }

constexpr std::uint32_t ioportRequest(char port) {
  return AVR_IOCTL_DEF('i', 'o', 'g', static_cast<std::uint32_t>(port));
}
constexpr std::uint32_t kExternalRequest = AVR_IOCTL_DEF('i', 'o', 'p', 'C');
constexpr std::uint32_t kUartRequest = AVR_IOCTL_DEF('u', 'a', 'r', '0');
constexpr std::uint32_t kUartFlagsRequest = AVR_IOCTL_DEF('u', 'a', 's', '0');

void reportSerious(avr_t* /*processor*/, int level, const char* format, va_list arguments) {
  if (level <= LOG_ERROR) std::vfprintf(stderr, format, arguments);
}

// Sleeping takes no time of this machine.
void sleepNot(avr_t* /*processor*/, avr_cycle_count_t /*cycles*/) {}

void load(avr_t* processor, const std::filesystem::path& program) {
  std::uint32_t size = 0;
  std::uint32_t start = 0;
  std::string name = program.string();
  std::uint8_t* const code = read_ihex_file(name.c_str(), &size, &start);
  if (code == nullptr) throw std::runtime_error("cannot read " + name);
  avr_loadcode(processor, code, size, start);
  processor->codeend = processor->flashend;
  std::memcpy(processor->flash + endlessLoop(*processor), "\xFF\xCF", 2);  // rjmp to itself
  std::free(code);
}

}  // namespace

EmulatedAdapter::EmulatedAdapter(const std::filesystem::path& program, sim::Bench& bench)
    : bench_(bench), board_(*bench.board(kBase)) {
  avr_global_logger_set(reportSerious);
  processor_ = avr_make_mcu_by_name("atmega328p");
  if (processor_ == nullptr) throw std::runtime_error("no ATmega328P in this simavr");
  avr_init(processor_);
  processor_->frequency = 16'000'000;
  processor_->log = LOG_ERROR;
  processor_->sleep = sleepNot;
  load(processor_, program);
  uart_ = findUart(processor_);
  wireOutputs();
  reset();
}

EmulatedAdapter::~EmulatedAdapter() {
  avr_terminate(processor_);
  std::free(processor_);
}

void EmulatedAdapter::wireOutputs() {
  const avr_irq_notify_t portWritten = [](avr_irq_t*, std::uint32_t, void* self) {
    static_cast<EmulatedAdapter*>(self)->driveBoard();
  };
  for (const char port : {'B', 'C', 'D'}) {
    avr_irq_register_notify(avr_io_getirq(processor_, ioportRequest(port), IOPORT_IRQ_PIN_ALL),
                            portWritten, this);
  }
  for (std::size_t i = 0; i < portCPins_.size(); ++i) {
    portCPins_[i] = avr_io_getirq(processor_, ioportRequest('C'), static_cast<int>(i));
  }
  const avr_irq_notify_t byteWritten = [](avr_irq_t*, std::uint32_t value, void* self) {
    static_cast<EmulatedAdapter*>(self)->takeByte(static_cast<std::uint8_t>(value));
  };
  avr_irq_register_notify(avr_io_getirq(processor_, kUartRequest, UART_IRQ_OUTPUT), byteWritten,
                          this);
  std::uint32_t flags = 0;  // no echo of what is sent, no sleep when a register is polled
  avr_ioctl(processor_, kUartFlagsRequest, &flags);
}

Cycles EmulatedAdapter::now() const { return processor_->cycle; }

void EmulatedAdapter::letTimePass() {
  const auto moment = static_cast<sim::Nanoseconds>(now()) * kNsPer2Cycles / 2;
  bench_.wait(moment - bench_.now());
}

// This simavr takes 11 bits for a byte where the line has 10; it counts anew when the program sets
// the line up.
std::uint64_t EmulatedAdapter::refresh(avr_t* /*processor*/, std::uint64_t when, void* self) {
  auto& adapter = *static_cast<EmulatedAdapter*>(self);
  adapter.uart_->cycles_per_byte = kCyclesPerByte;
  adapter.letTimePass();
  if (static_cast<int>(adapter.statusOfConnector()) != adapter.shownStatus_) adapter.driveStatus();
  return when + kRefreshCycles;
}

std::uint64_t EmulatedAdapter::wakeUp(avr_t* /*processor*/, std::uint64_t /*when*/,
                                      void* /*self*/) {
  return 0;
}

void EmulatedAdapter::runUntil(Cycles moment) {
  if (moment <= now()) return;
  // A sleeping processor is woken by the next timer.
  avr_cycle_timer_register(processor_, moment - now(), wakeUp, this);
  while (now() < moment) {
    isRunning_ = true;
    const int state = avr_run(processor_);
    isRunning_ = false;
    if (state == cpu_Crashed) throw std::runtime_error("the adapter has crashed");
    if (std::exchange(isResetAsked_, false)) reset();
  }
  avr_cycle_timer_cancel(processor_, wakeUp, this);
  letTimePass();
}

void EmulatedAdapter::send(std::uint8_t value, Cycles notBefore) {
  if (isLinePulled_) return;
  lineFreeAt_ = std::max({lineFreeAt_, notBefore, now()});
  incoming_.push_back({.value = value, .startsAt = lineFreeAt_});
  lineFreeAt_ += kCyclesPerByte;
  if (incoming_.size() == 1) {
    avr_cycle_timer_register(processor_, incoming_.front().startsAt - now(), deliver, this);
  }
}

// simavr itself lets the duration of a byte pass before the processor sees it.
std::uint64_t EmulatedAdapter::deliver(avr_t* processor, std::uint64_t /*when*/, void* context) {
  auto& self = *static_cast<EmulatedAdapter*>(context);
  if (self.incoming_.empty()) return 0;
  const Incoming byte = self.incoming_.front();
  self.incoming_.pop_front();
  avr_raise_irq(avr_io_getirq(processor, kUartRequest, UART_IRQ_INPUT), byte.value);
  if (self.incoming_.empty()) return 0;
  return std::max(self.incoming_.front().startsAt, self.now() + 1);
}

// The transmitter takes a byte while the one before is on the line.
void EmulatedAdapter::takeByte(std::uint8_t value) {
  answerFreeAt_ = std::max(answerFreeAt_, now()) + kCyclesPerByte;
  if (!isLinePulled_ && byteSent_) byteSent_(value, answerFreeAt_);
}

void EmulatedAdapter::driveBoard() {
  for (const OutputWire& wire : kOutputs) {
    const std::uint8_t driven = processor_->data[wire.portRegister - 1];
    const std::uint8_t levels = processor_->data[wire.portRegister];
    const bool isOutput = (driven >> wire.bit & 1) != 0;
    connector_.at(wire.db25) = isOutput ? (levels >> wire.bit & 1) != 0 : wire.floatsHigh;
  }
  const int data = dataRegister();
  const int control = controlRegister();
  const bool isChange = data != shownData_ || control != shownControl_;
  if (isChange) letTimePass();
  const auto writeControl = [&] {
    if (control != shownControl_) board_.writeControl(static_cast<std::uint8_t>(control));
  };
  // At a reset the resistors take the strobe away in 0.2 us; the data lines, left to the input
  // currents of the board (0.4 mA into about 100 pF), rise later.
  const bool floats = processor_->data[kPortD - 1] == 0;
  if (floats) writeControl();
  if (data != shownData_) board_.writeData(static_cast<std::uint8_t>(data));
  if (!floats) writeControl();
  shownData_ = data;
  shownControl_ = control;
  driveStatus();
  if (isChange && changed_) changed_();
}

// What drives the inputs is told apart from their levels: else each write to the port would let the
// processor's own pull-ups raise them.
void EmulatedAdapter::driveStatus() {
  letTimePass();
  const unsigned status = statusOfConnector();
  shownStatus_ = static_cast<int>(status);
  avr_ioport_external_t driven{.name = 'C', .mask = 0, .value = 0};
  for (const StatusWire& wire : kStatusWires) {
    const bool isSet = (status >> wire.statusBit & 1U) != 0;
    const unsigned level = isSet != wire.isInverted ? 1 : 0;
    driven.mask = static_cast<std::uint8_t>(driven.mask | 1U << wire.portCBit);
    driven.value = static_cast<std::uint8_t>(driven.value | level << wire.portCBit);
    avr_raise_irq(portCPins_.at(wire.portCBit), level);
  }
  avr_ioctl(processor_, kExternalRequest, &driven);
}

unsigned EmulatedAdapter::statusOfConnector() const {
  return isPlugFitted_ ? statusOfPlug() : board_.readStatus();
}

// An input is low while any output at its diodes is; BUSY (bit 7) arrives inverted.
unsigned EmulatedAdapter::statusOfPlug() const {
  struct Diodes {
    unsigned statusBit;
    std::array<std::size_t, 3> outputs;
  };
  constexpr std::array<Diodes, 5> kPlug{
      {{3, {2, 7, 1}}, {4, {3, 8, 14}}, {5, {4, 9, 16}}, {6, {5, 17, 17}}, {7, {6, 6, 6}}}};
  unsigned status = 0x80;
  for (const Diodes& input : kPlug) {
    const bool isHigh = std::ranges::all_of(
        input.outputs, [this](std::size_t output) { return output == cutPin_ || pin(output); });
    if (isHigh) status ^= 1U << input.statusBit;
  }
  return status;
}

std::uint8_t EmulatedAdapter::dataRegister() const {
  unsigned value = 0;
  for (std::size_t bit = 0; bit < 8; ++bit) value |= pin(2 + bit) ? 1U << bit : 0U;
  return static_cast<std::uint8_t>(value);
}

// Pins 1, 14 and 17 carry bits 0, 1 and 3 inverted, pin 16 carries bit 2 as it is (IEEE 1284).
std::uint8_t EmulatedAdapter::controlRegister() const {
  const unsigned value =
      (pin(1) ? 0U : 1U) | (pin(14) ? 0U : 2U) | (pin(16) ? 4U : 0U) | (pin(17) ? 0U : 8U);
  return static_cast<std::uint8_t>(value);
}

void EmulatedAdapter::reset() {
  if (isRunning_) {
    isResetAsked_ = true;
    return;
  }
  avr_reset(processor_);
  incoming_.clear();
  avr_cycle_timer_register(processor_, kRefreshCycles, refresh, this);
  driveBoard();
}

void EmulatedAdapter::pullLine() {
  isLinePulled_ = true;
  incoming_.clear();
}

void EmulatedAdapter::hang() { processor_->pc = endlessLoop(*processor_); }

EmulatedLine::EmulatedLine(EmulatedAdapter& adapter, Cycles latency)
    : adapter_(adapter), latency_(latency) {
  adapter_.onByte([this](std::uint8_t value, Cycles at) {
    arrived_.push_back({.value = value, .at = at + latency_ / 2});
  });
}

void EmulatedLine::write(std::span<const std::uint8_t> bytes) {
  for (const std::uint8_t value : bytes) {
    const auto damage = std::exchange(damage_, std::uint8_t{0});
    adapter_.send(static_cast<std::uint8_t>(value ^ damage), adapter_.now() + latency_ / 2);
  }
}

void EmulatedLine::writeUrgently(std::uint8_t value) noexcept {
  adapter_.send(value, adapter_.now() + latency_ / 2);
}

std::size_t EmulatedLine::read(std::span<std::uint8_t> bytes, std::chrono::milliseconds limit) {
  const Cycles end =
      adapter_.now() + static_cast<Cycles>(limit.count()) * EmulatedAdapter::kCyclesPerMs;
  while (!hasByte() && adapter_.now() < end) {
    const Cycles next = arrived_.empty() ? adapter_.now() + 1 : arrived_.front().at;
    adapter_.runUntil(std::min(next, end));
  }
  std::size_t count = 0;
  while (count < bytes.size() && hasByte()) {
    bytes[count++] = arrived_.front().value;
    arrived_.pop_front();
  }
  return count;
}

}  // namespace kestrel::test
