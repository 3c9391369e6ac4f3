#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "app/state/programmer_state.h"
#include "hardware/ports/port_choice.h"
#include "platform/waits.h"
#include "simulator/model.h"

namespace kestrel::launch {

/// An option that cannot be used as it was given. The text names the option, what is wrong with it
/// and what would be right.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// --chip TYPE[=FILE]: a chip for the simulated socket; an empty file name keeps it in memory only.
struct ChipChoice {
  std::string type;
  std::filesystem::path file;
};

/// --fault: what is wrong with the simulated board or its chip.
struct Fault {
  enum class Kind { WeakCell, StuckDataLine, Unplug, EmptySocket };
  Kind kind = Kind::EmptySocket;
  std::uint64_t value = 0;  ///< address, data line 0 to 7, or port accesses after start-up
};

/// The options that choose the machine; the window and the command line take the same.
struct LaunchOptions {
  bool simulate = false;
  std::optional<sim::Model> model;        ///< of the simulated board; model 5 if not given
  std::optional<std::uint16_t> lpt;       ///< its port; 378h if not given
  std::optional<ChipChoice> chip;         ///< what is in its socket
  std::optional<int> boardVppMillivolts;  ///< set by hand on a simulated model 4
  std::vector<Fault> faults;
  std::vector<ports::PortChoice> ports;
  std::filesystem::path home;   ///< empty: the user's configuration folder
  std::filesystem::path trace;  ///< empty: no trace
  std::filesystem::path waves;  ///< empty: no wave file from the start
  bool mayRecord = false;       ///< a wave file may be begun later
  std::int64_t countNs = kDefaultCountNs;
  std::optional<Algorithms> algorithms;  ///< classic if not given
};

// One function an option. Each throws UsageError for a text that is no value of its option.

[[nodiscard]] sim::Model parseModel(std::string_view text);
[[nodiscard]] std::uint16_t parseLpt(std::string_view text);
[[nodiscard]] ChipChoice parseChip(std::string_view text);
[[nodiscard]] int parseBoardVpp(std::string_view text);
[[nodiscard]] Fault parseFault(std::string_view text);
[[nodiscard]] ports::PortChoice parsePort(std::string_view text);
[[nodiscard]] std::int64_t parseCountNs(std::string_view text);
[[nodiscard]] Algorithms parseAlgorithms(std::string_view text);

}  // namespace kestrel::launch
