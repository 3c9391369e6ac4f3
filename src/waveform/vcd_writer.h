#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::waveform {

/// Writes a value change dump (IEEE 1364-2005, clause 18). Signals are declared first, then changes
/// in the order of time; a value that is written again unchanged leaves no trace.
///
/// A signal of several lines is written line by line ("latch0[7]"): wave viewers put the lines
/// together again, and the decoders of logic analysers (libsigrok 0.5) stop at a vector.
class VcdWriter {
 public:
  /// A tick of the file's time.
  static constexpr std::int64_t kTickNs = 100;

  using Signal = std::size_t;

  /// The stream outlives the writer.
  explicit VcdWriter(std::ostream& out) : out_(out) {}

  /// A signal of so many lines; its name has no blank. Before the first change.
  Signal declare(std::string_view name, int width = 1);
  /// A signal that is a number, such as a voltage.
  Signal declareReal(std::string_view name);

  /// Ends the declarations; `device` is named in the comment.
  void begin(std::string_view device);

  /// The time of the following changes, in ticks from the beginning; never earlier than the last.
  void at(std::int64_t tick) { now_ = tick; }

  /// Digits 0, 1, x or z, the highest first, as many as the signal has lines.
  void set(Signal signal, std::string_view digits);
  void set(Signal signal, unsigned value);
  void setReal(Signal signal, double value);

  /// Writes what is left. The stream tells whether all could be written.
  void finish();

  [[nodiscard]] std::uint64_t bytes() const { return bytes_; }

 private:
  struct Declared {
    std::string name;
    int width = 1;                   // 0: a real
    std::vector<std::string> codes;  // a line each, the highest first
    std::string value;
  };

  Signal add(std::string_view name, int width);
  void change(Declared& signal, std::string_view value);
  void writeTime();
  void write(std::string_view text);

  std::ostream& out_;
  std::vector<Declared> signals_;
  std::size_t lines_ = 0;
  std::string pending_;
  std::int64_t now_ = 0;
  std::int64_t written_ = -1;
  std::uint64_t bytes_ = 0;
};

}  // namespace kestrel::waveform
