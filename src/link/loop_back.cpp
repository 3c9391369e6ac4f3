#include "link/loop_back.h"

#include <algorithm>
#include <array>
#include <bit>

namespace kestrel::link {
namespace {

// No latch of any model is open, and the control line of pin 1 is low.
constexpr std::uint8_t kNoLatch = 0x05;

// All control lines high: bits 0, 1 and 3 are inverted at the connector (IEEE 1284).
constexpr std::uint8_t kControlHigh = 0x04;
constexpr std::uint8_t kStatusBits = 0xF8;
constexpr std::uint8_t kBusy = 0x80;  // inverted as well

struct Output {
  const char* name;
  std::uint8_t dataBit;     // 0: a control line
  std::uint8_t controlBit;  // 0: a data line
  std::uint8_t statusBit;
};

// clang-format off
constexpr std::array<Output, 12> kOutputs{{
    {"data 0 (pin 2)",     0x01, 0,    0x08},
    {"data 1 (pin 3)",     0x02, 0,    0x10},
    {"data 2 (pin 4)",     0x04, 0,    0x20},
    {"data 3 (pin 5)",     0x08, 0,    0x40},
    {"data 4 (pin 6)",     0x10, 0,    0x80},
    {"data 5 (pin 7)",     0x20, 0,    0x08},
    {"data 6 (pin 8)",     0x40, 0,    0x10},
    {"data 7 (pin 9)",     0x80, 0,    0x20},
    {"control 0 (pin 1)",  0,    0x01, 0x08},
    {"control 1 (pin 14)", 0,    0x02, 0x10},
    {"control 2 (pin 16)", 0,    0x04, 0x20},
    {"control 3 (pin 17)", 0,    0x08, 0x40},
}};

constexpr std::array<const char*, 5> kInputs{
    "status 3 (pin 15)", "status 4 (pin 13)", "status 5 (pin 12)", "status 6 (pin 10)",
    "status 7 (pin 11)"};
// clang-format on

const char* inputName(unsigned statusBit) {
  return kInputs.at(static_cast<std::size_t>(std::countr_zero(statusBit)) - 3);
}

/// The status lines that are low.
unsigned lowInputs(LinkConnection& connection, std::uint8_t data, std::uint8_t control) {
  constexpr std::int64_t kSettleCounts = 400;  // 10 us: a pull-up of 50 kohm and 100 pF
  connection.writeData(data);
  connection.writeControl(control);
  connection.waitCounts(kSettleCounts);
  return ~(connection.readStatus() ^ kBusy) & kStatusBits;
}

// Pin 1 is low all the time, so that status 3 tells nothing.
bool findPlug(LinkConnection& connection) {
  constexpr unsigned kTelling = kStatusBits & ~0x08U;
  if ((lowInputs(connection, 0xFF, kNoLatch) & kTelling) != 0) return false;
  return std::ranges::any_of(kOutputs, [&](const Output& output) {
    if (output.dataBit == 0 || (output.statusBit & kTelling) == 0) return false;
    const auto data = static_cast<std::uint8_t>(~output.dataBit);
    return (lowInputs(connection, data, kNoLatch) & kTelling) == output.statusBit;
  });
}

std::string faultOf(const Output& output, unsigned low, unsigned lowAtRest) {
  if ((lowAtRest & output.statusBit) != 0) return "the input is low all the time";
  if ((low & output.statusBit) == 0) return "the input does not follow";
  const unsigned others = low & ~lowAtRest & ~static_cast<unsigned>(output.statusBit);
  if (others != 0) return std::string("moves ") + inputName(others) + " too";
  return {};
}

LineResult testLine(LinkConnection& connection, const Output& output, unsigned lowAtRest) {
  const auto data = static_cast<std::uint8_t>(~output.dataBit);
  const auto control = static_cast<std::uint8_t>(kControlHigh ^ output.controlBit);
  return {.output = output.name,
          .input = inputName(output.statusBit),
          .fault = faultOf(output, lowInputs(connection, data, control), lowAtRest)};
}

}  // namespace

LinesResult testLines(LinkConnection& connection) {
  LinesResult result{.hasPlug = findPlug(connection), .lines = {}};
  if (!result.hasPlug) return result;
  const unsigned lowAtRest = lowInputs(connection, 0xFF, kControlHigh);
  for (const Output& output : kOutputs) {
    result.lines.push_back(testLine(connection, output, lowAtRest));
  }
  connection.writeControl(kNoLatch);
  connection.finish();
  return result;
}

SpeedResult measureSpeed(LinkConnection& connection) {
  using Clock = std::chrono::steady_clock;
  constexpr int kRoundTrips = 200;
  constexpr int kBytes = 50'000;  // half a second at 1 Mbaud
  SpeedResult result;
  connection.writeControl(kNoLatch);
  connection.finish();
  std::chrono::nanoseconds sum{};
  for (int i = 0; i < kRoundTrips; ++i) {
    const Clock::time_point start = Clock::now();
    static_cast<void>(connection.readStatus());
    const std::chrono::nanoseconds trip = Clock::now() - start;
    result.longestRoundTrip = std::max(result.longestRoundTrip, trip);
    sum += trip;
  }
  result.meanRoundTrip = sum / kRoundTrips;
  const Clock::time_point start = Clock::now();
  for (int i = 0; i < kBytes / 2; ++i) connection.writeData(static_cast<std::uint8_t>(i & 0x3F));
  connection.finish();
  const std::chrono::duration<double> seconds = Clock::now() - start;
  result.bytesPerSecond = kBytes / seconds.count();
  return result;
}

}  // namespace kestrel::link
