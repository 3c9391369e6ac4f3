#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "images/changes.h"
#include "images/ranges.h"
#include "platform/descriptor.h"

namespace kestrel::images {

/// A number of its own for each chip: where it stands, how it is written, how it counts.
struct SerialPlan {
  enum class Form : std::uint8_t { Binary, Ascii };

  std::uint32_t at = 0;
  std::size_t bytes = 4;  ///< binary: 1 to 8; ASCII: digits, or characters of a list's text
  std::uint64_t start = 1;
  std::uint64_t step = 1;
  ByteOrder order = ByteOrder::LittleEndian;  ///< of binary ones
  Form form = Form::Binary;
  std::filesystem::path list = {};                       ///< a text a line in place of counting
  std::filesystem::path counter = "kestrel-serial.txt";  ///< where the next one is kept

  bool operator==(const SerialPlan&) const = default;
};

/// "at=7FF0,bytes=4,start=100,step=1,order=le,form=binary"; list=FILE and counter=FILE name files.
/// The address is hexadecimal, the other numbers decimal. Throws ImageError.
[[nodiscard]] SerialPlan parseSerialPlan(std::string_view text);

/// The plan in full, but for the counter's name.
[[nodiscard]] std::string textOf(const SerialPlan& plan);

/// The numbers' place is in a chip of that size. Throws ImageError.
void checkInside(const SerialPlan& plan, std::size_t chipBytes);

/// How a number stands in the chip. Throws ImageError when it does not fit.
[[nodiscard]] Bytes serialBytes(const SerialPlan& plan, std::string_view number);

/// Gives the numbers out. Where it stands is in a file that is written before a chip gets its
/// number and when that chip has verified; so no number is given twice, whatever ends the program
/// in between. A number whose chip failed is given to the next one; one that a crash left in doubt
/// is given to none.
class SerialCounter {
 public:
  /// Throws ImageError for a counter of another plan, of a later version, or one that another run
  /// is using, and when no number is left or the next one does not fit; FileError.
  explicit SerialCounter(SerialPlan plan);

  /// The number for the next chip. Throws ImageError when there is none left, or none that fits;
  /// FileError when it cannot be noted, and then it is not given.
  [[nodiscard]] std::string take();

  /// The chip has verified: its number is used up.
  void confirm();

  /// The chip is bad and goes away: its number is free again.
  void giveBack();

  /// Of an earlier run that ended in the middle of a chip; empty if there is none.
  [[nodiscard]] const std::string& doubtful() const { return doubtful_; }

  [[nodiscard]] const SerialPlan& plan() const { return plan_; }

 private:
  void lock();
  void load();
  void save() const;
  [[nodiscard]] std::string number() const;

  SerialPlan plan_;
  std::optional<Descriptor> lock_;
  std::vector<std::string> listed_;
  std::uint64_t given_ = 0;  ///< numbers that are used up or in doubt
  bool isOut_ = false;       ///< the one behind them is with a chip
  std::string doubtful_;
};

}  // namespace kestrel::images
