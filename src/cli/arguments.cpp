#include "cli/arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <iostream>
#include <limits>
#include <sstream>
#include <string_view>
#include <vector>

#include "app/launch/machine_options.h"
#include "app/launch/separate_files.h"
#include "app/launch/version.h"
#include "cli/commands.h"
#include "cli/project_options.h"
#include "platform/file_names.h"
#include "platform/polled_io.h"
#include "setups/project_file.h"

namespace kestrel::cli {
namespace {

[[noreturn]] void refuse(std::string_view option, const std::string& text,
                         std::string_view remedy) {
  throw launch::UsageError(std::string(option) + ": \"" + text + "\" " + std::string(remedy));
}

std::int32_t number(std::string_view option, const std::string& text, std::int32_t least,
                    std::int32_t most, std::string_view remedy) {
  std::int32_t value = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc{} || stop != end || value < least || value > most) {
    refuse(option, text, remedy);
  }
  return value;
}

std::size_t slot(std::string_view option, const std::string& text) {
  return static_cast<std::size_t>(number(option, text, 1, 4, "is no setup slot; use 1 to 4"));
}

std::size_t voltageButton(const std::string& text) {
  if (text == "12.5") return 1;
  if (text == "21") return 2;
  if (text == "25") return 3;
  refuse("--vpp", text, "is no programming voltage; use 12.5, 21 or 25");
}

std::size_t laneButton(const std::string& text) {
  if (text == "all") return 0;
  if (text == "odd") return 1;
  if (text == "even") return 2;
  refuse("--lane", text, "is no byte lane; use all, odd or even");
}

std::size_t modelEntry(const std::string& text) {
  return static_cast<std::size_t>(
      number("--force-model", text, 4, 6, "is no board model; use 4, 5 or 6") - 4);
}

std::size_t portButton(const std::string& text) {
  if (text == "378") return 0;
  if (text == "278") return 1;
  if (text == "3BC" || text == "3bc") return 2;
  refuse("--select-port", text, "is no port address; use 378, 278 or 3BC");
}

const std::string& named(std::string_view option, const std::string& text) {
  if (text.empty()) throw launch::UsageError(std::string(option) + " is empty; give it a name");
  return text;
}

/// A file; "-" is the standard stream.
std::string fileName(std::string_view option, const std::string& text, const char* standard) {
  return text == "-" ? standard : named(option, text);
}

/// A name that stays within its line of the setup file.
const std::string& setupName(const std::string& text) {
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' '; };
  if (std::ranges::any_of(text, isControl)) {
    throw launch::UsageError("save-setup: a name is one line of text");
  }
  return text;
}

images::SerialPlan serialPlan(const std::string& text) {
  try {
    return images::parseSerialPlan(text);
  } catch (const images::ImageError& error) {
    throw launch::UsageError(std::string("--serial: ") + error.what());
  }
}

void readProject(Arguments& a, const std::string& file);

constexpr std::int32_t kMostPages = std::numeric_limits<std::int32_t>::max();

/// An option of the work itself. Each command names those that it uses.
struct WorkOption {
  const char* name;
  const char* value;  ///< what stands for the value in the help; empty: a flag
  const char* help;
  void (*set)(Arguments&, const std::string& text);
};

