#include "cli/commands.h"

#include <algorithm>
#include <array>

#include "app/launch/program.h"
#include "cli/exit_status.h"
#include "cli/machine_commands.h"
#include "cli/session.h"
#include "cli/silent_parts.h"
#include "devices/remarks.h"

namespace kestrel::cli {
namespace {

void detect(Session& s) {
  s.press(s.controls().TestHardware_button, {});
  if (!s.isReady()) throw EarlyEnd(kNoBoard, "detect: no board answers at any port");
}

void read(Session& s) {
  s.press(s.controls().Read_button, s.unless("read", "not offered for this device"));
  if (s.arguments().show) s.view().printPage(s.controls().BufferDisplay);
}

void blank(Session& s) {
  s.press(s.controls().Blank_button,
          s.unless("blank", s.remark(devices::whyNoBlankCheck) + "; read --show looks into it"));
}

void verify(Session& s) {
  s.press(s.controls().Verify_button,
          s.unless("verify", "there is nothing to compare with; add -i FILE"));
}

void program(Session& s) {
  s.press(s.controls().Program_button,
          s.unless("program", "there is nothing to program; add -i FILE"));
}

void erase(Session& s) {
  s.press(s.controls().EraseFlash_button, s.unless("erase", s.remark(devices::whyNoErase)));
}

void goToPage(Session& s, std::int32_t page) {
  RangeControl& bar = s.controls().VScroll1;
  if (page > bar.maximum()) {
    throw EarlyEnd(kBadUsage, "--page " + std::to_string(page) + ": the pages are 0 to " +
                                  std::to_string(bar.maximum()));
  }
  s.use([&bar, page] { bar.setValue(page); });
}

void display(Session& s) {
  const CommandResult result =
      s.tryToPress(s.controls().Display_button, s.unless("display", "not offered for this device"));
  if (result.ending == Ending::NoRoutine) {
    throw EarlyEnd(kFailed, "display: " + result.reason + "; read --show looks into it");
  }
  s.endUnlessDone(result);
  if (s.arguments().page) goToPage(s, *s.arguments().page);
  s.view().printPage(s.controls().BufferDisplay);
}

// The only thing that can fail here is the file.
void saveSetup(Session& s) {
  s.answerWith(s.arguments().setupName);
  try {
    s.press(s.controls().SaveSetup.at(s.arguments().saveSlot - 1), {});
  } catch (const EarlyEnd& end) {
    throw EarlyEnd(end.status() == kFailed ? kBadUsage : end.status(), end.what());
  }
}

// -i counts for read, blank check and erase as well: the length of the file decides how much of a
// chip they cover.
// What stands on the form can be set for every command there, also where only a setup would keep
// it.
// clang-format off
constexpr std::array<Command, 11> kCommands{{
    {.name = "devices", .help = "list the devices, or tell about the one of -d", .options = "-d --names", .press = nullptr, .alone = listDevices},
    {.name = "detect", .help = "run the hardware test", .options = "-d -i --pad-ff -o --setup --speed --vpp --lane --blank-check --verify", .press = detect, .needsBoard = false, .testsHardware = true},
    {.name = "read", .help = "read the device into the buffer; -o saves it", .options = "-d -i --pad-ff -o --setup --speed --vpp --lane --blank-check --verify --show", .press = read},
    {.name = "blank", .help = "check that the device is erased", .options = "-d -i --pad-ff -o --setup --speed --vpp --lane --blank-check --verify", .press = blank},
    {.name = "verify", .help = "compare the device with -i FILE", .options = "-d -i --pad-ff -o --setup --speed --vpp --lane --blank-check --verify", .press = verify},
    {.name = "program", .help = "program -i FILE into the device", .options = "-d -i --pad-ff -o --setup --speed --vpp --lane --blank-check --verify", .press = program},
    {.name = "erase", .help = "erase the chip (EEPROMs)", .options = "-d -i --pad-ff -o --setup --speed --vpp --lane --blank-check --verify", .press = erase},
    {.name = "display", .help = "print a page of the chip", .options = "-d -i --pad-ff -o --setup --speed --vpp --lane --blank-check --verify --page", .press = display},
    {.name = "setups", .help = "list the four setups of this folder", .options = "", .press = nullptr, .alone = listSetups},
    {.name = "save-setup", .help = "save the options as setup N (1 to 4)", .options = "-d -i --pad-ff -o --setup --speed --vpp --lane --blank-check --verify", .press = saveSetup, .needsBoard = false},
    {.name = "safe", .help = "switch the board's voltages off", .options = "", .press = nullptr, .alone = switchOff},
}};
// clang-format on

int runAtForm(const Arguments& a, const Command& command) {
  const DeviceCatalogue catalogue;
  const DeviceCatalogue::Device* const device = a.device ? &catalogue.find(*a.device) : nullptr;
  StopSwitch stop;
  const ports::SignalStop signals(stop);
  ConsoleView view(a.quiet);
  ConsoleDialogs dialogs(view, a.yes, signals.descriptor());
  NoSound sounds;
  NoSettings settings;
  NoHelp help;
  const std::string chip =
      device != nullptr ? launch::chipTypeForDevice(device->name) : std::string();
  launch::LaunchedProgram program(
      a.launch, chip,
      {.sounds = sounds, .settings = settings, .help = help, .dialogs = dialogs, .screen = view},
      stop);
  form::frmMain& form = program.form();
  view.mirror(form.controls());
  Session session({.form = form,
                   .view = view,
                   .dialogs = dialogs,
                   .signals = signals,
                   .simulated = program.simulated(),
                   .waves = program.waves(),
                   .device = device,
                   .arguments = a});
  return session.run(command);
}

}  // namespace

std::span<const Command> commands() { return kCommands; }

const Command& commandNamed(std::string_view name) {
  return *std::ranges::find_if(kCommands, [&](const Command& c) { return c.name == name; });
}

int runCommand(const Arguments& arguments) {
  const Command& command = commandNamed(arguments.command);
  return command.alone != nullptr ? command.alone(arguments) : runAtForm(arguments, command);
}

}  // namespace kestrel::cli
