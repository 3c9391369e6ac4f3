#pragma once

#include "platform/clock.h"
#include "platform/dialogs.h"
#include "platform/folders.h"
#include "platform/help_viewer.h"
#include "platform/port_access.h"
#include "platform/port_care.h"
#include "platform/screen.h"
#include "platform/settings_store.h"
#include "platform/sound_player.h"
#include "platform/stop_switch.h"

namespace kestrel {

/// Everything outside the program that the form is put together with. The owner of the parts, a
/// `main` or a test, keeps them alive longer than the form.
struct Machine {
  PortAccess& port;
  Clock& clock;
  SoundPlayer& sounds;
  SettingsStore& settings;
  HelpViewer& help;
  Dialogs& dialogs;
  Screen& screen;
  StopSwitch& stop;
  Folders folders;
  PortCare* care = nullptr;  ///< for real ports
};

}  // namespace kestrel
