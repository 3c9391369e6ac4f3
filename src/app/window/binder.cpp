#include "app/window/binder.h"

#include <QSignalBlocker>
#include <utility>

#include "app/window/theme.h"

namespace kestrel::window {
namespace {

/// A radio button of a group that may be all clear lets itself be cleared only while it is not
/// exclusive.
void setChecked(QRadioButton& button, bool on) {
  const QSignalBlocker quiet(button);
  button.setAutoExclusive(false);
  button.setChecked(on);
  button.setAutoExclusive(true);
}

}  // namespace

void Binder::press(Button& control) const {
  if (guard_ && control.enabled() && !runner_.isRunning() && !guard_(control)) return;
  if (press_ && !runner_.isRunning()) press_(control);
  const CommandResult result = runner_.press(control);
  if (pressed_) pressed_(control, result);
}

void Binder::use(const Control& control, const std::function<void()>& event) const {
  const CommandResult result = runner_.run(event);
  if (pressed_) pressed_(control, result);
}

void Binder::common(const Control& control, QWidget& widget) const {
  widget.setObjectName(toQString(control.name()));
  mirror_.bind(control, widget, [&control, &widget] {
    widget.setEnabled(control.enabled());
    widget.setVisible(control.visible());
  });
}

void Binder::button(Button& control, QAbstractButton& widget) const {
  common(control, widget);
  mirror_.bind(control, widget, [&control, &widget] {
    widget.setText(toQString(control.caption()));
    setButtonColour(widget, control.colour());
  });
  QObject::connect(&widget, &QAbstractButton::clicked, &widget,
                   [this, &control] { press(control); });
}

void Binder::action(Button& control, QAction& action, std::function<bool()> mayPress) const {
  action.setObjectName(toQString(control.name()));
  mirror_.bind(control, action, [&control, &action] {
    if (!control.caption().empty()) action.setText(toQString(control.caption()));
    action.setEnabled(control.enabled());
    action.setVisible(control.visible());
  });
  QObject::connect(&action, &QAction::triggered, &action,
                   [this, &control, mayPress = std::move(mayPress)] {
                     if (mayPress && !mayPress()) return;
                     press(control);
                   });
}

void Binder::check(CheckBox& control, QCheckBox& widget) const {
  common(control, widget);
  mirror_.bind(control, widget, [&control, &widget] {
    const QSignalBlocker quiet(widget);
    widget.setText(toQString(control.caption()));
    widget.setCheckState(control.value() == 2 ? Qt::PartiallyChecked
                         : control.isTicked() ? Qt::Checked
                                              : Qt::Unchecked);
  });
  QObject::connect(&widget, &QCheckBox::clicked, &widget, [this, &control] {
    use(control, [&control] { control.press(); });
    mirror_.touch(control);
  });
}

void Binder::option(OptionButton& control, QRadioButton& widget) const {
  common(control, widget);
  mirror_.bind(control, widget, [&control, &widget] {
    widget.setText(toQString(control.caption()));
    setChecked(widget, control.value());
  });
  QObject::connect(&widget, &QRadioButton::clicked, &widget, [this, &control] {
    use(control, [&control] { control.press(); });
    mirror_.touch(control);
  });
}

void Binder::caption(const Control& control, QLabel& widget) const {
  common(control, widget);
  mirror_.bind(control, widget,
               [&control, &widget] { widget.setText(toQString(control.caption())); });
}

void Binder::text(const TextBox& control, QLabel& widget) const {
  common(control, widget);
  mirror_.bind(control, widget, [&control, &widget] { widget.setText(toQString(control.text())); });
}

}  // namespace kestrel::window
