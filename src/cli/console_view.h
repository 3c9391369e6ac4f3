#pragma once

#include <chrono>
#include <optional>
#include <ostream>
#include <string_view>

#include "app/state/controls.h"
#include "cli/json_report.h"
#include "cli/progress_line.h"
#include "cli/terminal.h"
#include "platform/screen.h"

namespace kestrel::cli {

/// What a terminal shows of the form: the log and pages on a stream, line by line as logged, and
/// the progress bar on standard error while that is a terminal, as far as it is taken at once.
class ConsoleView final : public ControlListener, public Screen {
 public:
  /// `out` is standard output, or standard error where the other is for a file or for JSON. Both
  /// outlive this.
  ConsoleView(bool quiet, std::ostream& out, JsonReport* json);
  ~ConsoleView() override;
  ConsoleView(const ConsoleView&) = delete;
  ConsoleView& operator=(const ConsoleView&) = delete;

  /// Mirrors these controls from now on, for as long as they live.
  void mirror(Controls& controls);

  /// Takes the progress bar off the screen: before anything else is written there.
  void clearProgress();

  /// Prints the page that stands in a text box of lines.
  void printPage(const TextBox& box);

  // ControlListener
  void controlChanged(const Control& control) override;
  void textAppended(const TextBox& box, std::string_view piece) override;

  // Screen: a terminal has no windows to close.
  void repaint() override {}
  void turn() override;
  [[nodiscard]] std::size_t openWindows() const override { return 1; }
  void closeLastWindow() override {}
  void closeMainWindow() override {}

 private:
  std::ostream& out_;
  JsonReport* json_;  // nullptr: none is asked for
  Controls* controls_ = nullptr;
  ProgressLine progress_;
  std::optional<Terminal> terminal_;  // where a bar can be drawn
  std::chrono::steady_clock::time_point drawnAt_{};
  bool quiet_;
  bool isDrawn_ = false;
  bool isDue_ = false;
};

}  // namespace kestrel::cli
