#include "cli/commands.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <optional>
#include <vector>

#include "app/launch/program.h"
#include "cli/compare_command.h"
#include "cli/exit_status.h"
#include "cli/image_commands.h"
#include "cli/link_command.h"
#include "cli/machine_commands.h"
#include "cli/program_several.h"
#include "cli/save_project.h"
#include "cli/session.h"
#include "cli/silent_parts.h"
#include "devices/remarks.h"
#include "platform/polled_io.h"

namespace kestrel::cli {
namespace {

void detect(Session& s) {
  s.press(s.controls().TestHardware_button, {});
  if (!s.form().hasBoard()) throw EarlyEnd(kNoBoard, "detect: no board answers at any port");
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
  if (s.arguments().several) return programSeveral(s);
  s.press(s.controls().Program_button,
          s.unless("program", "there is nothing to program; add -i FILE"));
}

// The form asks before it programs and not before it erases, where a click is seen to be one.
void erase(Session& s) {
  Button& button = s.controls().EraseFlash_button;
  if (button.enabled()) s.confirm("Erase the Chip?");
  s.press(button, s.unless("erase", s.remark(devices::whyNoErase)));
}

void flashId(Session& s) {
  s.press(s.controls().menuFlashShowCodeID,
          s.unless("flash-id", "this device has no maker and device code to ask for"));
}

void eraseBuffer(Session& s) {
  s.press(s.controls().Erase_button,
          "erase-buffer: nothing is in the buffer; -i FILE gives it its length");
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

// A file that cannot be used is bad usage, as that of -i and -o is.
void saveSetup(Session& s) {
  s.answerWith(s.arguments().setupName);
  const CommandResult result =
      s.tryToPress(s.controls().SaveSetup.at(s.arguments().saveSlot - 1), {});
  try {
    s.endUnlessDone(result);
  } catch (const EarlyEnd& end) {
    if (!result.isFileError || end.status() != kFailed) throw;
    throw EarlyEnd(kBadUsage, end.what());
  }
}

// -i counts for read, blank check and erase as well: the length of the file decides how much of a
// chip they cover.
// What stands on the form can be set for every command there, also where only a setup would keep
// it.
// clang-format off
constexpr const char* kAtForm = "-d -i --pad-ff -o --setup --speed --vpp --lane --blank-check --verify --format --save-format --at --range --project --json --select-port --force-model";
constexpr const char* kSaved = "-d -i --pad-ff -o --setup --speed --vpp --lane --blank-check --verify --format --save-format --at --range --project --json --select-port";
constexpr const char* kBeforeTest = "-d -i --pad-ff -o --setup --speed --vpp --lane --blank-check --verify --format --save-format --at --range --project --json";

constexpr std::array<Command, 17> kCommands{{
    {.name = "devices", .help = "list the devices, or tell about the one of -d", .options = "-d --names --json", .alone = listDevices},
    {.name = "detect", .help = "run the hardware test", .options = kBeforeTest, .press = detect, .needsBoard = false, .testsHardware = true},
    {.name = "read", .help = "read the device into the buffer; -o saves it", .options = kAtForm, .ownOption = "--show --repeat", .press = read, .worksOnMemory = true},
    {.name = "blank", .help = "check that the device is erased", .options = kAtForm, .press = blank, .worksOnMemory = true},
    {.name = "verify", .help = "compare the device with -i FILE", .options = kAtForm, .press = verify, .worksOnMemory = true},
    {.name = "program", .help = "program -i FILE into the device", .options = kAtForm, .ownOption = "--check --backup --several --serial --report --protect --force", .press = program, .worksOnMemory = true, .writesChip = true},
    {.name = "erase", .help = "erase the chip (EEPROMs)", .options = kAtForm, .ownOption = "--backup --protect --force", .press = erase, .writesChip = true},
    {.name = "display", .help = "print a page of the chip", .options = kAtForm, .ownOption = "--page", .press = display, .worksOnMemory = true},
    {.name = "flash-id", .help = "ask a flash chip for its maker and device code", .options = kAtForm, .press = flashId},
    {.name = "erase-buffer", .help = "fill the buffer with FFh; -o saves it", .options = kSaved, .press = eraseBuffer, .needsBoard = false},
    {.name = "compare", .help = "tell all differences of the chip from -i FILE", .options = kAtForm, .press = compareChip, .worksOnMemory = true},
    {.name = "image", .help = "tell about a file or change it; no board needed", .options = "-i -o --format --save-format --at --range --json", .alone = changeImage, .words = "OPERATION"},
    {.name = "save-project", .help = "write the options given into a project FILE", .options = kAtForm, .ownOption = "--check --backup --several --serial --report --protect --force --repeat", .alone = saveProject, .words = "FILE"},
    {.name = "setups", .help = "list the four setups of this folder", .options = "--json", .alone = listSetups},
    {.name = "save-setup", .help = "save the options as setup N (1 to 4)", .options = kSaved, .press = saveSetup, .needsBoard = false},
    {.name = "link-test", .help = "check the adapter of --port BASE=link:DEVICE", .options = "", .alone = testLink},
    {.name = "safe", .help = "switch the board's voltages off", .options = "", .alone = switchOff},
}};
// clang-format on

int runAtForm(const Arguments& a, const std::vector<const Command*>& commands, StopSwitch& stop) {
  const work::DeviceCatalogue catalogue;
  const Algorithms algorithms = a.launch.algorithms.value_or(Algorithms::Classic);
  const work::DeviceCatalogue::Device* const device =
      a.device ? &catalogue.find(*a.device, algorithms) : nullptr;
  const ports::SignalStop signals(stop);
  std::optional<JsonReport> json;
  if (a.json) json.emplace(std::cout);
  JsonReport* const report = json ? &*json : nullptr;
  std::ostream& out = a.json || a.saveFile == kStandardOutput ? std::cerr : std::cout;
  ConsoleView view(a.quiet, out, report);
  ConsoleDialogs dialogs(view, a.yes, signals.descriptor());
  NoSound sounds;
  NoSettings settings;
  NoHelp help;
  const std::string chip =
      device != nullptr ? launch::chipTypeForDevice(device->name) : std::string();
  std::optional<launch::LaunchedProgram> launched;
  const launch::FrontEnd frontEnd{
      .sounds = sounds, .settings = settings, .help = help, .dialogs = dialogs, .screen = view};
  if (!launch::launchProgram(launched, a.launch, chip, frontEnd, stop)) return signals.exitStatus();
  launch::LaunchedProgram& program = *launched;
  form::frmMain& form = program.form();
  view.mirror(form.controls());
  Session session({.form = form,
                   .view = view,
                   .dialogs = dialogs,
                   .signals = signals,
                   .stop = stop,
                   .simulated = program.simulated(),
                   .waves = program.waves(),
                   .trace = program.trace(),
                   .device = device,
                   .arguments = a,
                   .out = out,
                   .json = report});
  return session.run(commands);
}

}  // namespace

std::span<const Command> commands() { return kCommands; }

const Command& commandNamed(std::string_view name) {
  return *std::ranges::find_if(kCommands, [&](const Command& c) { return c.name == name; });
}

int runCommand(const Arguments& arguments, StopSwitch& stop) {
  const Command& first = commandNamed(arguments.commands.front());
  if (first.alone != nullptr) return first.alone(arguments);
  std::vector<const Command*> commands;
  for (const std::string& name : arguments.commands) commands.push_back(&commandNamed(name));
  return runAtForm(arguments, commands, stop);
}

}  // namespace kestrel::cli
