#pragma once

#include <functional>

#include "app/form/frm_main.h"
#include "app/window/binder.h"

namespace kestrel::window {

class NoticeBar;

/// Decides which notices stand: no board, a port without one, bytes that are all the same, a device
/// that the classic procedures do not do right.
class Notices final {
 public:
  /// All outlive it.
  Notices(form::frmMain& form, const Binder& binder, NoticeBar& bar);

  /// The program works on real ports; `simulate` changes over to a simulated board.
  void offerSimulation(std::function<void()> simulate);

  /// Looks anew, behind a command and after the start.
  void look();

  /// A command on the chip ended so.
  void commandEnded(const CommandResult& result);

 private:
  void lookAtBoard();
  void lookAtLimit();
  [[nodiscard]] QString whatWasFound() const;

  form::frmMain& form_;
  const Binder& binder_;
  NoticeBar& bar_;
  std::function<void()> simulate_;
};

}  // namespace kestrel::window
