#include "app/state/operation_buttons.h"

#include <algorithm>

namespace kestrel {
namespace {

const char* textOf(bool enabled) { return enabled ? "True" : "False"; }

}  // namespace

OperationButtons::OperationButtons(ProgrammerState& state, Controls& controls)
    : state_(state),
      buttons_{&controls.Program_button, &controls.Verify_button, &controls.Read_button,
               &controls.Display_button} {}

void OperationButtons::setEnabled(Button& button, bool enabled) {
  const auto* const found = std::ranges::find(buttons_, &button);
  if (!locked_ || found == buttons_.end()) {
    button.setEnabled(enabled);
  } else {
    state_.SavedButtonState[static_cast<std::size_t>(found - buttons_.begin())] = textOf(enabled);
  }
}

void OperationButtons::lock() {
  if (locked_) return;
  locked_ = true;
  for (std::size_t i = 0; i < buttons_.size(); ++i) {
    state_.SavedButtonState[i] = textOf(buttons_[i]->enabled());
    buttons_[i]->setEnabled(false);
  }
}

void OperationButtons::unlock() {
  if (!locked_) return;
  locked_ = false;
  for (std::size_t i = 0; i < buttons_.size(); ++i) {
    buttons_[i]->setEnabled(state_.SavedButtonState[i] == textOf(true));
  }
}

}  // namespace kestrel
