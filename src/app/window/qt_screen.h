#pragma once

#include <QElapsedTimer>
#include <QPointer>
#include <QWidget>
#include <vector>

#include "app/form/command_runner.h"
#include "app/window/held_input.h"
#include "app/window/mirror.h"
#include "platform/screen.h"

namespace kestrel::window {

/// The screen of a running command: repaints and lets the event loop have its turn.
class QtScreen final : public Screen {
 public:
  QtScreen(Mirror& mirror, HeldInput& input);

  /// The main window, and what tells whether a command is running. Both outlive the screen's use.
  void setMainWindow(QWidget& window, const form::CommandRunner& runner) {
    main_ = &window;
    runner_ = &runner;
  }

  /// A further window of the program was opened.
  void opened(QWidget& window);

  void repaint() override;
  void turn() override;
  [[nodiscard]] std::size_t openWindows() const override;
  void closeLastWindow() override;
  void closeMainWindow() override;

 private:
  void giveTurn();

  Mirror& mirror_;
  const form::CommandRunner* runner_ = nullptr;
  HeldInput& input_;
  QElapsedTimer sinceTurn_;
  bool inTurn_ = false;
  QPointer<QWidget> main_;
  std::vector<QPointer<QWidget>> others_;  // in the order in which they were opened
};

}  // namespace kestrel::window
