#include "app/state/control.h"

#include <algorithm>

namespace kestrel {

Control* ControlRegistry::find(std::string_view name) const {
  const auto found = std::ranges::find(controls_, name, &Control::name);
  return found == controls_.end() ? nullptr : *found;
}

Control::Control(ControlRegistry& registry, std::string name)
    : registry_(registry), name_(std::move(name)) {
  registry.add(*this);
}

void Control::changed() const {
  if (ControlListener* const heard = listener()) heard->controlChanged(*this);
}

}  // namespace kestrel