// clang-format off
constexpr std::array<WorkOption, 25> kWorkOptions{{
    {"-d", "NAME", "device: its name, a word of it, or a fitting part",
     [](auto& a, const auto& text) { a.device = named("-d", text); }},
    {"-i", "FILE", "code file to load; -: standard input",
     [](auto& a, const auto& text) { a.codeFile = fileName("-i", text, kStandardInput); }},
    {"-o", "FILE", "file to save the buffer to; -: standard output",
     [](auto& a, const auto& text) { a.saveFile = fileName("-o", text, kStandardOutput); }},
    {"--select-port", "BASE", "use the port 378, 278 or 3BC without asking it",
     [](auto& a, const auto& text) { a.port = portButton(text); }},
    {"--force-model", "4|5|6", "use the board as this model without asking it",
     [](auto& a, const auto& text) { a.model = modelEntry(text); }},
    {"--format", "F", "of -i and -o: auto, binary, ihex, srec, ...",
     [](auto& a, const auto& text) { setFormat(a.image, text); }},
    {"--save-format", "F", "of -o, where it is another",
     [](auto& a, const auto& text) { setSaveFormat(a.image, text); }},
    {"--at", "ADDR", "where the file begins in the chip, hexadecimal",
     [](auto& a, const auto& text) { setAt(a.image, text); }},
    {"--range", "FROM-TO", "take only these addresses, hexadecimal",
     [](auto& a, const auto& text) { setRange(a.image, text); }},
    {"--project", "FILE", "take options from a project",
     [](auto& a, const auto& text) { readProject(a, named("--project", text)); }},
    {"--setup", "N", "load setup slot N (1 to 4)",
     [](auto& a, const auto& text) { a.setup = slot("--setup", text); }},
    {"--speed", "1..20", "program speed",
     [](auto& a, const auto& text) { a.speed = number("--speed", text, 1, 20, "is no program speed; use 1 (slow) to 20 (fast)"); }},
    {"--vpp", "12.5|21|25", "programming voltage",
     [](auto& a, const auto& text) { a.voltage = voltageButton(text); }},
    {"--lane", "all|odd|even", "bytes of the buffer to program and verify",
     [](auto& a, const auto& text) { a.lane = laneButton(text); }},
    {"--blank-check", "", "check that it is blank before programming",
     [](auto& a, const auto&) { a.blankCheck = true; }},
    {"--verify", "", "verify after programming",
     [](auto& a, const auto&) { a.verify = true; }},
    {"--pad-ff", "", "fill what -i FILE does not cover with FFh",
     [](auto& a, const auto&) { a.padFF = true; }},
    {"--page", "N", "with display: page of 256 bytes, from 0",
     [](auto& a, const auto& text) { a.page = number("--page", text, 0, kMostPages, "is no page; use 0 or more"); }},
    {"--show", "", "with read: print the first page of the buffer",
     [](auto& a, const auto&) { a.show = true; }},
    {"--backup", "DIR", "keep what a chip held before it is written",
     [](auto& a, const auto& text) { a.backup = named("--backup", text); }},
    {"--several", "", "with program: one chip after another",
     [](auto& a, const auto&) { a.several = true; }},
    {"--serial", "PLAN", "a number for each chip: at=ADDR,bytes=N,start=S",
     [](auto& a, const auto& text) { a.serial = serialPlan(text); }},
    {"--report", "FILE", "table of the chips of --several (CSV)",
     [](auto& a, const auto& text) { a.report = named("--report", text); }},
    {"--json", "", "one JSON object a line; the log on standard error",
     [](auto& a, const auto&) { a.json = true; }},
    {"--names", "", "with devices: one short name a line, no more",
     [](auto& a, const auto&) { a.names = true; }},
}};
// clang-format on

CLI::Option& addFlag(CLI::App& app, const char* name, const char* help,
                     const std::function<void()>& use) {
  return *app.add_flag_callback(name, use, help);
}

/// CLI11 collects the values of an option into one call.
CLI::Option& addOption(CLI::App& app, const char* name, const char* value, const char* help,
                       const std::function<void(const std::vector<std::string>&)>& use) {
  return *app.add_option_function<std::vector<std::string>>(name, use, help)
              ->option_text(value)
              ->allow_extra_args(false);
}

constexpr const char* kYes = "yes";  // the value of a flag

void addWork(CLI::App& app, Arguments& a) {
  for (const WorkOption& option : kWorkOptions) {
    if (*option.value == '\0') {
      addFlag(app, option.name, option.help, [&] { a.given.emplace_back(option.name, kYes); });
      continue;
    }
    addOption(app, option.name, option.value, option.help, [&](const auto& texts) {
      launch::refuseSecond(option.name, texts);
      a.given.emplace_back(option.name, texts.front());
    });
  }
  app.add_flag("-y,--yes", a.yes, "answer questions with OK");
  app.add_flag("-q,--quiet", a.quiet, "print no log");
}

