#include <array>

#include "simulator/uv_eprom.h"

namespace kestrel::sim {
namespace {

// Limits of the data sheets: 12.0-13.25 V, 21 +-0.5 V, 25 +-1 V, and the absolute maxima.
constexpr VppWindow k12V{.wanted = 12500, .lowest = 12000, .highest = 13250, .destructive = 14000};
constexpr VppWindow k21V{.wanted = 21000, .lowest = 20500, .highest = 21500, .destructive = 22000};
constexpr VppWindow k25V{.wanted = 25000, .lowest = 24000, .highest = 26000, .destructive = 26500};

constexpr auto kPgm = ProgramControl::pgmPin;
constexpr auto kCe = ProgramControl::cePulse;
constexpr auto kOe = ProgramControl::vppOnOe;

constexpr auto k24 = Package::dip24;
constexpr auto k28 = Package::dip28;
constexpr auto k32 = Package::dip32;

// The prescribed pulses, 5 % more or less (10 % of the 50 ms). The longest overprogram pulses of
// the sheets, 63 and 78.75 ms, follow from the greatest number of pulses and the 5 %.
// clang-format off
constexpr PulsePlan k50ms     {.shortest = milliseconds(45),      .longest = milliseconds(55),      .greatestNumber = 1};
constexpr PulsePlan k1msOver4 {.shortest = microseconds(950),     .longest = microseconds(1050),    .greatestNumber = 15, .overprogramPerPulse = milliseconds(4)};
constexpr PulsePlan k1msOver3 {.shortest = microseconds(950),     .longest = microseconds(1050),    .greatestNumber = 25, .overprogramPerPulse = milliseconds(3)};
constexpr PulsePlan k100us    {.shortest = microseconds(95),      .longest = microseconds(105),     .greatestNumber = 25};
constexpr PulsePlan k50us     {.shortest = Nanoseconds{47'500},   .longest = Nanoseconds{52'500},   .greatestNumber = 25};
// clang-format on

constexpr bool kNmos = true;
constexpr bool kCmos = false;

// The times are those of a typical part: a 2732 has its bits well before its 50 ms pulse ends. The
// 2732 needs no 5 V on VPP for reading, since that pin is its /OE; so kNmos is not set there.
// clang-format off
constexpr auto kTypes = std::to_array<UvEpromType>({
    {.name = "2732",       .package = k24, .sizeBytes = 0x1000,   .control = kOe,  .vpp = k25V, .programTime = milliseconds(10),  .plan = k50ms,     .isNmos = kCmos},
    {.name = "27C32",      .package = k24, .sizeBytes = 0x1000,   .control = kOe,  .vpp = k25V, .programTime = milliseconds(10),  .plan = k50ms,     .isNmos = kCmos},
    {.name = "2732A",      .package = k24, .sizeBytes = 0x1000,   .control = kOe,  .vpp = k21V, .programTime = milliseconds(10),  .plan = k50ms,     .isNmos = kCmos},
    {.name = "2732B",      .package = k24, .sizeBytes = 0x1000,   .control = kOe,  .vpp = k12V, .programTime = milliseconds(10),  .plan = k1msOver3, .isNmos = kCmos},
    {.name = "2764",       .package = k28, .sizeBytes = 0x2000,   .control = kPgm, .vpp = k21V, .programTime = milliseconds(1),   .plan = k1msOver4, .isNmos = kNmos},
    {.name = "27128",      .package = k28, .sizeBytes = 0x4000,   .control = kPgm, .vpp = k21V, .programTime = milliseconds(1),   .plan = k1msOver4, .isNmos = kNmos},
    {.name = "27C64",      .package = k28, .sizeBytes = 0x2000,   .control = kPgm, .vpp = k12V, .programTime = microseconds(100), .plan = k100us,    .isNmos = kCmos},
    {.name = "27C128",     .package = k28, .sizeBytes = 0x4000,   .control = kPgm, .vpp = k12V, .programTime = microseconds(100), .plan = k100us,    .isNmos = kCmos},
    {.name = "27256",      .package = k28, .sizeBytes = 0x8000,   .control = kCe,  .vpp = k12V, .programTime = milliseconds(1),   .plan = k1msOver3, .isNmos = kNmos},
    {.name = "27C256",     .package = k28, .sizeBytes = 0x8000,   .control = kCe,  .vpp = k12V, .programTime = microseconds(100), .plan = k100us,    .isNmos = kCmos},
    {.name = "27C259",     .package = k28, .sizeBytes = 0x8000,   .control = kCe,  .vpp = k12V, .programTime = microseconds(100), .plan = k100us,    .isNmos = kCmos},
    {.name = "27C512",     .package = k28, .sizeBytes = 0x10000,  .control = kOe,  .vpp = k12V, .programTime = microseconds(100), .plan = k100us,    .isNmos = kCmos},
    {.name = "27C1001",    .package = k32, .sizeBytes = 0x20000,  .control = kPgm, .vpp = k12V, .programTime = microseconds(100), .plan = k100us,    .isNmos = kCmos},
    {.name = "27C010",     .package = k32, .sizeBytes = 0x20000,  .control = kPgm, .vpp = k12V, .programTime = microseconds(100), .plan = k100us,    .isNmos = kCmos},
    {.name = "27C2001",    .package = k32, .sizeBytes = 0x40000,  .control = kPgm, .vpp = k12V, .programTime = microseconds(100), .plan = k100us,    .isNmos = kCmos},
    {.name = "27C020",     .package = k32, .sizeBytes = 0x40000,  .control = kPgm, .vpp = k12V, .programTime = microseconds(100), .plan = k100us,    .isNmos = kCmos},
    {.name = "27C4001",    .package = k32, .sizeBytes = 0x80000,  .control = kCe,  .vpp = k12V, .programTime = microseconds(100), .plan = k100us,    .isNmos = kCmos},
    {.name = "27C040",     .package = k32, .sizeBytes = 0x80000,  .control = kCe,  .vpp = k12V, .programTime = microseconds(100), .plan = k100us,    .isNmos = kCmos},
    {.name = "27C801",     .package = k32, .sizeBytes = 0x100000, .control = kOe,  .vpp = k12V, .programTime = microseconds(50),  .plan = k50us,     .isNmos = kCmos},
    {.name = "27C080",     .package = k32, .sizeBytes = 0x100000, .control = kOe,  .vpp = k12V, .programTime = microseconds(50),  .plan = k50us,     .isNmos = kCmos},
    {.name = "27C080-OTP", .package = k32, .sizeBytes = 0x100000, .control = kOe,  .vpp = k12V, .programTime = microseconds(50),  .plan = k50us,     .isNmos = kCmos, .isOneTime = true},
});

// JEDEC pinouts, address pins from A0, data pins from D0.
//                                                    A0  A1  A2 A3 A4 A5 A6 A7  A8  A9 A10 A11 A12 ...
constexpr std::array<std::uint8_t, 12> kAddress24{     8,  7,  6, 5, 4, 3, 2, 1, 23, 22, 19, 21};
constexpr std::array<std::uint8_t, 16> kAddress28{    10,  9,  8, 7, 6, 5, 4, 3, 25, 24, 21, 23,  2, 26, 27, 1};
constexpr std::array<std::uint8_t, 20> kAddress32{    12, 11, 10, 9, 8, 7, 6, 5, 27, 26, 23, 25,  4, 28, 29, 3, 2, 30, 31, 1};
constexpr std::array<std::uint8_t, 8>  kData24{        9, 10, 11, 13, 14, 15, 16, 17};
constexpr std::array<std::uint8_t, 8>  kData28{       11, 12, 13, 15, 16, 17, 18, 19};
constexpr std::array<std::uint8_t, 8>  kData32{       13, 14, 15, 17, 18, 19, 20, 21};
// clang-format on

UvEpromPinout packagePins(Package package) {
  if (package == Package::dip24) {
    return {.address = kAddress24, .data = kData24, .ce = pin(18), .oe = pin(20), .vcc = pin(24)};
  }
  if (package == Package::dip28) {
    return {.address = kAddress28, .data = kData28, .ce = pin(20), .oe = pin(22), .vcc = pin(28)};
  }
  return {.address = kAddress32, .data = kData32, .ce = pin(22), .oe = pin(24), .vcc = pin(32)};
}

std::size_t addressPinCount(std::uint32_t sizeBytes) {
  std::size_t count = 0;
  while ((1U << count) < sizeBytes) ++count;
  return count;
}

}  // namespace

std::span<const UvEpromType> uvEpromTypes() { return kTypes; }

UvEpromPinout pinoutOf(const UvEpromType& type) {
  UvEpromPinout pins = packagePins(type.package);
  pins.address = pins.address.first(addressPinCount(type.sizeBytes));
  pins.vpp = type.control == ProgramControl::vppOnOe ? pins.oe : pin(1);
  if (type.control == ProgramControl::pgmPin) {
    pins.pgm = type.package == Package::dip28 ? pin(27) : pin(31);
  }
  return pins;
}

}  // namespace kestrel::sim
