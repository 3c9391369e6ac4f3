#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/findings.h"
#include "simulator/package.h"
#include "simulator/pins.h"

namespace kestrel::sim {

/// What stands on a chip's own package pins from `now` on.
struct PinInput {
  PinLevels high = 0;     ///< bit p-1: pin p is high; a pin at VPP is high too
  PinLevels vppPins = 0;  ///< the pins that are tied to the programming supply
  int vppMillivolts = 0;  ///< level of that supply
  Nanoseconds now = 0;    ///< never goes back
};

/// What a chip does to its own package pins. Everything outside `driven` is high impedance.
struct PinOutput {
  PinLevels driven = 0;            ///< the pins it drives
  PinLevels high = 0;              ///< levels of the driven pins; 0 elsewhere
  PinLevels openDrain = 0;         ///< driven pins that only pull low: no conflict with a driver
  Nanoseconds changesAt = kNever;  ///< when this may change by itself, the levels staying
};

/// What can be set on a chip beside its contents. What a part does not have is empty.
struct ChipSettings {
  std::optional<Nanoseconds> writeCycle{};   ///< how long it writes a page
  std::optional<bool> softwareProtection{};  ///< the part refuses loads without a command
  std::optional<bool> writeProtected{};      ///< it writes nothing, whatever its pins say
  std::optional<bool> writeNeverEnds{};      ///< it stays busy with whatever it begins to write
  /// A serial memory acknowledges so many more bytes, then none; empty = it never tires.
  std::optional<std::uint64_t> acknowledgeLimit{};
};

/// One chip: its cells, its state, and what its pins do. It knows no socket, board or file.
///
/// A chip acts on levels and time alone. `evaluate` is called with the new levels whenever a level
/// on the board changed (not always one of this chip's), and now and then with the old ones when
/// time has passed; between two calls the levels of the earlier one stood. So pulses, load windows
/// and write cycles are settled lazily: first what the time since the last call brought about, then
/// the edges. The data pins in `PinInput` show what the rest of the board puts on them, without the
/// chip's own drive; a chip that listens to a line which it pulls low itself adds that.
/// A chip is in the socket unpowered first: before the first call all levels were low.
class Chip {
 public:
  virtual ~Chip() = default;

  virtual PinOutput evaluate(const PinInput& pins, Findings& findings) = 0;

  [[nodiscard]] const std::string& typeName() const { return typeName_; }
  [[nodiscard]] Package package() const { return package_; }

  /// The cells, address 0 first.
  [[nodiscard]] std::span<const std::uint8_t> contents() const { return cells_; }

  /// Puts contents into the cells past all pins, as a chip programmed elsewhere would come.
  /// Throws std::invalid_argument unless the size is the chip's.
  void load(std::span<const std::uint8_t> contents);

  /// All cells to FFh, as delivered.
  void blank();

  /// A byte that takes new contents in the `pulses`th pulse (or write cycle) that would write any
  /// other; without a number it never does. Throws std::out_of_range past the end.
  void fitWeakCell(std::uint32_t address, std::optional<std::uint32_t> pulses = {});

  /// Makes it a good one again.
  void mendCell(std::uint32_t address);
  /// The addresses of the weak cells, in the order in which they were fitted.
  [[nodiscard]] std::vector<std::uint32_t> weakCells() const;

  /// A voltage has destroyed it.
  [[nodiscard]] virtual bool isDamaged() const { return false; }

  /// True for windowed parts: the lamp erases them, and nothing else does.
  [[nodiscard]] virtual bool isUvErasable() const { return false; }

  /// The programming voltage that the part wants, in millivolts; 0 if it needs none.
  [[nodiscard]] virtual int wantedVppMillivolts() const { return 0; }

  [[nodiscard]] virtual ChipSettings settings() const { return {}; }

  /// Whether pulses are held against the data sheet, see PulseJudge; not at first.
  void judgePulses(bool on) { judgesPulses_ = on; }

  /// Takes over what the part has. Empty fields leave a setting as it is, but for the acknowledge
  /// limit, which they lift.
  virtual void apply(const ChipSettings& /*settings*/) {}

 protected:
  Chip(std::string_view typeName, Package package, std::size_t sizeBytes);
  Chip(const Chip&) = default;
  Chip& operator=(const Chip&) = default;

  [[nodiscard]] std::uint8_t cell(std::uint32_t address) const { return cells_[address]; }

  /// One pulse that would give any cell these contents; true if this one has them now.
  bool setCell(std::uint32_t address, std::uint8_t value);

  [[nodiscard]] bool judgesPulses() const { return judgesPulses_; }

  /// Called after the cells were replaced from outside: drop what was under way.
  virtual void contentsReplaced() {}

 private:
  struct WeakCell {
    std::uint32_t address = 0;
    std::optional<std::uint32_t> pulses;  // empty: never
    std::uint32_t received = 0;           // since it took contents last
  };

  [[nodiscard]] bool refusesPulse(std::uint32_t address);

  std::string typeName_;
  Package package_;
  std::vector<std::uint8_t> cells_;
  std::vector<WeakCell> weakCells_;
  bool judgesPulses_ = false;
};

}  // namespace kestrel::sim
