#pragma once

#include <QEvent>
#include <QObject>
#include <QPointer>
#include <QWidget>
#include <functional>
#include <vector>

namespace kestrel::window {

/// Holds user input off while a command runs: it is dropped, so that no key or click is done later
/// on what has changed meanwhile. Let through are Esc, which stops the command, and the widgets
/// that are named here. Everything else that the event loop does (painting, timers, moves of the
/// pointer) goes on.
class HeldInput final : public QObject {
 public:
  using Takes = std::function<bool(const QEvent&)>;

  HeldInput();

  /// What Esc runs.
  void onEscape(std::function<void()> stop) { stop_ = std::move(stop); }

  /// The widget, with all that is in it, gets its input at once; with `takes` only what that wants.
  void letThrough(QWidget& widget, Takes takes = {});

  void hold(bool on);
  [[nodiscard]] bool isHolding() const { return holding_; }

  /// The command is over: drops what was pressed since the last turn of the event loop. A command
  /// that gave it no turn was over at once, and nothing was pressed meanwhile.
  void dropPending();

  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  struct Live {
    QPointer<QWidget> widget;
    Takes takes;
  };

  [[nodiscard]] bool isLetThrough(QObject* receiver, const QEvent& event) const;

  bool holding_ = false;
  bool wasHolding_ = false;  // at least once since the command began
  std::function<void()> stop_;
  std::vector<Live> live_;
};

}  // namespace kestrel::window
