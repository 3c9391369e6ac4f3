#pragma once

#include <QPointer>
#include <QTimer>
#include <functional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "app/state/control.h"

namespace kestrel::window {

/// Keeps the widgets like the controls. A change only marks the control; what a person sees of it
/// is brought up to date by the next refresh, so that a control which changes a thousand times
/// between two looks at the screen costs one update.
class Mirror final : public ControlListener {
 public:
  using Show = std::function<void()>;

  Mirror();

  /// `show` brings a widget up to date; it runs at once, and again after the control has changed,
  /// until the widget is gone.
  void bind(const Control& control, QObject& widget, Show show);

  /// Shows the control again although it has not changed: its widget moved on its own.
  void touch(const Control& control) { controlChanged(control); }

  /// Shows everything that has changed.
  void refresh();

  void controlChanged(const Control& control) override;
  void textAppended(const TextBox& box, std::string_view piece) override;

 private:
  struct Binding {
    QPointer<QObject> widget;
    Show show;
  };
  struct Entry {
    std::vector<Binding> bindings;
    bool dirty = false;
  };

  static void showAll(Entry& entry);

  std::unordered_map<const Control*, Entry> entries_;  // the entries stay where they are
  std::vector<Entry*> dirty_;
  QTimer wake_;  // refreshes from the event loop what no command's turn has shown
};

}  // namespace kestrel::window
