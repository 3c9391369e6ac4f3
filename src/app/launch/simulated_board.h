#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/launch/option_values.h"
#include "platform/stop_switch.h"
#include "simulator/bench.h"

namespace kestrel::launch {

/// The simulated machine as the options describe it: one board, its chip and its faults.
class SimulatedBoard {
 public:
  /// `defaultChip` is the type in the socket when no --chip is given; blank. Throws UsageError for
  /// options that do not fit the chip, FileError for a chip file that cannot be read.
  /// A pipe as its file is waited for until the switch is thrown (OperationStopped).
  SimulatedBoard(const LaunchOptions& options, std::string_view defaultChip,
                 const StopSwitch* stop = nullptr);

  [[nodiscard]] sim::Bench& bench() { return bench_; }
  [[nodiscard]] std::uint16_t base() const { return base_; }
  [[nodiscard]] sim::Board& board() { return *bench_.board(base_); }

  /// Connects a board of the model at the base in place of the present one. The chip moves over;
  /// the board is switched on anew.
  void plug(sim::Model model, std::uint16_t base);

  /// True once the board is not the one of the options any more.
  [[nodiscard]] bool wasExchanged() const { return exchanged_; }

  /// What ends the wait at a pipe; nullptr if none.
  [[nodiscard]] const StopSwitch* stop() const { return stop_; }

  /// The file that the chip's contents are written back to; empty if none.
  [[nodiscard]] const std::filesystem::path& chipFile() const { return chipFile_; }

  /// The chip lies beside the board from the first to the second: the hardware test, and so the
  /// start-up, wants the socket empty, since it reads the bus with the chip enabled. Without effect
  /// when it is there already.
  void takeChipOut();
  void putChipBack();

  /// The next chip of a series: the one in the socket goes away, its file written, and a new one of
  /// the same type comes in. With --chip TYPE=FILE chip N is kept in FILE.N, loaded when it is
  /// there and of the right size. Throws FileError.
  void changeChip(std::size_t number);

  /// Start-up is over: from here findings are kept and the accesses to an unplugging count.
  void startUpDone();

  /// Tries whether the chip's file could be written, before work that would be lost with it: work
  /// that changes the chip, or any where the file is still to be made. Throws FileError.
  void tryChipFile(bool isChanged) const;

  /// Writes the contents of the --chip back to its file, if they changed or there is no such file
  /// yet. Throws FileError.
  void saveChip();

  /// The chip's contents are kept elsewhere, or not at all: its file stays as it is.
  void forgetChipFile() { chipFile_.clear(); }

  /// The chip of the options is about to leave the socket for good: its file is written a last
  /// time and what comes next has none. Throws FileError; the file is let go even so.
  void releaseChip();

 private:
  void insertChip(const LaunchOptions& options, std::string_view defaultChip);
  void readChipFile(sim::Chip& chip);
  void fitFault(const Fault& fault);

  sim::Bench bench_;
  std::uint16_t base_;
  const StopSwitch* stop_;
  bool exchanged_ = false;
  std::unique_ptr<sim::Chip> beside_;
  std::filesystem::path chipFile_;
  std::filesystem::path seriesFile_;        ///< with it the names of a series begin
  std::vector<std::uint8_t> fileContents_;  ///< as last read or written; empty: no file yet
  std::vector<std::uint64_t> unplugAfter_;
  std::vector<std::uint32_t> weakCells_;  ///< of every chip of a series
};

/// The simulated chip that fits a device of the catalogue ("Eprom 27C256": "27C256"); empty when
/// the simulator has none.
[[nodiscard]] std::string chipTypeForDevice(std::string_view deviceName);

}  // namespace kestrel::launch
