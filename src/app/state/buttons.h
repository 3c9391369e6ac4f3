#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "app/state/control.h"

namespace kestrel {

/// A push button, menu entry or tool button: it can be pressed, and its handler runs.
class Button : public Control {
 public:
  using Control::Control;

  void onPress(std::function<void()> handler) { handler_ = std::move(handler); }

  /// Runs the handler; false when the control is disabled and nothing was done.
  bool press();

 private:
  std::function<void()> handler_;
};

/// A tick box: 0 clear, 1 checked, 2 greyed.
class CheckBox : public Control {
 public:
  using Control::Control;

  [[nodiscard]] int value() const { return value_; }
  [[nodiscard]] bool isTicked() const { return value_ == 1; }
  void setValue(int value) { assign(value_, value); }

  /// Changes between clear and checked; false when the control is disabled.
  bool press();

 private:
  int value_ = 0;
};

class OptionGroup;

/// One of a group of buttons of which at most one is on.
class OptionButton : public Control {
 public:
  OptionButton(ControlRegistry& registry, std::string name, OptionGroup& group);

  void onClick(std::function<void()> handler) { handler_ = std::move(handler); }
  [[nodiscard]] bool value() const { return value_; }

  /// Switching a button on that was off first switches the others of its group off, then runs its
  /// click handler; one that is on already stays as it is and runs nothing. Switching it off only
  /// clears it, and not even that in a group that always has one on.
  void setValue(bool on);

  /// Selects the button; false when the control is disabled.
  bool press();

  /// Gives it an earlier value back; nothing runs and the others of its group stay as they are.
  void putBack(bool on) { assign(value_, on); }

 private:
  friend class OptionGroup;

  OptionGroup& group_;
  std::function<void()> handler_;
  bool value_ = false;
};

class OptionGroup {
 public:
  enum class WhenAllOff { Allowed, KeepLast };

  explicit OptionGroup(WhenAllOff whenAllOff) : whenAllOff_(whenAllOff) {}

 private:
  friend class OptionButton;

  void clearOthers(const OptionButton& chosen);

  WhenAllOff whenAllOff_;
  std::vector<OptionButton*> members_;
};

}  // namespace kestrel