void addMachine(CLI::App& app, launch::LaunchOptions& launch) {
  for (const launch::MachineOption& option : launch::machineOptions()) {
    const auto use = [&](const auto& texts) { launch::setOption(option, texts, launch); };
    CLI::Option& added =
        *option.value == '\0'
            ? addFlag(app, option.name, option.help, [use] { use(std::vector<std::string>(1)); })
            : addOption(app, option.name, option.value, option.help, use);
    const bool isSimulation = option.group == launch::MachineOption::Group::SimulatedBoard;
    added.group(isSimulation ? "Simulated board" : "Machine");
  }
}

/// Sets what was given. A project comes first: the command line goes before it.
void setWork(Arguments& a) {
  const auto setGiven = [&](const WorkOption& option) {
    if (const std::string* const text = a.textOf(option.name)) option.set(a, *text);
  };
  for (const WorkOption& option : kWorkOptions) {
    if (std::string_view(option.name) == "--project") setGiven(option);
  }
  for (const WorkOption& option : kWorkOptions) {
    if (std::string_view(option.name) != "--project") setGiven(option);
  }
}

/// The option that a key of a project stands for; nullptr for a key that is unknown.
const WorkOption* optionOf(const std::string& key) {
  const auto found = std::ranges::find_if(
      kWorkOptions, [&](const WorkOption& option) { return projectKey(option.name) == key; });
  return found == kWorkOptions.end() ? nullptr : &*found;
}

void setFromProject(Arguments& a, const WorkOption& option, const std::string& file,
                    const std::string& value) {
  if (*option.value != '\0') return option.set(a, inProject(file, option.name, value));
  if (value == kYes) return option.set(a, {});
  if (value == "no") return;
  throw launch::UsageError(file + ": " + projectKey(option.name) + " is \"" + value +
                           "\"; use yes or no");
}

void readProject(Arguments& a, const std::string& file) {
  for (const auto& [key, value] : setups::ProjectFile::read(file).items()) {
    const WorkOption* const option = optionOf(key);
    if (option == nullptr) {
      std::cerr << "kestrel-cli: " << shownName(file) << ": the key " << shownName(key)
                << " is unknown and was passed over\n";
    } else if (a.textOf(option->name) == nullptr) {
      setFromProject(a, *option, file, value);
    }
  }
}

/// Shows what a command wants behind its name.
class HelpFormatter final : public CLI::Formatter {
 public:
  HelpFormatter() {
    label("OPTIONS", "options");
    label("SUBCOMMAND", "COMMAND");
  }
  std::string make_subcommand(const CLI::App* command) const override {
    std::string words = command->get_name();
    for (const CLI::Option* const value : command->get_options()) words += " " + value->get_name();
    std::ostringstream line;
    CLI::detail::format_help(line, words, command->get_description(), get_column_width());
    return line.str();
  }
};

void addCommands(CLI::App& app, Arguments& a) {
  for (const Command& command : commands()) {
    CLI::App* const sub = app.add_subcommand(command.name, command.help);
    sub->group("Commands")->fallthrough()->allow_extras()->set_help_flag();
    sub->callback([&a, name = command.name] { a.commands.emplace_back(name); });
    if (*command.words != '\0') sub->add_option(command.words, a.words)->required();
    if (sub->get_name() != "save-setup") continue;
    sub->add_option_function<std::string>(
           "N", [&a](const auto& text) { a.saveSlot = slot("save-setup", text); }, "slot, 1 to 4")
        ->required();
    sub->add_option_function<std::string>(
           "NAME", [&a](const auto& text) { a.setupName = setupName(text); }, "its name")
        ->required();
  }
}

std::string commandList() {
  std::string list;
  for (const Command& command : commands()) {
    list += (list.empty() ? "" : ", ") + std::string(command.name);
  }
  return list;
}

void refuseExtras(const CLI::App& app, const Arguments& a) {
  const std::vector<std::string> extras = app.remaining(true);
  if (!extras.empty()) {
    const std::string& first = extras.front();
    if (first.starts_with('-'))
      throw launch::UsageError(first + " is no option; see kestrel-cli --help");
    if (!a.commands.empty())
      throw launch::UsageError("\"" + first + "\" is one word too many; see kestrel-cli --help");
    throw launch::UsageError("\"" + first + "\" is no command; use one of " + commandList());
  }
  if (a.commands.empty()) throw launch::UsageError("no command; use one of " + commandList());
}

