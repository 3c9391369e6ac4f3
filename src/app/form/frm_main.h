#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "app/form/command_runner.h"
#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "platform/machine.h"

namespace kestrel::form {

struct Units;

/// The main window's logic without a toolkit. It owns the one ProgrammerState and the Controls for
/// the life of the process, puts the procedures together and routes every control's event to its
/// handler. A front end presses them through the one command runner.
///
/// Life: constructed, Form_Load once, events through the controls, Form_Unload once.
class frmMain {
 public:
  explicit frmMain(const Machine& machine);
  ~frmMain();
  frmMain(const frmMain&) = delete;
  frmMain& operator=(const frmMain&) = delete;

  [[nodiscard]] Controls& controls();
  [[nodiscard]] ProgrammerState& state();

  /// The start-up sequence: window place, tables, board, catalogue, idle board.
  void Form_Load();

  /// The shut-down sequence: idle board, other windows closed, window place saved. Does not throw.
  void Form_Unload();

  /// Loads an image that was imported from the file; `found` says so in the log.
  CommandResult loadImage(const std::string& name, std::vector<std::uint8_t> image,
                          const std::string& found);

  /// Whether the display shows the code buffer.
  [[nodiscard]] bool isCodeOnView() const;

  /// Takes over the code buffer with bytes of it changed, or one changed byte; so many bytes are
  /// the image now. `done` goes to the log.
  CommandResult changeCode(std::vector<std::uint8_t> buffer, std::int32_t length,
                           const std::string& done);
  CommandResult putCodeByte(std::size_t address, std::uint8_t value, std::int32_t length);

  /// Writes the contents of an exported file.
  CommandResult exportImage(const std::string& name, std::span<const std::uint8_t> contents);

  /// Whether a board is there to be used: one that was found or forced, at a port that is held.
  [[nodiscard]] bool hasBoard() const;

  /// What makes the port in force one without a board: kestrel6.ini, or a port chosen since. Empty
  /// when nothing does; a board may be missing all the same (hasBoard).
  [[nodiscard]] std::string whyNoBoard() const;

  /// What was found at the real ports and what helps, one line for each finding; empty on a
  /// simulated board.
  [[nodiscard]] std::vector<std::string> diagnosis() const;

  /// The local date and time, for example 2026-11-21T17:05:09.
  [[nodiscard]] std::string dateAndTime() const;

  /// True when a programming voltage could not be switched off.
  [[nodiscard]] bool mayVoltageBeOn() const;

  /// Takes voltages and supply off the socket while a chip is changed. The next command gives them
  /// back and waits for the supply to come up, as every operation on a chip does.
  CommandResult releaseSocket();

  /// Reads the whole chip as Read does and gives what it holds; the code buffer stays as it was.
  CommandResult readAside(std::vector<std::uint8_t>& chip);

  /// Every press of a control goes through it.
  [[nodiscard]] CommandRunner& runner();

 private:
  std::unique_ptr<Units> units_;
};

}  // namespace kestrel::form
