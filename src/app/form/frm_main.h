#pragma once

#include <memory>

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "platform/machine.h"

namespace kestrel::form {

/// The main window's logic without a toolkit. It owns the one ProgrammerState and the Controls for
/// the life of the process, puts the procedures together and routes every control's event to its
/// handler through the one command boundary.
///
/// Life: constructed, Form_Load once, events through the controls, Form_Unload once.
class frmMain {
 public:
  /// How the last command that was pressed ended at the boundary. A failure that a procedure
  /// reports itself (a byte that does not program) is a Done here; the state tells it.
  enum class Outcome { Done, RunTimeError, Stopped };

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

  /// True from the press of a control to the end of its handler. A front end keeps user input back
  /// as long, but for Stop.
  [[nodiscard]] bool isRunning() const;

  [[nodiscard]] Outcome lastOutcome() const;

 private:
  struct Units;

  std::unique_ptr<Units> units_;
};

}  // namespace kestrel::form
