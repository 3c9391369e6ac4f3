#pragma once

#include <QFrame>
#include <QString>
#include <functional>
#include <map>
#include <string>
#include <vector>

class QVBoxLayout;

namespace kestrel::window {

/// Something that the person should know, with what can be done about it.
struct Notice {
  struct Action {
    QString caption;
    const char* name;  ///< of its button, for tests and tools
    std::function<void()> act;
  };
  std::string about;  ///< one word; there is one notice about a thing at a time
  QString text;
  std::vector<Action> actions = {};
};

/// Notices in the window, one below the other: nobody has to answer them, and each can be put away.
/// Without any it takes no room.
class NoticeBar final : public QWidget {
 public:
  /// The keyboard goes to `focusHome` when a notice goes that had it.
  NoticeBar(QWidget& focusHome, QWidget* parent);

  /// Shows it in place of the one about the same thing, unless just this was put away.
  void post(const Notice& notice);

  /// What it was about is over: shown anew when it comes again.
  void withdraw(const std::string& about);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  struct Shown {
    QString text;
    QFrame* frame = nullptr;  // nullptr: put away
  };

  void putAway(Shown& shown);
  [[nodiscard]] QFrame* frameOf(const Notice& notice);
  void addCloser(QFrame& frame, const std::string& about);

  QWidget& focusHome_;
  QVBoxLayout* rows_ = nullptr;
  std::map<std::string, Shown> shown_;
};

}  // namespace kestrel::window
