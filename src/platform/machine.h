#pragma once

#include "platform/dialogs.h"
#include "platform/folders.h"
#include "platform/help_viewer.h"
#include "platform/port_access.h"
#include "platform/port_service.h"
#include "platform/screen.h"
#include "platform/settings_store.h"
#include "platform/sound_player.h"
#include "platform/stop_switch.h"
#include "platform/time_of_day.h"
#include "platform/waits.h"

namespace kestrel {

/// Everything outside the program that the form is put together with. The owner of the parts keeps
/// them alive longer than the form.
struct Machine {
  PortAccess& port;
  Waits& waits;
  PortService& portService;
  const TimeOfDay& time;
  SoundPlayer& sounds;
  SettingsStore& settings;
  HelpViewer& help;
  Dialogs& dialogs;
  Screen& screen;
  StopSwitch& stop;
  Folders folders;
};

}  // namespace kestrel
