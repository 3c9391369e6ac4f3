#include "app/window/arguments.h"

#include <QCommandLineParser>
#include <iostream>

#include "app/window/file_names.h"

namespace kestrel::window {
namespace {

void describe(QCommandLineParser& parser) {
  parser.setApplicationDescription("Control program for the KESTREL-4, -5 and -6 chip programmers");
  parser.addPositionalArgument("file", "Code file to open", "[file]");
  parser.addOptions({
      {"simulate", "Work on a simulated board"},
      {"model", "Model of the simulated board (5)", "4|5|6"},
      {"lpt", "Port of the simulated board (378)", "378|278|3BC"},
      {"chip", "Chip in the simulated socket; FILE holds its contents", "TYPE[=FILE]"},
      {"board-vpp", "Voltage set by hand on a simulated model 4", "12.5|21|25"},
      {"fault", "Simulated fault: weak:ADDR, stuck:BIT, unplug:N, empty; repeatable", "FAULT"},
      {"port", "Parallel port device for one of the three addresses", "BASE=DEVICE"},
      {"home", "Folder of kestrel6.ini", "DIR"},
      {"trace", "Write every port access and wait to a file", "FILE"},
      {"count-ns", "Length of a delay-loop count in nanoseconds (25)", "N"},
  });
}

launch::LaunchOptions launchOptions(const QCommandLineParser& parser) {
  launch::LaunchOptions options;
  const auto value = [&](const char* name) { return parser.value(name).toStdString(); };
  options.simulate = parser.isSet("simulate");
  if (parser.isSet("model")) options.model = launch::parseModel(value("model"));
  if (parser.isSet("lpt")) options.lpt = launch::parseLpt(value("lpt"));
  if (parser.isSet("chip")) options.chip = launch::parseChip(value("chip"));
  if (parser.isSet("board-vpp"))
    options.boardVppMillivolts = launch::parseBoardVpp(value("board-vpp"));
  for (const QString& fault : parser.values("fault")) {
    options.faults.push_back(launch::parseFault(fault.toStdString()));
  }
  for (const QString& port : parser.values("port")) {
    options.ports.push_back(launch::parsePort(port.toStdString()));
  }
  if (parser.isSet("count-ns")) options.countNs = launch::parseCountNs(value("count-ns"));
  options.home = value("home");
  options.trace = value("trace");
  launch::checkTogether(options);
  return options;
}

}  // namespace

Arguments readArguments(const QStringList& arguments) {
  QCommandLineParser parser;
  describe(parser);
  const QCommandLineOption help = parser.addHelpOption();
  const QCommandLineOption version = parser.addVersionOption();
  if (!parser.parse(arguments)) throw launch::UsageError(parser.errorText().toStdString());
  if (parser.isSet(version)) parser.showVersion();
  if (parser.isSet(help)) parser.showHelp(0);
  const QStringList files = parser.positionalArguments();
  if (files.size() > 1) throw launch::UsageError("one code file can be opened, not several");
  Arguments read{.launch = launchOptions(parser), .codeFile = {}};
  if (!files.isEmpty()) read.codeFile = std::filesystem::absolute(fileOf(files.first()));
  return read;
}

}  // namespace kestrel::window
