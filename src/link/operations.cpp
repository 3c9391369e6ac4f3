#include "link/operations.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "link/protocol.h"

namespace kestrel::link {
namespace {

using Kind = Operation::Kind;

constexpr std::uint8_t kStrobeBit = 0x01;
constexpr std::int64_t kMostShortCounts = 0xFF;
constexpr std::int64_t kMostCounts = 0xFFFF;

// A latch load is made of up to so many operations.
constexpr std::size_t kLookAhead = 5;

// A wait of 100 ms takes two operations of 2 bytes and one of 3 for its rest, a load with a new
// delay 5 bytes.
constexpr std::size_t kMostBytesOfOne = 7;

struct LatchLoad {
  std::uint8_t value = 0;
  std::uint8_t idle = 0;
  std::int64_t delayCounts = 0;
  bool isFast = false;     // strobe and idle alone
  std::size_t length = 0;  // operations that it is made of
};

using Operations = std::span<const Operation>;

bool startsWith(Operations operations, std::initializer_list<Kind> kinds) {
  if (operations.size() < kinds.size()) return false;
  return std::equal(kinds.begin(), kinds.end(), operations.begin(),
                    [](Kind kind, const Operation& operation) { return operation.kind == kind; });
}

bool isStrobeOf(const Operation& strobe, const Operation& idle) {
  return (strobe.value ^ idle.value) == kStrobeBit;
}

// An adapter without a delay of its own makes one of half a microsecond, so a delay that is asked
// for as 0 is none.
std::optional<LatchLoad> fullLoad(Operations o) {
  if (startsWith(o, {Kind::Data, Kind::Control, Kind::Wait, Kind::Control, Kind::Control})) {
    const bool fits = o[2].counts > 0 && o[2].counts <= kMostCounts;
    if (!fits || !isStrobeOf(o[3], o[1]) || o[4].value != o[1].value) return std::nullopt;
    return LatchLoad{
        .value = o[0].value, .idle = o[1].value, .delayCounts = o[2].counts, .length = 5};
  }
  if (startsWith(o, {Kind::Data, Kind::Control, Kind::Control, Kind::Control})) {
    if (!isStrobeOf(o[2], o[1]) || o[3].value != o[1].value) return std::nullopt;
    return LatchLoad{.value = o[0].value, .idle = o[1].value, .length = 4};
  }
  return std::nullopt;
}

std::optional<LatchLoad> fastLoad(Operations o) {
  if (!startsWith(o, {Kind::Data, Kind::Control, Kind::Control})) return std::nullopt;
  if (!isStrobeOf(o[1], o[2])) return std::nullopt;
  return LatchLoad{.value = o[0].value, .idle = o[2].value, .isFast = true, .length = 3};
}

class Writer {
 public:
  Writer(EncodedOperations& result, std::int64_t& sentDelayCounts)
      : result_(result), sentDelayCounts_(sentDelayCounts) {}

  void load(const LatchLoad& load) {
    if (!load.isFast) encodeDelay(load.delayCounts);
    put((load.isFast ? kOpLoadLatchFast : kOpLoadLatch) | load.idle);
    put(load.value);
    result_.waitCounts += load.delayCounts;
  }

  void controlAndRead(std::uint8_t control) {
    put(kOpControlAndRead | control);
    ++result_.reads;
  }

  void single(const Operation& operation) {
    switch (operation.kind) {
      case Kind::Data:
        put(kOpWriteData);
        put(operation.value);
        break;
      case Kind::Control:
        put(kOpWriteControl | operation.value);
        break;
      case Kind::Read:
        put(kOpReadStatus);
        ++result_.reads;
        break;
      case Kind::Wait:
        wait(operation.counts);
        break;
    }
  }

 private:
  void wait(std::int64_t counts) {
    if (counts <= 0) return;
    result_.waitCounts += counts;
    while (counts > kMostCounts) {
      const std::int64_t milliseconds =
          std::min<std::int64_t>(counts / kCountsPerMs, kLongestWaitMs);
      put(kOpWaitMilliseconds);
      put(static_cast<unsigned>(milliseconds));
      counts -= milliseconds * kCountsPerMs;
    }
    if (counts == 0) return;
    if (counts <= kMostShortCounts) {
      put(kOpWaitFewCounts);
      put(static_cast<unsigned>(counts));
    } else {
      put(kOpWaitCounts);
      putWord(counts);
    }
  }

  void encodeDelay(std::int64_t counts) {
    if (counts == sentDelayCounts_) return;
    sentDelayCounts_ = counts;
    put(kOpLoadDelay);
    putWord(counts);
  }

  void put(unsigned value) { result_.bytes.push_back(static_cast<std::uint8_t>(value)); }

  void putWord(std::int64_t value) {
    put(static_cast<unsigned>(value) & 0xFFU);
    put(static_cast<unsigned>(value) >> 8U & 0xFFU);
  }

  EncodedOperations& result_;
  std::int64_t& sentDelayCounts_;
};

// Writes what stands first and says how many operations that were.
std::size_t writeFirst(Operations rest, Writer& writer) {
  if (const auto load = fullLoad(rest)) {
    writer.load(*load);
    return load->length;
  }
  if (const auto load = fastLoad(rest)) {
    writer.load(*load);
    return load->length;
  }
  if (startsWith(rest, {Kind::Control, Kind::Read})) {
    writer.controlAndRead(rest[0].value);
    return 2;
  }
  writer.single(rest[0]);
  return 1;
}

}  // namespace

void OperationEncoder::add(const Operation& operation) {
  ahead_.push_back(operation);
  if (operation.kind == Kind::Read) ++reads_;
  if (ahead_.size() >= kLookAhead) encodeFirst();
}

void OperationEncoder::encodeFirst() {
  Writer writer(encoded_, sentDelayCounts_);
  const auto count = static_cast<std::ptrdiff_t>(writeFirst(ahead_, writer));
  ahead_.erase(ahead_.begin(), ahead_.begin() + count);
}

std::size_t OperationEncoder::sizeWithOneMore() const {
  return encoded_.bytes.size() + (ahead_.size() + 1) * kMostBytesOfOne;
}

EncodedOperations OperationEncoder::take() {
  while (!ahead_.empty()) encodeFirst();
  reads_ = 0;
  return std::exchange(encoded_, {});
}

}  // namespace kestrel::link
