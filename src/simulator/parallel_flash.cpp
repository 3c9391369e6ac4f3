#include "simulator/parallel_flash.h"

#include <array>

namespace kestrel::sim {
namespace {

// Typical parts: 7 to 14 us a byte, a second for each of eight sectors.
constexpr Nanoseconds kProgramTime = microseconds(10);
constexpr Nanoseconds kEraseTime = milliseconds(8000);

// clang-format off
constexpr std::array<ParallelFlashType, 4> kTypes{{
    {.name = "AM29F010", .addressBits = 17, .makerCode = 0x01, .deviceCode = 0x20, .hasContinuation = false},
    {.name = "AM29F040", .addressBits = 19, .makerCode = 0x01, .deviceCode = 0xA4, .hasContinuation = false},
    {.name = "A29040",   .addressBits = 19, .makerCode = 0x37, .deviceCode = 0x86, .hasContinuation = false},
    {.name = "EN29F040", .addressBits = 19, .makerCode = 0x1C, .deviceCode = 0x04, .hasContinuation = true},
}};

//                                                A0  A1  A2 A3 A4 A5 A6 A7  A8  A9 A10 A11 A12 A13 A14 A15 A16 A17 A18
constexpr std::array<std::uint8_t, 19> kAddress{  12, 11, 10, 9, 8, 7, 6, 5, 27, 26, 23, 25,  4, 28, 29,  3,  2, 30,  1};
constexpr std::array<std::uint8_t, 8>  kData{     13, 14, 15, 17, 18, 19, 20, 21};
// clang-format on

constexpr std::uint32_t kCommandBits = 0x7FF;
constexpr std::uint8_t kContinuationCode = 0x7F;
constexpr std::uint8_t kReset = 0xF0;

ByteWidePinout pinoutOf(const ParallelFlashType& type) {
  return {.address = std::span(kAddress).first(type.addressBits),
          .data = kData,
          .ce = pin(22),
          .oe = pin(24),
          .we = pin(31),
          .vcc = pin(32)};
}

}  // namespace

std::span<const ParallelFlashType> parallelFlashTypes() { return kTypes; }

ParallelFlash::ParallelFlash(const ParallelFlashType& type)
    : ByteWideMemory(type.name, Package::dip32, std::size_t{1} << type.addressBits, pinoutOf(type)),
      type_(type) {}

void ParallelFlash::settle(Nanoseconds now) {
  if (busyUntil_ == kNever || now < busyUntil_) return;
  busyUntil_ = kNever;
  if (!erases_) {
    setCell(program_.address, cell(program_.address) & program_.data);
    return;
  }
  const auto end = static_cast<std::uint32_t>(contents().size());
  for (std::uint32_t address = 0; address < end; ++address) setCell(address, 0xFF);
}

void ParallelFlash::endWrite(const Strobe& strobe) {
  if (state_ == State::data) {
    state_ = State::array;
    erases_ = false;
    program_ = strobe;
    busyUntil_ = strobe.end + kProgramTime;
  } else if (strobe.data == kReset) {
    state_ = State::array;
  } else {
    state_ = afterCommand(strobe);
  }
}

ParallelFlash::State ParallelFlash::afterCommand(const Strobe& strobe) {
  const std::uint32_t place = strobe.address & kCommandBits;
  const auto is = [&](std::uint32_t address, std::uint8_t data) {
    return place == address && strobe.data == data;
  };
  switch (state_) {
    case State::array:
      return is(0x555, 0xAA) ? State::unlocking : State::array;
    case State::unlocking:
      return is(0x2AA, 0x55) ? State::command : State::array;
    case State::command:
      if (is(0x555, 0x90)) return State::codes;
      if (is(0x555, 0xA0)) return State::data;
      return is(0x555, 0x80) ? State::erase : State::array;
    case State::erase:
      return is(0x555, 0xAA) ? State::eraseUnlocking : State::array;
    case State::eraseUnlocking:
      return is(0x2AA, 0x55) ? State::eraseCommand : State::array;
    case State::eraseCommand:
      erases_ = is(0x555, 0x10);
      if (erases_) busyUntil_ = strobe.end + kEraseTime;
      return State::array;
    case State::codes:  // only the reset leads out
    case State::data:
      break;
  }
  return state_;
}

std::uint8_t ParallelFlash::read(std::uint32_t address, bool toggle) const {
  if (busyUntil_ != kNever) {
    const unsigned complement = erases_ ? 0U : ~static_cast<unsigned>(program_.data) & 0x80U;
    return static_cast<std::uint8_t>(complement | (toggle ? 0x40U : 0U));
  }
  return state_ == State::codes ? code(address) : cell(address);
}

std::uint8_t ParallelFlash::code(std::uint32_t address) const {
  if ((address & 2U) != 0) return 0x00;  // no sector is protected
  if (type_.hasContinuation && (address & 0x100U) == 0) return kContinuationCode;
  return (address & 1U) == 0 ? type_.makerCode : type_.deviceCode;
}

void ParallelFlash::losePower() {
  state_ = State::array;
  busyUntil_ = kNever;
}

}  // namespace kestrel::sim
