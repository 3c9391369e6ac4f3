#pragma once

#include <QAbstractButton>
#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QRadioButton>
#include <QWidget>
#include <functional>
#include <string_view>
#include <utility>

#include "app/form/command_runner.h"
#include "app/state/controls.h"
#include "app/window/mirror.h"
#include "app/window/texts.h"

namespace kestrel::window {

/// Joins one widget to one control: the widget takes the control's name as its object name, shows
/// what the control is, and reports its presses through the runner.
class Binder {
 public:
  Binder(Mirror& mirror, form::CommandRunner& runner) : mirror_(mirror), runner_(runner) {}

  [[nodiscard]] Mirror& mirror() const { return mirror_; }
  [[nodiscard]] form::CommandRunner& runner() const { return runner_; }

  /// `listener` hears that a button or menu entry is about to be pressed.
  void onPress(std::function<void(const Control&)> listener) { press_ = std::move(listener); }

  /// Asked before a button or menu entry is pressed; false keeps it from being.
  void onGuard(std::function<bool(const Control&)> guard) { guard_ = std::move(guard); }

  /// `listener` hears how each press of a button or menu entry ended.
  void onPressed(std::function<void(const Control&, const CommandResult&)> listener) {
    pressed_ = std::move(listener);
  }

  /// Presses the control as its button does.
  void press(Button& control) const;

  /// Does another thing to a control, as a person does.
  void use(const Control& control, const std::function<void()>& event) const;

  /// Name, enabled and visible: what every control has.
  void common(const Control& control, QWidget& widget) const;

  void button(Button& control, QAbstractButton& widget) const;
  /// `mayPress` is asked before each press; without it every press counts.
  void action(Button& control, QAction& action, std::function<bool()> mayPress = {}) const;
  void check(CheckBox& control, QCheckBox& widget) const;
  void option(OptionButton& control, QRadioButton& widget) const;
  void caption(const Control& control, QLabel& widget) const;
  void text(const TextBox& control, QLabel& widget) const;

 private:
  Mirror& mirror_;
  form::CommandRunner& runner_;
  std::function<bool(const Control&)> guard_;
  std::function<void(const Control&)> press_;
  std::function<void(const Control&, const CommandResult&)> pressed_;
};

}  // namespace kestrel::window
