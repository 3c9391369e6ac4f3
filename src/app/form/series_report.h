#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "app/form/chip_series.h"

namespace kestrel::form {

/// The report of a series as a table (CSV, RFC 4180): a line a chip. It is written anew, in one
/// step, after every chip: whatever ends the program, the chips done before are in it. A report
/// that is there already is gone on with.
class SeriesReport {
 public:
  /// Reads what is there and tries whether it can be written. Throws FileError, also for a file
  /// that is no such report.
  explicit SeriesReport(std::filesystem::path file);

  /// The number for the next chip: one more than the last in the table.
  [[nodiscard]] std::size_t nextNumber() const { return rows_.size() + 1; }

  /// `time` is the date and time of day. Throws FileError.
  void add(const SeriesChip& chip, const std::string& device, const std::string& time);

 private:
  void write() const;

  std::filesystem::path file_;
  std::vector<std::string> rows_;
};

/// "Chip 3: good, serial number 102, sum 7A2C", or why it is bad.
[[nodiscard]] std::string textOf(const SeriesChip& chip);

/// How many chips were good and how many bad.
struct SeriesCount {
  std::size_t good = 0;
  std::size_t bad = 0;
  double seconds = 0;  ///< of all together

  void add(const SeriesChip& chip);

  /// "18 good, 2 bad, 12.3 s a chip".
  [[nodiscard]] std::string text() const;
};

}  // namespace kestrel::form
