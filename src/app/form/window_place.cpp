#include "app/form/window_place.h"

#include <string>

#include "app/state/text_format.h"

namespace kestrel::form {
namespace {

constexpr const char* kSection = "Settings";
constexpr std::int32_t kDefaultPlace = 100;
constexpr std::int32_t kDefaultHeight = 6500;

std::int32_t stored(const SettingsStore& settings, const char* key, std::int32_t fallback) {
  const auto text = settings.value(kSection, key);
  return text ? clampedInt32(leadingNumber(*text)) : fallback;
}

}  // namespace

void restoreWindowPlace(Pane& window, const SettingsStore& settings) {
  window.setLeft(stored(settings, "MainLeft", kDefaultPlace));
  window.setTop(stored(settings, "MainTop", kDefaultPlace));
  window.setWidth(stored(settings, "MainWidth", kDefaultPlace));
  window.setHeight(stored(settings, "MainHeight", kDefaultHeight));
}

void saveWindowPlace(const Pane& window, SettingsStore& settings) {
  if (window.minimised()) return;
  settings.setValue(kSection, "MainLeft", std::to_string(window.left()));
  settings.setValue(kSection, "MainTop", std::to_string(window.top()));
  settings.setValue(kSection, "MainWidth", std::to_string(window.width()));
  settings.setValue(kSection, "MainHeight", std::to_string(window.height()));
}

}  // namespace kestrel::form
