#include "cli/arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <functional>
#include <iostream>
#include <limits>
#include <string_view>
#include <vector>

#include "app/launch/version.h"
#include "cli/commands.h"

namespace kestrel::cli {
namespace {

using Use = std::function<void(const std::string&)>;

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

const std::string& named(std::string_view option, const std::string& text) {
  if (text.empty()) throw launch::UsageError(std::string(option) + " is empty; give it a name");
  return text;
}

/// A name that stays within its line of the setup file.
const std::string& setupName(const std::string& text) {
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' '; };
  if (std::ranges::any_of(text, isControl)) {
    throw launch::UsageError("save-setup: a name is one line of text");
  }
  return text;
}

void addOption(CLI::App& app, const std::string& name, const char* type, const char* text,
               const Use& use) {
  app.add_option_function<std::string>(name, use, text)->type_name(type);
}

void addRepeatable(CLI::App& app, const std::string& name, const char* type, const char* text,
                   const Use& use) {
  const auto each = [use](const std::vector<std::string>& texts) {
    std::ranges::for_each(texts, use);
  };
  app.add_option_function<std::vector<std::string>>(name, each, text)
      ->type_name(type)
      ->allow_extra_args(false);
}

void addWork(CLI::App& app, Arguments& a) {
  addOption(app, "-d", "NAME", "device: its name, a whole word of it, or a part that fits one",
            [&a](const auto& text) { a.device = named("-d", text); });
  addOption(app, "-i", "FILE", "code file to load",
            [&a](const auto& text) { a.codeFile = named("-i", text); });
  addOption(app, "-o", "FILE", "file to save the buffer to after the command",
            [&a](const auto& text) { a.saveFile = named("-o", text); });
  addOption(app, "--setup", "N", "load setup slot N (1 to 4)",
            [&a](const auto& text) { a.setup = slot("--setup", text); });
  addOption(app, "--speed", "1..20", "program speed", [&a](const auto& text) {
    a.speed = number("--speed", text, 1, 20, "is no program speed; use 1 (slow) to 20 (fast)");
  });
  addOption(app, "--vpp", "12.5|21|25", "programming voltage",
            [&a](const auto& text) { a.voltage = voltageButton(text); });
  addOption(app, "--lane", "all|odd|even", "bytes of the buffer to program and verify",
            [&a](const auto& text) { a.lane = laneButton(text); });
  app.add_flag("--blank-check", a.blankCheck, "check that the device is blank before programming");
  app.add_flag("--verify", a.verify, "verify after programming");
  addOption(app, "--page", "N", "page of 256 bytes for display, from 0", [&a](const auto& text) {
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    a.page = number("--page", text, 0, kMost, "is no page; use 0 or more");
  });
  app.add_flag("--show", a.show, "with read: print the first page of the buffer");
  app.add_flag("--yes", a.yes, "answer questions with OK");
  app.add_flag("--quiet", a.quiet, "print no log");
}

void addMachine(CLI::App& app, launch::LaunchOptions& launch) {
  addRepeatable(app, "--port", "BASE=DEVICE", "parallel port device for the address BASE",
                [&](const auto& text) { launch.ports.push_back(launch::parsePort(text)); });
  addOption(app, "--home", "DIR", "folder of kestrel6.ini",
            [&](const auto& text) { launch.home = named("--home", text); });
  addOption(app, "--trace", "FILE", "write every port access and wait to FILE",
            [&](const auto& text) { launch.trace = named("--trace", text); });
  addOption(app, "--count-ns", "N", "length of a delay-loop count in nanoseconds (25)",
            [&](const auto& text) { launch.countNs = launch::parseCountNs(text); });
}

void addSimulation(CLI::App& app, launch::LaunchOptions& launch) {
  app.add_flag("--simulate", launch.simulate, "work on a simulated board");
  addOption(app, "--model", "4|5|6", "its model (5)",
            [&](const auto& text) { launch.model = launch::parseModel(text); });
  addOption(app, "--lpt", "378|278|3BC", "its port (378)",
            [&](const auto& text) { launch.lpt = launch::parseLpt(text); });
  addOption(app, "--chip", "TYPE[=FILE]", "the chip in its socket; FILE holds its contents",
            [&](const auto& text) { launch.chip = launch::parseChip(text); });
  addOption(app, "--board-vpp", "12.5|21|25", "voltage set by hand on a simulated model 4",
            [&](const auto& text) { launch.boardVppMillivolts = launch::parseBoardVpp(text); });
  addRepeatable(app, "--fault", "FAULT", "weak:ADDR, stuck:BIT, unplug:N or empty; repeatable",
                [&](const auto& text) { launch.faults.push_back(launch::parseFault(text)); });
}

void arrangeHelp(CLI::App& app) {
  app.get_formatter()->label("OPTIONS", "options");
  app.get_formatter()->label("SUBCOMMAND", "COMMAND");
  app.get_formatter()->label("Subcommands", "Commands");
  for (const char* const name :
       {"--simulate", "--model", "--lpt", "--chip", "--board-vpp", "--fault"}) {
    app.get_option(name)->group("Simulated board");
  }
  for (const char* const name : {"--port", "--home", "--trace", "--count-ns"}) {
    app.get_option(name)->group("Machine");
  }
}

void addCommands(CLI::App& app, Arguments& a) {
  for (const Command& command : commands()) {
    CLI::App* const sub = app.add_subcommand(command.name, command.help);
    sub->fallthrough()->allow_extras()->set_help_flag();
    sub->callback([&a, name = command.name] { a.command = name; });
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
    if (!a.command.empty())
      throw launch::UsageError("\"" + first + "\" is one word too many; see kestrel-cli --help");
    throw launch::UsageError("\"" + first + "\" is no command; use one of " + commandList());
  }
  if (a.command.empty()) throw launch::UsageError("no command; use one of " + commandList());
}

void checkCommand(const Arguments& a) {
  if (a.page && a.command != "display") {
    throw launch::UsageError("--page is for the command display; leave it out");
  }
  if (a.show && a.command != "read") {
    throw launch::UsageError("--show is for the command read; leave it out");
  }
}

}  // namespace

std::optional<Arguments> readArguments(int argc, const char* const* argv) {
  Arguments a;
  CLI::App app("Read and program memory chips on KESTREL-4, -5 and -6 boards.", "kestrel-cli");
  app.set_version_flag("--version", std::string("kestrel-cli ") + launch::kVersion);
  app.allow_extras()->require_subcommand(0, 1);
  addWork(app, a);
  addMachine(app, a.launch);
  addSimulation(app, a.launch);
  arrangeHelp(app);
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
  checkCommand(a);
  launch::checkTogether(a.launch);
  return a;
}

}  // namespace kestrel::cli
