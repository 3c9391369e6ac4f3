#include "simulator/parallel_flash.h"

#include <algorithm>
#include <array>

namespace kestrel::sim {
namespace {

// How long a typical part takes, and when it gives up. The sheets give 1 Mbit and 4 Mbit; the times
// of the AM29F020 are taken between them (not verified on hardware).
constexpr WorkTime kByte7us{.typical = microseconds(7), .limit = microseconds(200)};
constexpr WorkTime kByte10us{.typical = microseconds(10), .limit = microseconds(200)};
constexpr WorkTime kErase1Mbit{.typical = milliseconds(1000), .limit = milliseconds(14'000)};
constexpr WorkTime kErase2Mbit{.typical = milliseconds(2000), .limit = milliseconds(28'000)};
constexpr WorkTime kErase4Mbit{.typical = milliseconds(8000), .limit = milliseconds(64'000)};

// A protected part is busy for a moment and then has written nothing.
constexpr Nanoseconds kRefusedProgram = microseconds(2);
constexpr Nanoseconds kRefusedErase = microseconds(100);

// clang-format off
constexpr auto kTypes = std::to_array<ParallelFlashType>({
    {.name = "AM29F010", .addressBits = 17, .makerCode = 0x01, .deviceCode = 0x20, .hasContinuation = false, .program = kByte7us,  .erase = kErase1Mbit},
    {.name = "AM29F020", .addressBits = 18, .makerCode = 0x01, .deviceCode = 0xB0, .hasContinuation = false, .program = kByte7us,  .erase = kErase2Mbit},
    {.name = "AM29F040", .addressBits = 19, .makerCode = 0x01, .deviceCode = 0xA4, .hasContinuation = false, .program = kByte7us,  .erase = kErase4Mbit},
    {.name = "A29040",   .addressBits = 19, .makerCode = 0x37, .deviceCode = 0x86, .hasContinuation = false, .program = kByte10us, .erase = kErase4Mbit},
    {.name = "EN29F040", .addressBits = 19, .makerCode = 0x1C, .deviceCode = 0x04, .hasContinuation = true,  .program = kByte10us, .erase = kErase4Mbit},
});

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

ChipSettings ParallelFlash::settings() const {
  return {.writeProtected = isProtected_, .writeNeverEnds = neverEnds_};
}

void ParallelFlash::apply(const ChipSettings& settings) {
  isProtected_ = settings.writeProtected.value_or(isProtected_);
  neverEnds_ = settings.writeNeverEnds.value_or(neverEnds_);
}

void ParallelFlash::begin(Work work, Nanoseconds now) {
  const WorkTime& time = timeOf(work);
  work_ = work;
  timedOut_ = false;
  givesUpAt_ = now + time.limit;
  attemptEnds_ = now + time.typical;
  if (isProtected_) attemptEnds_ = now + (work == Work::erase ? kRefusedErase : kRefusedProgram);
}

// The chip pulses and verifies by itself; what has not taken at the end of an attempt gets another.
void ParallelFlash::settle(Nanoseconds now) {
  while (now >= busyUntil()) {
    if (attemptEnds_ > givesUpAt_) {
      timedOut_ = true;
    } else if (!neverEnds_ && attempt()) {
      work_ = Work::none;
    } else {
      attemptEnds_ += timeOf(work_).typical;
    }
  }
}

Nanoseconds ParallelFlash::busyUntil() const {
  return isBusy() && !timedOut_ ? std::min(attemptEnds_, givesUpAt_) : kNever;
}

// True if all cells have what they should have.
bool ParallelFlash::attempt() {
  if (isProtected_) return true;
  if (work_ == Work::program) {
    return setCell(program_.address, cell(program_.address) & program_.data);
  }
  const auto end = static_cast<std::uint32_t>(contents().size());
  bool erased = true;
  for (std::uint32_t address = 0; address < end; ++address) {
    erased = setCell(address, 0xFF) && erased;
  }
  return erased;
}

void ParallelFlash::endWrite(const Strobe& strobe, Findings& /*findings*/) {
  if (timedOut_) {
    if (strobe.data == kReset) rest();
  } else if (state_ == State::data) {
    state_ = State::array;
    program_ = strobe;
    begin(Work::program, strobe.end);
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
      if (is(0x555, 0x10)) begin(Work::erase, strobe.end);
      return State::array;
    case State::codes:  // only the reset leads out
    case State::data:
      break;
  }
  return state_;
}

std::uint8_t ParallelFlash::read(std::uint32_t address, bool toggle) const {
  if (isBusy()) {
    const bool erases = work_ == Work::erase;
    const unsigned complement = erases ? 0U : ~static_cast<unsigned>(program_.data) & 0x80U;
    return static_cast<std::uint8_t>(complement | (toggle ? 0x40U : 0U) | (timedOut_ ? 0x20U : 0U));
  }
  return state_ == State::codes ? code(address) : cell(address);
}

std::uint8_t ParallelFlash::code(std::uint32_t address) const {
  if ((address & 2U) != 0) return isProtected_ ? 0x01 : 0x00;
  if (type_.hasContinuation && (address & 0x100U) == 0) return kContinuationCode;
  return (address & 1U) == 0 ? type_.makerCode : type_.deviceCode;
}

void ParallelFlash::losePower() {
  state_ = State::array;
  rest();
}

void ParallelFlash::rest() {
  work_ = Work::none;
  timedOut_ = false;
}

}  // namespace kestrel::sim
