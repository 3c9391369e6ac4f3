#include "app/state/value_controls.h"

#include <algorithm>

#include "platform/runtime_error.h"

namespace kestrel {

void TextBox::append(std::string_view piece) {
  text_.append(piece);
  if (ControlListener* const heard = listener()) heard->textAppended(*this, piece);
}

RangeControl::RangeControl(ControlRegistry& registry, std::string name, std::int32_t minimum,
                           std::int32_t maximum, std::int32_t value)
    : Control(registry, std::move(name)), minimum_(minimum), maximum_(maximum), value_(value) {}

void RangeControl::setValue(std::int32_t value) {
  const std::int32_t inRange = std::max(minimum_, std::min(value, maximum_));
  if (assign(value_, inRange) && handler_) handler_();
}

void RangeControl::setMaximum(std::int32_t maximum) {
  assign(maximum_, maximum);
  setValue(value_);
}

void RangeControl::putBackMaximum(std::int32_t maximum) {
  assign(maximum_, maximum);
  assign(value_, std::max(minimum_, std::min(value_, maximum_)));
}

void ProgressBar::setValue(std::int32_t value) {
  assign(value_, std::max(0, std::min(value, maximum_)));
}

void ProgressBar::setMaximum(std::int32_t maximum) {
  assign(maximum_, maximum);
  setValue(value_);
}

void DropDownList::addItem(std::string item) {
  items_.push_back(std::move(item));
  changed();
}

void DropDownList::removeFirst() {
  items_.erase(items_.begin());
  changed();
}

void DropDownList::putBack(std::int32_t position, const std::string& text) {
  position_ = position;
  text_ = text;
  changed();
}

void DropDownList::setPosition(std::int32_t position) {
  text_ = position == -1 ? std::string() : at(items_, position);
  position_ = position;
  changed();
  if (inHandler_ || !handler_) return;
  struct Guard {
    bool& flag;
    ~Guard() { flag = false; }
  } const guard{inHandler_ = true};
  handler_();
}

}  // namespace kestrel
