#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "app/form/chip_series.h"
#include "app/state/ending.h"
#include "app/state/programmer_state.h"
#include "images/compare.h"

namespace kestrel::cli {

/// A run as lines of JSON (--json): what begins, every line of the log, progress in percent, the
/// differences, and of each command how it ended.
class JsonReport {
 public:
  /// The stream outlives this.
  explicit JsonReport(std::ostream& out) : out_(out) {}

  void start(const std::vector<std::string>& commands, const std::string& device, bool isSimulated);

  /// From here to its result a command runs.
  void beginCommand();

  /// An entry of the log: "HH:MM:SS>  TEXT".
  void log(std::string_view entry);

  /// Of the running command; written once a percent.
  void progress(std::int32_t value, std::int32_t maximum);

  void difference(const images::Comparison& comparison);
  void chip(const form::SeriesChip& chip, const std::string& device);

  /// How a command ended, and what the form knows of device, sums and addresses then.
  void result(const std::string& command, const CommandResult& result, int status,
              const ProgrammerState& state, double seconds);

 private:
  std::ostream& out_;
  bool isRunning_ = false;
  std::int32_t percent_ = -1;
};

/// The word for an ending, as the schema lists them.
[[nodiscard]] const char* nameOf(Ending ending);

}  // namespace kestrel::cli
