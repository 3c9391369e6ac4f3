#include "simulator/twelve_volt_flash.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <string>

namespace kestrel::sim {
namespace {

// clang-format off
constexpr auto kTypes = std::to_array<TwelveVoltFlashType>({
    {.name = "CAT28F010", .addressBits = 17, .makerCode = 0x31, .deviceCode = 0xB4},
    {.name = "CAT28F020", .addressBits = 18, .makerCode = 0x31, .deviceCode = 0xBD},
});

//                                                A0  A1  A2 A3 A4 A5 A6 A7  A8  A9 A10 A11 A12 A13 A14 A15 A16 A17
constexpr std::array<std::uint8_t, 18> kAddress{  12, 11, 10, 9, 8, 7, 6, 5, 27, 26, 23, 25,  4, 28, 29,  3,  2, 30};
constexpr std::array<std::uint8_t, 8>  kData{     13, 14, 15, 17, 18, 19, 20, 21};
// clang-format on

// The sheet gives the shortest pulses; against longer ones there is the stop timer, whose times are
// not verified on hardware.
constexpr PulsePlan kProgramPlan{
    .shortest = microseconds(10), .longest = kNever, .greatestNumber = 25};
constexpr PulsePlan kErasePlan{
    .shortest = microseconds(9'500), .longest = kNever, .greatestNumber = 1000};
constexpr Nanoseconds kProgramStop = microseconds(25);
constexpr Nanoseconds kEraseStop = microseconds(10'500);

// What a typical cell needs: one pulse to be programmed, some fifty to be erased (not verified on
// hardware; the sheets allow 10 s).
constexpr Nanoseconds kProgramTime = microseconds(10);
constexpr Nanoseconds kEraseTime = milliseconds(475);
constexpr Nanoseconds kVerifyRecovery = microseconds(6);

constexpr int kLowestVpp = 11400;
constexpr int kHighestVpp = 12600;

bool isProgramVoltage(int millivolts) {
  return kLowestVpp <= millivolts && millivolts <= kHighestVpp;
}

ByteWidePinout pinoutOf(const TwelveVoltFlashType& type) {
  return {.address = std::span(kAddress).first(type.addressBits),
          .data = kData,
          .ce = pin(22),
          .oe = pin(24),
          .we = pin(31),
          .vcc = pin(32),
          .vpp = pin(1)};
}

bool areZero(std::span<const std::uint8_t> cells) {
  return std::all_of(cells.begin(), cells.end(), [](std::uint8_t cell) { return cell == 0x00; });
}

}  // namespace

std::span<const TwelveVoltFlashType> twelveVoltFlashTypes() { return kTypes; }

TwelveVoltFlash::TwelveVoltFlash(const TwelveVoltFlashType& type)
    : ByteWideMemory(type.name, Package::dip32, std::size_t{1} << type.addressBits, pinoutOf(type)),
      type_(type),
      programJudge_(typeName() + ": program pulse", kProgramPlan,
                    std::size_t{1} << type.addressBits),
      eraseJudge_(typeName() + ": erase pulse", kErasePlan, 1) {}

Nanoseconds TwelveVoltFlash::busyUntil() const {
  const bool verifies = state_ == State::programVerify || state_ == State::eraseVerify;
  return verifies && now_ < verifiesFrom_ ? verifiesFrom_ : kNever;
}

void TwelveVoltFlash::followVpp(int millivolts, Nanoseconds now, Findings& findings) {
  if (millivolts == vppMillivolts_) return;
  if (isProgramVoltage(vppMillivolts_)) {
    endPulse(now, findings);
    programJudge_.beginRun();
    eraseJudge_.beginRun();
  }
  state_ = State::array;
  vppMillivolts_ = millivolts;
}

void TwelveVoltFlash::endWrite(const Strobe& strobe, Findings& findings) {
  if (vppMillivolts_ == 0) return;
  if (!isProgramVoltage(vppMillivolts_)) {
    findings.report(FindingKind::wrongVpp, typeName() + ": command with a VPP other than 12 V",
                    strobe.end);
    return;
  }
  endPulse(strobe.end, findings);
  if (state_ == State::programSetUp) {
    beginProgramPulse(strobe);
  } else if (state_ == State::eraseSetUp && strobe.data == 0x20) {
    beginErasePulse(strobe.end, findings);
  } else if (state_ == State::reset && strobe.data == 0xFF) {
    state_ = State::array;
  } else {
    state_ = afterCommand(strobe);
  }
}

TwelveVoltFlash::State TwelveVoltFlash::afterCommand(const Strobe& strobe) {
  switch (strobe.data) {
    case 0x20:
      return State::eraseSetUp;
    case 0x40:
      return State::programSetUp;
    case 0x90:
      return State::codes;
    case 0xA0:
      address_ = strobe.address;
      verifiesFrom_ = strobe.end + kVerifyRecovery;
      return State::eraseVerify;
    case 0xC0:
      verifiesFrom_ = strobe.end + kVerifyRecovery;
      return State::programVerify;
    case 0xFF:
      return State::reset;
    default:
      return State::array;
  }
}

void TwelveVoltFlash::beginProgramPulse(const Strobe& strobe) {
  if (strobe.address != address_ || strobe.data != data_) programTime_ = 0;
  address_ = strobe.address;
  data_ = strobe.data;
  forgetErase();
  pulseBegan_ = strobe.end;
  state_ = State::programming;
}

void TwelveVoltFlash::beginErasePulse(Nanoseconds now, Findings& findings) {
  const bool begins = eraseTime_ == 0;
  const bool allowed = begins ? areZero(contents()) : !notErased_ || !notErased_->empty();
  if (!allowed) {
    findings.report(FindingKind::overErase,
                    typeName() + (begins ? ": erase begun while not all bytes are 00h"
                                         : ": erase pulse after all bytes were FFh"),
                    now);
  }
  forgetProgram();
  pulseBegan_ = now;
  state_ = State::erasing;
}

void TwelveVoltFlash::endPulse(Nanoseconds now, Findings& findings) {
  if (state_ == State::programming) endProgramPulse(now, findings);
  if (state_ == State::erasing) endErasePulse(now, findings);
}

void TwelveVoltFlash::endProgramPulse(Nanoseconds now, Findings& findings) {
  const Nanoseconds width = now - pulseBegan_;
  programTime_ += std::min(width, kProgramStop);
  if (programTime_ >= kProgramTime) setCell(address_, cell(address_) & data_);
  if (judgesPulses()) {
    programJudge_.judge({.address = address_, .width = width, .end = now}, findings);
  }
}

void TwelveVoltFlash::endErasePulse(Nanoseconds now, Findings& findings) {
  const Nanoseconds width = now - pulseBegan_;
  eraseTime_ += std::min(width, kEraseStop);
  if (eraseTime_ >= kEraseTime) eraseCells();
  if (judgesPulses()) eraseJudge_.judge({.width = width, .end = now}, findings);
}

void TwelveVoltFlash::eraseCells() {
  if (!notErased_) {
    notErased_.emplace(contents().size());
    std::iota(notErased_->begin(), notErased_->end(), 0U);
  }
  std::erase_if(*notErased_, [this](std::uint32_t address) { return setCell(address, 0xFF); });
}

std::uint8_t TwelveVoltFlash::read(std::uint32_t address, bool /*toggle*/) const {
  switch (state_) {
    case State::array:
      return cell(address);
    case State::codes:
      return (address & 1U) == 0 ? type_.makerCode : type_.deviceCode;
    case State::programVerify:
    case State::eraseVerify:
      if (now_ >= verifiesFrom_) return cell(address_);
      break;
    default:
      break;
  }
  return static_cast<std::uint8_t>(~cell(address));
}

void TwelveVoltFlash::forgetProgram() {
  programTime_ = 0;
  programJudge_.beginRun();
}

void TwelveVoltFlash::forgetErase() {
  eraseTime_ = 0;
  notErased_.reset();
  eraseJudge_.beginRun();
}

void TwelveVoltFlash::contentsReplaced() {
  state_ = State::array;
  forgetProgram();
  forgetErase();
}

}  // namespace kestrel::sim
