#pragma once

#include <QElapsedTimer>
#include <QLabel>
#include <QTimer>
#include <cstdint>
#include <functional>

#include "app/state/command_kind.h"
#include "app/state/controls.h"
#include "app/state/ending.h"
#include "app/state/programmer_state.h"
#include "app/window/desktop_notice.h"

namespace kestrel::window {

/// One line that shows which command runs and at which address, and afterwards what came of it.
class OutcomeLine final : public QLabel {
 public:
  OutcomeLine(const Controls& controls, const LatchState& latches, const SelectionState& device,
              const BufferState& buffers, std::function<bool()> hasBoard, QWidget* parent);

  /// A click on the address of what failed.
  void onAddress(std::function<void(std::int32_t address)> go) { go_ = std::move(go); }

  /// A click that wants all differences of the chip from the buffer.
  void onCompare(std::function<void()> compare) { compare_ = std::move(compare); }

  /// A control was pressed; the line follows the commands on the chip and leaves the others.
  void begin(const Control& control);
  /// `asked`: milliseconds that questions took.
  void end(const Control& control, const CommandResult& result, qint64 asked);

  /// Something else that came of it.
  void showMessage(const QString& text);

  /// The same, with a link behind it that does something about it.
  void offer(const QString& text, const QString& link, std::function<void()> action);

  /// Milliseconds of the last command, questions not counted.
  [[nodiscard]] qint64 lasted() const { return lasted_; }

 private:
  [[nodiscard]] QString doneText(CommandKind command) const;
  [[nodiscard]] QString crcText() const;
  [[nodiscard]] QString failedText(CommandKind command, const CommandResult& result) const;
  void showRunning();
  void showEnd(CommandKind command, const CommandResult& result);
  void showText(const QString& richText, Colour colour);

  const Controls& controls_;
  const LatchState& latches_;
  const SelectionState& device_;
  const BufferState& buffers_;
  std::function<bool()> hasBoard_;
  std::function<void(std::int32_t)> go_;
  std::function<void()> compare_;
  std::function<void()> offered_;
  DesktopNotice desktop_{*this};
  QString running_;
  QTimer timer_;
  QElapsedTimer clock_;
  qint64 lasted_ = 0;
};

}  // namespace kestrel::window
