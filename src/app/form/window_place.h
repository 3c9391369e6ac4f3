#pragma once

#include "app/state/control.h"
#include "platform/settings_store.h"

namespace kestrel::form {

/// The main window's place from the per-user store, in 1/1440 inch; a key that was never saved
/// gives its default, a place off the screen is not corrected.
void restoreWindowPlace(Pane& window, const SettingsStore& settings);

/// Saves the place; nothing is saved while the window is minimised.
void saveWindowPlace(const Pane& window, SettingsStore& settings);

}  // namespace kestrel::form
