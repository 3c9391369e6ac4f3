#include "app/state/buttons.h"

namespace kestrel {

bool Button::press() {
  if (!enabled()) return false;
  if (handler_) handler_();
  return true;
}

bool CheckBox::press() {
  if (!enabled()) return false;
  setValue(isTicked() ? 0 : 1);
  return true;
}

OptionButton::OptionButton(ControlRegistry& registry, std::string name, OptionGroup& group)
    : Control(registry, std::move(name)), group_(group) {
  group.members_.push_back(this);
}

void OptionButton::setValue(bool on) {
  if (on == value_) return;
  if (!on) {
    if (group_.whenAllOff_ == OptionGroup::WhenAllOff::Allowed) assign(value_, false);
    return;
  }
  group_.clearOthers(*this);
  assign(value_, true);
  if (handler_) handler_();
}

bool OptionButton::press() {
  if (!enabled()) return false;
  setValue(true);
  return true;
}

void OptionGroup::clearOthers(const OptionButton& chosen) {
  for (OptionButton* const member : members_) {
    if (member != &chosen) member->assign(member->value_, false);
  }
}

}  // namespace kestrel
