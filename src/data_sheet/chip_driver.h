#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "app/state/programmer_state.h"
#include "devices/data_sheets.h"

namespace kestrel::data_sheet {

/// Every wait for a chip ends after so many times the longest time that its data sheet gives.
inline constexpr int kTimeOutFactor = 3;

/// Whether programming, which makes zeros, can still make the wanted byte of the one seen.
[[nodiscard]] constexpr bool canBecome(std::uint8_t seen, std::uint8_t wanted) {
  return (seen & wanted) == wanted;
}

/// What came of it.
struct Outcome {
  enum class Kind {
    Done,
    ByteFailed,     ///< the byte at the address does not take its value
    NoAcknowledge,  ///< a serial chip does not answer
    Refused,        ///< not begun, for a reason
    Failed,         ///< anything else that ended it, for a reason
  };
  Kind kind = Kind::Done;
  std::uint32_t address = 0;
  std::uint8_t wanted = 0;
  std::uint8_t seen = 0;
  std::string reason = {};  ///< half a sentence, such as "the chip is still busy after 30 ms"

  [[nodiscard]] bool isDone() const { return kind == Kind::Done; }

  [[nodiscard]] static Outcome byteFailed(std::uint32_t address, std::uint8_t wanted,
                                          std::uint8_t seen) {
    return {.kind = Kind::ByteFailed, .address = address, .wanted = wanted, .seen = seen};
  }
  [[nodiscard]] static Outcome noAcknowledge() { return {.kind = Kind::NoAcknowledge}; }
  [[nodiscard]] static Outcome refused(std::string reason) {
    return {.kind = Kind::Refused, .reason = std::move(reason)};
  }
  [[nodiscard]] static Outcome failed(std::string reason) {
    return {.kind = Kind::Failed, .reason = std::move(reason)};
  }
};

/// How far an operation has come. Not called inside a pulse or a page load; it may repaint.
class Progress {
 public:
  virtual ~Progress() = default;

  /// So many steps are to come.
  virtual void expect(std::int64_t steps) = 0;
  virtual void advance(std::int64_t steps = 1) = 0;
};

/// The selected chip, and what the person has chosen for it.
struct ChipChoice {
  const devices::DataSheet& sheet;
  std::uint32_t sizeBytes = 0;
  int vppVolts = 0;  ///< 12 for 12.5
  Protection protection = Protection::Keep;
  bool takesAnyCode = false;  ///< a chip whose code is another one is worked on too
};

/// One kind of chip by its data sheet, for the length of one command.
///
/// Contract: begin() takes the board over for reading and gives the chip its supply, end() gives it
/// back at rest; program() and erase() do both themselves. A programming voltage is off when a call
/// returns, and also when it throws (Stop, a port that has gone). Nothing here reports anything.
class ChipDriver {
 public:
  virtual ~ChipDriver() = default;

  virtual void begin() = 0;
  virtual void end() = 0;

  /// The chip's bytes from an address on, as many as `bytes` has room for; past the end of the chip
  /// it begins anew.
  [[nodiscard]] virtual Outcome read(std::uint32_t first, std::span<std::uint8_t> bytes) = 0;

  /// The image into the chip, from address 0 on; each byte has been read back when it is done.
  [[nodiscard]] virtual Outcome program(std::span<const std::uint8_t> image,
                                        Progress& progress) = 0;

  /// Every byte FFh.
  [[nodiscard]] virtual Outcome erase(Progress& progress) = 0;

  /// What the chip says that it is; nothing for a kind that has no code. A call of its own, without
  /// begin() and end().
  [[nodiscard]] virtual std::optional<devices::ChipCodes> codes() { return std::nullopt; }
};

}  // namespace kestrel::data_sheet
