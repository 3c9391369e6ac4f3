#include "cli/arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <functional>
#include <iostream>
#include <sstream>
#include <string_view>
#include <vector>

#include "app/launch/machine_options.h"
#include "app/launch/separate_files.h"
#include "app/launch/version.h"
#include "app/work/project.h"
#include "app/work/work_options.h"
#include "cli/commands.h"
#include "platform/file_names.h"
#include "platform/polled_io.h"

namespace kestrel::cli {
namespace {

using work::WorkOption;
using work::workOptions;

/// A name that stays within its line of the setup file.
const std::string& setupName(const std::string& text) {
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' '; };
  if (std::ranges::any_of(text, isControl)) {
    throw launch::UsageError("save-setup: a name is one line of text");
  }
  return text;
}

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

void addWork(CLI::App& app, Arguments& a) {
  for (const WorkOption& option : workOptions()) {
    if (*option.value == '\0') {
      addFlag(app, option.name, option.help,
              [&] { a.given.emplace_back(option.name, work::kYes); });
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
           "N", [&a](const auto& text) { a.saveSlot = work::setupSlot("save-setup", text); },
           "slot, 1 to 4")
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
  for (const WorkOption& option : workOptions()) {
    if (app.count(option.name) == 0 || isUsed(option.name)) continue;
    throw launch::UsageError(std::string(option.name) + " is for " + usersOf(option.name) +
                             "; leave it out");
  }
}

/// Sets what was given, and what the project of --project says besides.
void setWork(Arguments& a) {
  if (const std::string* const project = a.textOf("--project")) {
    if (project->empty()) throw launch::UsageError("--project is empty; give it a name");
    const auto isGiven = [&](std::string_view option) { return a.textOf(option) != nullptr; };
    for (const std::string& key : work::readProject(*project, a, isGiven)) {
      std::cerr << "kestrel-cli: " << shownName(*project) << ": the key " << shownName(key)
                << " is unknown and was passed over\n";
    }
    if (!a.launch.algorithms) a.launch.algorithms = a.algorithms;
  }
  for (const WorkOption& option : workOptions()) {
    const std::string* const text = a.textOf(option.name);
    if (text != nullptr && option.set != nullptr) option.set(a, *text);
  }
}

void checkFiles(const Arguments& a) {
  const auto named = [](const std::optional<std::string>& file) {
    const bool isStream = file == kStandardInput || file == kStandardOutput;
    return std::filesystem::path(isStream ? "" : file.value_or(""));
  };
  launch::checkSeparate(std::array<launch::FileOption, 6>{{
      {"-i", named(a.codeFile)},
      {"-o", named(a.saveFile)},
      {"--report", a.report.value_or("")},
      {"--trace", a.launch.trace},
      {"--waves", a.launch.waves},
      {"--chip", a.launch.chip ? a.launch.chip->file : std::filesystem::path()},
  }});
  if (a.json && a.saveFile == kStandardOutput) {
    throw launch::UsageError("--json and -o - both want standard output; give -o a file");
  }
  if (a.padFF && a.codeFile == kStandardInput) {
    throw launch::UsageError("--pad-ff reads the file of -i twice; give it a file, not -");
  }
}

void checkSeries(const Arguments& a) {
  if (!a.runs("program")) return;
  for (const char* const option : {"--serial", "--report"}) {
    if (!a.several && a.textOf(option) != nullptr) {
      throw launch::UsageError(std::string(option) + " is for a series; add --several");
    }
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
  checkSeries(a);
  launch::checkTogether(a.launch);
  checkFiles(a);
  return a;
}

}  // namespace kestrel::cli
