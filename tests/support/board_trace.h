#pragma once

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace kestrel::test {

/// What a trace of the port says to the board on 378h, worked out from its wiring alone.
struct BoardEvent {
  enum class Kind { Load, Low, High, Spin, Sleep };
  Kind kind{};
  int latch = 0;     ///< Load: 0 to 4
  long value = 0;    ///< Load: the byte; Low, High: the status byte; Spin, Sleep: how long
  bool sda = false;  ///< High: data line 7
};

/// Latch loads are the data that stands when a strobe goes active; `busDelay` is the wait within
/// each load, which is left out.
inline std::vector<BoardEvent> boardEvents(const std::string& trace, int model, long busDelay = 0) {
  using Kind = BoardEvent::Kind;
  constexpr std::array<int, 8> kLatchOfCode{3, 1, -1, -1, 2, 0, -1, 4};
  std::vector<BoardEvent> events;
  long data = 0;
  unsigned control = 0;
  const char* line = trace.c_str();
  for (; *line != '\0'; line = std::strchr(line, '\n') + 1) {
    char* rest = nullptr;
    const char* const number = std::strchr(line, ' ') + 1;
    if (line[0] == 's') {  // "spin 12", "sleep 500"
      const bool isSpin = line[1] == 'p';
      const long length = std::strtol(number, nullptr, 10);
      if (isSpin && length == busDelay) continue;
      events.push_back({.kind = isSpin ? Kind::Spin : Kind::Sleep, .value = length});
      continue;
    }
    const long port = std::strtol(number, &rest, 16);  // "in 379 78", "out 378 5A"
    const long value = std::strtol(rest, nullptr, 16);
    if (line[0] == 'i') {
      const bool isHigh = ((control & 4U) != 0) == (model == 4);
      const bool sda = (value & (model == 4 ? 0x10 : 0x40)) != 0;
      events.push_back({.kind = isHigh ? Kind::High : Kind::Low, .value = value, .sda = sda});
    } else if (port == 0x378) {
      data = value;
    } else {
      control = static_cast<unsigned>(value);
      const unsigned nibble = model == 4 ? control : control ^ 0x0FU;
      const int latch = (nibble & 1U) != 0 ? kLatchOfCode[nibble >> 1U & 7U] : -1;
      if (latch >= 0) events.push_back({.kind = Kind::Load, .latch = latch, .value = data});
    }
  }
  return events;
}

inline std::string hexByte(long value) {
  std::array<char, 20> text{};
  std::snprintf(text.data(), text.size(), "%02lX", value);
  return text.data();
}

/// The events as a short text: "3=86 0=40 spin=20 sleep=5 lo hi".
inline std::string textOf(const std::vector<BoardEvent>& events) {
  std::string text;
  for (const BoardEvent& event : events) {
    const std::array<std::string, 5> pieces{
        std::to_string(event.latch) + "=" + hexByte(event.value), "lo", "hi",
        "spin=" + std::to_string(event.value), "sleep=" + std::to_string(event.value)};
    text += (text.empty() ? "" : " ") + pieces.at(static_cast<std::size_t>(event.kind));
  }
  return text;
}

/// The values loaded into one latch, such as "40 5C".
inline std::string loadsOf(int latch, const std::vector<BoardEvent>& events) {
  std::string text;
  for (const BoardEvent& event : events) {
    if (event.kind != BoardEvent::Kind::Load || event.latch != latch) continue;
    text += (text.empty() ? "" : " ") + hexByte(event.value);
  }
  return text;
}

inline int countOf(BoardEvent::Kind kind, long value, const std::vector<BoardEvent>& events) {
  int count = 0;
  for (const BoardEvent& event : events) count += event.kind == kind && event.value == value;
  return count;
}

/// The two-wire bus of the serial chips, seen by the edges of its lines: SCL is latch 3 bit 7, SDA
/// latch 4 bit 7 while latch 3 bit 6 is 0 and otherwise what the last read of it showed.
///
///   S start, P stop; a byte with its ninth clock: "A0a" acknowledged by the chip, "A0n" not,
///   "5AA" acknowledged by the board, "A0" cut off after eight clocks, "+3" after three
class TwoWireDecoder {
 public:
  std::string decode(const std::vector<BoardEvent>& events) {
    for (const BoardEvent& event : events) {
      if (event.kind == BoardEvent::Kind::High) {
        level_ = event.sda;
        if (scl_ && !bits_.empty() && !bits_.back().driven) bits_.back().level = level_;
      } else if (event.kind == BoardEvent::Kind::Load && event.latch >= 3) {
        (event.latch == 3 ? latch3_ : latch4_) = event.value;
        follow();
      }
    }
    cutOff();
    return text_;
  }

 private:
  struct Bit {
    bool level = false, driven = false;
  };

  void follow() {
    const bool scl = (latch3_ & 0x80) != 0;
    const bool driven = (latch3_ & 0x40) == 0;
    if (driven != driven_) level_ = true;  // released: the pull-up, until it is read
    const bool sda = driven ? (latch4_ & 0x80) != 0 : level_;
    if (scl && !scl_) bits_.push_back({sda, driven});
    if (!scl && scl_ && bits_.size() == 9) giveByte();
    if (scl && scl_ && sda != sda_) {
      if (!bits_.empty()) bits_.pop_back();  // the rise before a start or stop carries no bit
      cutOff();
      put(sda ? "P" : "S");
    }
    scl_ = scl;
    driven_ = driven;
    sda_ = sda;
  }
  void giveByte() {
    const Bit ninth = bits_.back();
    const char* const letters = ninth.driven ? "AN" : "an";
    put(hexOfEight() + letters[ninth.level ? 1 : 0]);
    bits_.clear();
  }
  void cutOff() {
    if (bits_.size() == 8) put(hexOfEight());
    if (!bits_.empty() && bits_.size() != 8) put("+" + std::to_string(bits_.size()));
    bits_.clear();
  }
  [[nodiscard]] std::string hexOfEight() const {
    long byte = 0;
    for (std::size_t i = 0; i < 8; ++i) byte = byte * 2 + (bits_[i].level ? 1 : 0);
    return hexByte(byte);
  }
  void put(const std::string& piece) { text_ += (text_.empty() ? "" : " ") + piece; }

  long latch3_ = 0;  // the board at rest on a serial chip: clock low, data driven low
  long latch4_ = 0;
  bool scl_ = false, driven_ = true, sda_ = false, level_ = true;
  std::vector<Bit> bits_;
  std::string text_;
};

}  // namespace kestrel::test
