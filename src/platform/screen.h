#pragma once

#include <cstddef>

namespace kestrel {

/// What a running command may ask of the screen. Commands run to completion on the one thread, so
/// the screen comes alive only when they call it.
class Screen {
 public:
  virtual ~Screen() = default;

  /// Shows what has changed at once (a lamp).
  virtual void repaint() = 0;

  /// A moment at which no timing hangs on the program: shows what has changed, at most 60 times a
  /// second, and takes a press of Stop. Cheap when called too often.
  virtual void turn() = 0;

  /// The number of the program's open windows, the main window included.
  [[nodiscard]] virtual std::size_t openWindows() const = 0;

  /// Closes the window opened last; never called for the main window.
  virtual void closeLastWindow() = 0;

  /// Closes the main window, which ends the program.
  virtual void closeMainWindow() = 0;
};

}  // namespace kestrel