bool uses(const Command& command, std::string_view option) {
  const std::string words = std::string(" ") + command.options + " " + command.ownOption + " ";
  return words.find(" " + std::string(option) + " ") != std::string::npos;
}

/// "the command display", "the commands read, verify and program".
std::string usersOf(std::string_view option) {
  std::vector<std::string> names;
  for (const Command& command : commands()) {
    if (uses(command, option)) names.emplace_back(command.name);
  }
  std::string list = names.front();
  for (std::size_t i = 1; i < names.size(); ++i) {
    list += (i + 1 == names.size() ? " and " : ", ") + names[i];
  }
  return (names.size() == 1 ? "the command " : "the commands ") + list;
}

/// Several commands in one run are steps at one form.
void refuseMixed(const Arguments& a) {
  if (a.commands.size() < 2) return;
  for (const std::string& name : a.commands) {
    if (commandNamed(name).press != nullptr) continue;
    throw launch::UsageError(name + " stands alone; run kestrel-cli once more for it");
  }
}

void refuseUnused(const CLI::App& app, const Arguments& a) {
  const auto isUsed = [&](const char* option) {
    return std::ranges::any_of(a.commands,
                               [&](const auto& name) { return uses(commandNamed(name), option); });
  };
  for (const WorkOption& option : kWorkOptions) {
    if (app.count(option.name) == 0 || isUsed(option.name)) continue;
    throw launch::UsageError(std::string(option.name) + " is for " + usersOf(option.name) +
                             "; leave it out");
  }
}

void checkFiles(const Arguments& a) {
  const auto named = [](const std::optional<std::string>& file) {
    const bool isStream = file == kStandardInput || file == kStandardOutput;
    return std::filesystem::path(isStream ? "" : file.value_or(""));
  };
  launch::checkSeparate(std::array<launch::FileOption, 5>{{
      {"-i", named(a.codeFile)},
      {"-o", named(a.saveFile)},
      {"--report", a.report.value_or("")},
      {"--trace", a.launch.trace},
      {"--chip", a.launch.chip ? a.launch.chip->file : std::filesystem::path()},
  }});
  if (a.json && a.saveFile == kStandardOutput) {
    throw launch::UsageError("--json and -o - both want standard output; give -o a file");
  }
  if (a.padFF && a.codeFile == kStandardInput) {
    throw launch::UsageError("--pad-ff reads the file of -i twice; give it a file, not -");
  }
}

}  // namespace

const std::string* Arguments::textOf(std::string_view option) const {
  const auto found = std::ranges::find(given, option, [](const auto& pair) { return pair.first; });
  return found == given.end() ? nullptr : &found->second;
}

bool Arguments::runs(std::string_view command) const {
  return std::ranges::find(commands, command) != commands.end();
}

std::optional<Arguments> readArguments(int argc, const char* const* argv) {
  Arguments a;
  CLI::App app("Read and program memory chips on KESTREL-4, -5 and -6 boards.", "kestrel-cli");
  app.formatter(std::make_shared<HelpFormatter>());
  app.set_help_flag("-h,--help", "print this help");
  app.set_version_flag("--version", std::string("kestrel-cli ") + launch::kVersion,
                       "print the version");
  app.allow_extras();
  addWork(app, a);
  addMachine(app, a.launch);
  addCommands(app, a);
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    // The options are the program's, not a command's: one page shows all.
    std::cout << app.get_formatter()->make_help(&app, app.get_name(), CLI::AppFormatMode::Normal);
    return std::nullopt;
  } catch (const CLI::Success& asked) {
    app.exit(asked, std::cout);
    return std::nullopt;
  } catch (const CLI::ArgumentMismatch& error) {
    const std::string text = error.what();
    const std::string option = text.substr(0, text.find(':'));
    const bool isTwice = text.find("received") != std::string::npos;
    throw launch::UsageError(option + (isTwice ? " is given twice; give it once"
                                               : " needs a value; see kestrel-cli --help"));
  } catch (const CLI::ParseError& error) {
    throw launch::UsageError(error.what());
  }
  refuseExtras(app, a);
  refuseMixed(a);
  refuseUnused(app, a);
  setWork(a);
  launch::checkTogether(a.launch);
  checkFiles(a);
  return a;
}

}  // namespace kestrel::cli
