#pragma once

#include <string>
#include <vector>

namespace kestrel {

enum class MessageIcon { None, Information, Question, Exclamation, Critical };
enum class MessageButtons { Ok, OkCancel };
enum class Answer { Ok, Cancel };

/// A line below a question.
struct Fact {
  std::string text;
  bool isWarning = false;  ///< it does not fit
};

struct MessageBox {
  std::string text;
  std::string title = {};
  MessageIcon icon = MessageIcon::None;
  MessageButtons buttons = MessageButtons::Ok;
  Answer defaultAnswer = Answer::Ok;
  std::vector<Fact> facts = {};  ///< what the answer depends on
  bool cannotSucceed = false;    ///< an OK that was given beforehand does not count
};

/// The questions that a command asks the person at the screen. Each call returns when it is
/// answered; an answer that cannot be had counts as Cancel.
class Dialogs {
 public:
  virtual ~Dialogs() = default;

  virtual Answer messageBox(const MessageBox& box) = 0;

  /// The text typed; empty when cancelled.
  [[nodiscard]] virtual std::string inputBox(const std::string& prompt,
                                             const std::string& title) = 0;

  /// The path chosen; empty when cancelled. The filter has the form "text|pattern".
  [[nodiscard]] virtual std::string openFile(const std::string& title,
                                             const std::string& filter) = 0;
  [[nodiscard]] virtual std::string saveFile(const std::string& title,
                                             const std::string& filter) = 0;

  /// The About box, modal.
  virtual void about() = 0;
};

}  // namespace kestrel
