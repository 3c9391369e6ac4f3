#include "simulator/page_write_memory.h"

#include <algorithm>

namespace kestrel::sim {
namespace {

// The windows are those of the data sheets. A 28C256 counts from one falling edge of /WE to the
// next, an AT29C256 from a rising edge to the next falling one. Typical cycles are assumed; the
// data sheets promise 10 ms at most.
// clang-format off
constexpr auto kTypes = std::to_array<PageWriteType>({
    {.name = "28C256",    .pageBytes = 64,  .pinWe = 27, .pinA14 = 1,  .loadWindow = microseconds(100), .windowFromFall = true,  .writeCycle = milliseconds(3), .fillsPage = false},
    {.name = "X28C256",   .pageBytes = 64,  .pinWe = 27, .pinA14 = 1,  .loadWindow = microseconds(100), .windowFromFall = true,  .writeCycle = milliseconds(3), .fillsPage = false},
    {.name = "CAT28C256", .pageBytes = 64,  .pinWe = 27, .pinA14 = 1,  .loadWindow = microseconds(100), .windowFromFall = true,  .writeCycle = milliseconds(3), .fillsPage = false},
    {.name = "CAT28C257", .pageBytes = 128, .pinWe = 27, .pinA14 = 1,  .loadWindow = microseconds(100), .windowFromFall = true,  .writeCycle = milliseconds(3), .fillsPage = false},
    {.name = "AT29C256",  .pageBytes = 64,  .pinWe = 1,  .pinA14 = 27, .loadWindow = microseconds(150), .windowFromFall = false, .writeCycle = milliseconds(4), .fillsPage = true, .makerCode = 0x1F, .deviceCode = 0xDC},
});

//                                                     A0  A1 A2 A3 A4 A5 A6 A7  A8  A9 A10 A11 A12 A13 A14
constexpr std::array<std::uint8_t, 15> kAddress28C{    10,  9, 8, 7, 6, 5, 4, 3, 25, 24, 21, 23,  2, 26,  1};
constexpr std::array<std::uint8_t, 15> kAddressAT29C{  10,  9, 8, 7, 6, 5, 4, 3, 25, 24, 21, 23,  2, 26, 27};
constexpr std::array<std::uint8_t, 8>  kData{          11, 12, 13, 15, 16, 17, 18, 19};
// clang-format on

constexpr std::uint32_t kSizeBytes = 0x8000;
constexpr std::uint32_t kUnlock1 = 0x5555;
constexpr std::uint32_t kUnlock2 = 0x2AAA;
constexpr std::uint8_t kLeaveIdentify = 0xF0;

ByteWidePinout pinoutOf(const PageWriteType& type) {
  return {.address = type.pinA14 == 1 ? kAddress28C : kAddressAT29C,
          .data = kData,
          .ce = pin(20),
          .oe = pin(22),
          .we = pin(type.pinWe),
          .vcc = pin(28)};
}

struct UnlockByte {
  std::uint32_t address;
  std::uint8_t data;
};

// What has to come after so many bytes of a command; the bytes at 2 and 5 tell the command.
constexpr std::array<UnlockByte, 5> kUnlock{
    {{kUnlock1, 0xAA}, {kUnlock2, 0x55}, {kUnlock1, 0x80}, {kUnlock1, 0xAA}, {kUnlock2, 0x55}}};

}  // namespace

std::span<const PageWriteType> pageWriteTypes() { return kTypes; }

PageWriteMemory::PageWriteMemory(const PageWriteType& type)
    : ByteWideMemory(type.name, Package::dip28, kSizeBytes, pinoutOf(type)),
      type_(type),
      writeCycle_(type.writeCycle) {}

ChipSettings PageWriteMemory::settings() const {
  return {
      .writeCycle = writeCycle_, .softwareProtection = isProtected_, .writeNeverEnds = neverEnds_};
}

void PageWriteMemory::apply(const ChipSettings& settings) {
  writeCycle_ = settings.writeCycle.value_or(writeCycle_);
  isProtected_ = settings.softwareProtection.value_or(isProtected_);
  neverEnds_ = settings.writeNeverEnds.value_or(neverEnds_);
}

void PageWriteMemory::settle(Nanoseconds now) {
  if (phase_ == Phase::loading && now >= phaseEnds_) {
    phase_ = Phase::writing;
    phaseEnds_ = std::max(phaseEnds_, load_.last.end + writeCycle_);
  }
  if (phase_ == Phase::writing && now >= phaseEnds_ && !neverEnds_) {
    phase_ = Phase::idle;
    finishLoad();
  }
}

Nanoseconds PageWriteMemory::busyUntil() const {
  return phase_ == Phase::idle ? kNever : phaseEnds_;
}

bool PageWriteMemory::beginWrite() {
  if (phase_ == Phase::writing) return false;
  if (phase_ == Phase::idle) load_ = {};
  phase_ = Phase::loading;
  phaseEnds_ = kNever;  // the strobe keeps the window open
  return true;
}

void PageWriteMemory::endWrite(const Strobe& strobe, Findings& /*findings*/) {
  load_.last = strobe;
  load_.data[strobe.address % type_.pageBytes] = strobe.data;
  load_.loaded.set(strobe.address % type_.pageBytes);
  followCommand(strobe);
  phaseEnds_ = type_.loadWindow + (type_.windowFromFall ? strobe.begin : strobe.end);
  phaseEnds_ = std::max(phaseEnds_, strobe.end);
}

void PageWriteMemory::followCommand(const Strobe& strobe) {
  if (load_.matched == kNoCommand) return;
  const auto next = static_cast<std::size_t>(load_.matched);
  if (const Command command = commandOf(load_.matched, strobe); command != Command::none) {
    load_.command = command;
    load_.loaded.reset();  // the command bytes are no data
    load_.matched = kNoCommand;
  } else if (next < kUnlock.size() && strobe.address == kUnlock[next].address &&
             strobe.data == kUnlock[next].data) {
    ++load_.matched;
  } else {
    load_.matched = kNoCommand;
  }
}

PageWriteMemory::Command PageWriteMemory::commandOf(int matched, const Strobe& strobe) const {
  if (matched == 0 && identifies_ && strobe.data == kLeaveIdentify) return Command::leaveIdentify;
  if (strobe.address != kUnlock1) return Command::none;
  if (matched == 5) return strobe.data == 0x20 ? Command::unprotect : Command::none;
  if (matched != 2) return Command::none;
  if (strobe.data == 0xA0) return Command::openLoad;
  if (type_.makerCode == 0) return Command::none;
  if (strobe.data == 0x90) return Command::identify;
  return strobe.data == kLeaveIdentify ? Command::leaveIdentify : Command::none;
}

void PageWriteMemory::finishLoad() {
  const bool refused =
      isProtected_ && load_.command != Command::openLoad && load_.command != Command::unprotect;
  if (!refused && load_.loaded.any()) storePage();
  if (load_.command == Command::openLoad) isProtected_ = true;
  if (load_.command == Command::unprotect) isProtected_ = false;
  if (load_.command == Command::identify) identifies_ = true;
  if (load_.command == Command::leaveIdentify) identifies_ = false;
}

void PageWriteMemory::storePage() {
  const std::uint32_t page = load_.last.address & ~(type_.pageBytes - 1);
  for (std::uint32_t i = 0; i < type_.pageBytes; ++i) {
    if (load_.loaded[i]) {
      setCell(page + i, load_.data[i]);
    } else if (type_.fillsPage) {
      setCell(page + i, 0xFF);
    }
  }
}

// While busy: bit 7 is the complement of the last byte's and bit 6 toggles. The other bits are
// undefined; they are given complemented too, so that nobody takes the byte for the data.
std::uint8_t PageWriteMemory::read(std::uint32_t address, bool toggle) const {
  if (phase_ != Phase::idle) {
    const unsigned complement = ~static_cast<unsigned>(load_.last.data) & 0xBFU;
    return static_cast<std::uint8_t>(complement | (toggle ? 0x40U : 0U));
  }
  if (identifies_) return (address & 1U) == 0 ? type_.makerCode : type_.deviceCode;
  return cell(address);
}

void PageWriteMemory::losePower() {
  phase_ = Phase::idle;
  identifies_ = false;
}

}  // namespace kestrel::sim
