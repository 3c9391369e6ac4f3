#include "app/window/mirror.h"

#include <utility>

#include "app/state/value_controls.h"

namespace kestrel::window {

Mirror::Mirror() {
  wake_.setSingleShot(true);
  wake_.setInterval(0);
  QObject::connect(&wake_, &QTimer::timeout, &wake_, [this] { refresh(); });
}

void Mirror::bind(const Control& control, QObject& widget, Show show) {
  show();
  entries_[&control].bindings.push_back({&widget, std::move(show)});
}

void Mirror::controlChanged(const Control& control) {
  const auto found = entries_.find(&control);
  if (found == entries_.end() || found->second.dirty) return;
  found->second.dirty = true;
  if (dirty_.empty()) wake_.start();
  dirty_.push_back(&found->second);
}

void Mirror::textAppended(const TextBox& box, std::string_view) { controlChanged(box); }

void Mirror::refresh() {
  for (Entry* const entry : std::exchange(dirty_, {})) {
    entry->dirty = false;
    showAll(*entry);
  }
}

void Mirror::showAll(Entry& entry) {
  std::erase_if(entry.bindings, [](const Binding& binding) { return !binding.widget; });
  for (std::size_t i = 0; i < entry.bindings.size(); ++i) {
    // A copy: what is shown may bind a further widget, and the list then moves.
    const Binding binding = entry.bindings[i];
    if (binding.widget) binding.show();
  }
}

}  // namespace kestrel::window
