#include "simulator/board.h"

#include <stdexcept>
#include <utility>

namespace kestrel::sim {
namespace {

constexpr int kNoLatch = -1;

// Bits 3..1 of the normalised control nibble. Codes 2, 3 and 6 of the decoder are not connected.
constexpr std::array<int, 8> kLatchOfCode{3, 1, kNoLatch, kNoLatch, 2, 0, kNoLatch, 4};
constexpr std::uint8_t kStrobe = 0x01;
constexpr std::uint8_t kHalfSelect = 0x04;

std::uint8_t statusOfModel4(unsigned half) {
  unsigned status = 0x0F;
  if ((half & 1U) != 0) status |= 0x40U;
  if ((half & 2U) == 0) status |= 0x80U;  // BUSY is inverted at the connector
  if ((half & 4U) != 0) status |= 0x20U;
  if ((half & 8U) != 0) status |= 0x10U;
  return static_cast<std::uint8_t>(status);
}

std::uint8_t statusOfModels5And6(unsigned half) {
  return static_cast<std::uint8_t>(0x87U | half << 3);
}

}  // namespace

Board::Board(Model model, const VirtualTime& time, Findings& findings)
    : model_(model),
      time_(time),
      findings_(findings),
      invertedControl_(model == Model::kestrel4 ? 0x00 : 0x0F),
      vpp_(model) {
  // The lines come up without a strobe, whatever the port held before.
  control_ = invertedControl_;
  setLatch(0, 0);
  settle(time_.now);
}

void Board::writeData(std::uint8_t value) {
  data_ = value;
  if (openLatch_ != kNoLatch) loadLatch(static_cast<std::size_t>(openLatch_), data_);
}

void Board::writeControl(std::uint8_t value) {
  control_ = value & 0x0F;
  const unsigned nibble = control_ ^ invertedControl_;
  openLatch_ = (nibble & kStrobe) != 0 ? kLatchOfCode[nibble >> 1] : kNoLatch;
  if (openLatch_ != kNoLatch) loadLatch(static_cast<std::size_t>(openLatch_), data_);
}

std::uint8_t Board::readStatus() {
  const std::uint8_t bus = dataBus();
  const bool selected = (control_ & kHalfSelect) != 0;
  if (model_ == Model::kestrel4) return statusOfModel4(selected ? bus >> 4 : bus & 0x0FU);
  return statusOfModels5And6(selected ? bus & 0x0FU : bus >> 4);
}

// A latch output that was high already does not move when the latch is loaded with the same again.
void Board::loadLatch(std::size_t index, std::uint8_t value) {
  const unsigned changed = latches_[index] ^ value;
  if (changed == 0) return;
  catchUp();
  if (index == 3 && (changed & kPin22) != 0 && (changed & kLatch4OffBus) != 0) {
    // Pin 22 moves before the data lines are released or driven: on a serial chip the clock comes
    // before the data (not verified on hardware).
    setLatch(3, latches_[3] ^ kPin22);
    settle(time_.now);
  }
  setLatch(index, value);
  settle(time_.now);
}

void Board::setLatch(std::size_t index, std::uint8_t value) {
  latches_[index] = value;
  latchPins_ = (latchPins_ & ~pinsOfLatch(index, 0xFF)) | pinsOfLatch(index, value);
  if (index == 0) {
    vpp_.select(value, time_.now);
    vppPins_ = vpp_.isOn() ? vppSwitches(value) : 0;
  }
}

// What happened on the board by itself since the last access.
void Board::catchUp() {
  const Nanoseconds arrivesAt = vpp_.arrivesAt();
  if (time_.now < arrivesAt) return;
  vpp_.arrive();
  settle(arrivesAt);
}

void Board::settle(Nanoseconds now) {
  const std::uint8_t external = externalData();
  if (!chip_) {
    bus_ = external;
    return;
  }
  const Package package = chip_->package();
  const PinLevels socket = latchPins_ | kDataLines.levels(external) | vppPins_;
  const PinOutput output = chip_->evaluate({.high = chipPins(package, socket),
                                            .vppPins = chipPins(package, vppPins_),
                                            .vppMillivolts = vpp_.millivolts(),
                                            .now = now},
                                           findings_);
  chipChangesAt_ = output.changesAt;
  if (output.driven == 0) {
    conflict_ = false;
    bus_ = external;
    return;
  }
  const auto lines = [package](PinLevels pins) {
    return static_cast<std::uint8_t>(kDataLines.value(socketPins(package, pins)));
  };
  const std::uint8_t driven = lines(output.driven);
  const std::uint8_t chipData = lines(output.high);
  checkConflict(driven & static_cast<std::uint8_t>(~lines(output.openDrain)), chipData, now);
  const auto wired = static_cast<std::uint8_t>(external & (chipData | ~driven));
  bus_ = static_cast<std::uint8_t>((wired | stuckHigh_) & ~stuckLow_);
}

void Board::checkConflict(std::uint8_t chipDrives, std::uint8_t chipData, Nanoseconds now) {
  const bool conflict = latch4Drives() && ((latches_[4] ^ chipData) & chipDrives) != 0;
  if (conflict && !conflict_) {
    findings_.report(FindingKind::busConflict, "latch 4 and the chip both drive the data lines",
                     now);
  }
  conflict_ = conflict;
}

// What everything but the chip puts on the data lines: pull-ups make an undriven line high.
std::uint8_t Board::externalData() const {
  unsigned lines = latch4Drives() ? latches_[4] : 0xFFU;
  if (model_ == Model::kestrel6 && (latches_[3] & kPullD4LowModel6) != 0) lines &= ~0x10U;
  return static_cast<std::uint8_t>((lines | stuckHigh_) & ~static_cast<unsigned>(stuckLow_));
}

std::unique_ptr<Chip> Board::insert(std::unique_ptr<Chip> chip) {
  catchUp();
  settle(time_.now);
  if (chip_) chip_->evaluate({.now = time_.now}, findings_);  // out of the socket: no supply
  std::swap(chip_, chip);
  if (chip_) chip_->judgePulses(judgesPulses_);
  chipChangesAt_ = kNever;
  conflict_ = false;
  followHandSetting();
  return chip;
}

const Chip* Board::chip() {
  catchUp();
  settle(time_.now);
  return chip_.get();
}

Chip& Board::settledChip() {
  if (chip() == nullptr) throw std::logic_error("the socket is empty");
  return *chip_;
}

void Board::loadChip(std::span<const std::uint8_t> contents) {
  settledChip().load(contents);
  settle(time_.now);
}

void Board::blankChip() {
  settledChip().blank();
  settle(time_.now);
}

bool Board::eraseUnderLamp() {
  if (!settledChip().isUvErasable()) return false;
  blankChip();
  return true;
}

void Board::fitWeakCell(std::uint32_t address, std::optional<std::uint32_t> pulses) {
  settledChip().fitWeakCell(address, pulses);
}

void Board::mendCell(std::uint32_t address) { settledChip().mendCell(address); }

void Board::setChip(const ChipSettings& settings) { settledChip().apply(settings); }

void Board::judgePulses(bool on) {
  judgesPulses_ = on;
  if (chip_) chip_->judgePulses(on);
}

void Board::setVppByHand(std::optional<int> millivolts) {
  catchUp();
  handMillivolts_ = millivolts;
  followHandSetting();
}

void Board::followHandSetting() {
  const int wanted = chip_ ? chip_->wantedVppMillivolts() : 0;
  vpp_.setByHand(handMillivolts_.value_or(wanted != 0 ? wanted : 12500));
  settle(time_.now);
}

void Board::stickDataLine(int bit, bool high) {
  if (bit < 0 || bit > 7) throw std::out_of_range("data lines are numbered 0 to 7");
  const auto mask = static_cast<std::uint8_t>(1U << bit);
  (high ? stuckHigh_ : stuckLow_) |= mask;
  (high ? stuckLow_ : stuckHigh_) &= static_cast<std::uint8_t>(~mask);
  catchUp();
  settle(time_.now);
}

void Board::freeDataLines() {
  for (int bit = 0; bit < 8; ++bit) freeDataLine(bit);
}

void Board::freeDataLine(int bit) {
  const auto others = static_cast<std::uint8_t>(~(1U << static_cast<unsigned>(bit)));
  stuckHigh_ &= others;
  stuckLow_ &= others;
  catchUp();
  settle(time_.now);
}

std::uint8_t Board::dataBus() {
  catchUp();
  if (time_.now >= chipChangesAt_) settle(time_.now);
  return bus_;
}

PinLevels Board::socketLevels() {
  const std::uint8_t bus = dataBus();
  return latchPins_ | kDataLines.levels(bus) | vppPins_;
}

int Board::vppMillivolts() {
  catchUp();
  return vpp_.millivolts();
}

}  // namespace kestrel::sim
