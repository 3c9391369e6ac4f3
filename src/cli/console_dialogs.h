#pragma once

#include <optional>
#include <string>
#include <utility>

#include "cli/console_view.h"
#include "platform/dialogs.h"

namespace kestrel::cli {

/// Message boxes on standard error, questions at the terminal, and the names that the options
/// answer.
class ConsoleDialogs final : public Dialogs {
 public:
  /// `yes` answers questions with OK. `endDescriptor` becomes readable when a signal asks for the
  /// end; a question is cancelled then. The view outlives this.
  ConsoleDialogs(ConsoleView& view, bool yes, int endDescriptor)
      : view_(view), yes_(yes), endDescriptor_(endDescriptor) {}

  /// What the next file dialog or input box is answered with.
  void answerWith(std::string text) { prepared_ = std::move(text); }

  /// Answers what is still to be asked with OK: it has been asked once for all.
  void answerYes() { yes_ = true; }

  /// A line from standard input, whatever that is; nothing at its end or when a signal asks for the
  /// end of the program.
  [[nodiscard]] std::optional<std::string> readLine() const;

  Answer messageBox(const MessageBox& box) override;
  [[nodiscard]] std::string inputBox(const std::string& prompt, const std::string& title) override;
  [[nodiscard]] std::string openFile(const std::string& title, const std::string& filter) override;
  [[nodiscard]] std::string saveFile(const std::string& title, const std::string& filter) override;
  void about() override {}

 private:
  [[nodiscard]] Answer ask(const MessageBox& box);
  [[nodiscard]] bool isLineComing() const;
  [[nodiscard]] std::string takePrepared() { return std::exchange(prepared_, {}); }

  ConsoleView& view_;
  bool yes_;
  int endDescriptor_;
  std::string prepared_;
};

}  // namespace kestrel::cli
