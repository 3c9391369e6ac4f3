#pragma once

#include <array>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::waveform {

/// What stands on up to 64 lines.
struct Levels {
  std::uint64_t bits = 0;  ///< 0 and 1, the last line in bit 0
  bool areOther = false;   ///< all the same, and neither: see kFloating and kUnknown

  bool operator==(const Levels&) const = default;
};
inline constexpr Levels kFloating{.bits = 0, .areOther = true};
inline constexpr Levels kUnknown{.bits = ~std::uint64_t{0}, .areOther = true};

/// Writes a value change dump (IEEE 1364-2005, clause 18). Lines are declared and put into groups
/// first; then changes follow in the order of time. What is written again unchanged leaves no
/// trace.
///
/// A vector is written line by line ("latch0[7]"): wave viewers put the lines together again, and
/// the decoders of logic analysers (libsigrok 0.5) stop at a vector.
///
/// A change costs no allocation, and little time: what four lines can have to say stands ready, and
/// is put together in a buffer, which goes to the stream when writeOut() is called, or when full.
class VcdWriter {
 public:
  /// A tick of the file's time.
  static constexpr std::int64_t kTickNs = 100;

  using Line = std::size_t;
  using Group = std::size_t;

  /// The stream outlives the writer.
  explicit VcdWriter(std::ostream& out);

  /// Before the first change: a line; its name has no blank.
  Line declare(std::string_view name);
  /// The lines of a vector, the highest first.
  std::vector<Line> declareVector(std::string_view name, std::size_t width);
  /// A number, such as a voltage.
  Line declareReal(std::string_view name);

  /// At most 64 lines that are set together, in the order in which their changes are written.
  Group group(std::span<const Line> lines);

  /// Ends the declarations; `device` is named in the comment.
  void begin(std::string_view device);

  /// The time of the following changes, in ticks from the beginning; never earlier than the last.
  void at(std::int64_t tick) { now_ = tick; }

  void set(Group group, const Levels& levels) {
    Lines& lines = groups_[group];
    std::uint64_t changed = (lines.levels.bits ^ levels.bits) | lines.unset;
    if (lines.levels.areOther != levels.areOther) changed = ~std::uint64_t{0};
    if ((changed & lines.all) != 0) change(lines, changed & lines.all, levels);
  }
  void setReal(Line line, double value) {
    if (declared_[line].number != value) changeReal(declared_[line], value);
  }

  /// Gives a buffer that is worth it to the stream: where time does not matter.
  void writeOut() {
    if (used_ >= kBlock) flush();
  }

  /// Writes what is left. The stream tells whether all could be written.
  void finish();

  [[nodiscard]] std::uint64_t bytes() const { return bytes_; }

 private:
  static constexpr std::size_t kBlock = 65'536;
  static constexpr std::size_t kBuffer = 16 * kBlock;

  struct Declared {
    std::string name;
    std::string code;
    bool isReal = false;
    std::optional<double> number;
  };
  /// What is written when some of four lines change, in their order.
  struct Text {
    std::array<char, 16> text{};  // a line has its level, a code of one or two, a line's end
    std::size_t size = 0;
  };
  /// By whether their levels are others than 0 and 1, by the lines that change, by the levels.
  using FourLines = std::array<Text, std::size_t{2} * 16 * 16>;
  struct Lines {
    Levels levels;
    std::uint64_t all = 0;         // a bit for each line
    std::uint64_t unset = 0;       // never written yet
    std::vector<FourLines> fours;  // that with bit 0 first
  };

  [[nodiscard]] FourLines fourLines(std::span<const Line> lines) const;
  void change(Lines& lines, std::uint64_t changed, const Levels& levels);
  void changeReal(Declared& real, double value);
  void writeTime();
  void makeRoom(std::size_t bytes) {
    if (buffer_.size() - used_ < bytes) flush();
  }
  void append(std::string_view text);
  void flush();

  std::ostream& out_;
  std::vector<Declared> declared_;
  std::vector<Lines> groups_;
  std::vector<char> buffer_;
  std::size_t used_ = 0;
  std::int64_t now_ = 0;
  std::int64_t written_ = -1;
  std::int64_t upper_ = 0;            // of the written time: its last four digits are 0000
  std::array<char, 16> upperText_{};  // "#" and its digits but for those
  std::size_t upperSize_ = 0;
  std::uint64_t bytes_ = 0;
};

}  // namespace kestrel::waveform
