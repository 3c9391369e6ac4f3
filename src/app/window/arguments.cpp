#include "app/window/arguments.h"

#include <QCommandLineParser>
#include <array>

#include "app/launch/machine_options.h"
#include "app/launch/separate_files.h"
#include "app/window/file_of.h"
#include "platform/file_names.h"

namespace kestrel::window {
namespace {

/// The parser wants a name without its hyphens.
QString nameOf(const launch::MachineOption& option) { return QString(option.name).mid(2); }

constexpr const char* kProject = "project";

void describe(QCommandLineParser& parser) {
  parser.setApplicationDescription("Control program for the KESTREL-4, -5 and -6 chip programmers");
  parser.addPositionalArgument("file", "code file to open", "[file]");
  for (const launch::MachineOption& option : launch::machineOptions()) {
    parser.addOption({nameOf(option), option.help, option.value});
  }
  parser.addOption({kProject, "open a project", "FILE"});
}

launch::LaunchOptions launchOptions(const QCommandLineParser& parser) {
  launch::LaunchOptions options;
  options.mayRecord = true;
  for (const launch::MachineOption& option : launch::machineOptions()) {
    if (!parser.isSet(nameOf(option))) continue;
    std::vector<std::string> values;
    for (const QString& value : parser.values(nameOf(option))) {
      values.push_back(value.toStdString());
    }
    if (values.empty()) values.emplace_back();  // a flag
    launch::setOption(option, values, options);
  }
  launch::checkTogether(options);
  return options;
}

}  // namespace

Arguments readArguments(const QStringList& arguments) {
  QCommandLineParser parser;
  describe(parser);
  const QCommandLineOption help({"h", "help"}, "print this help");
  const QCommandLineOption version({"v", "version"}, "print the version");
  parser.addOptions({help, version});
  if (!parser.parse(arguments)) throw launch::UsageError(parser.errorText().toStdString());
  if (parser.isSet(version)) parser.showVersion();
  if (parser.isSet(help)) parser.showHelp(0);
  const QStringList files = parser.positionalArguments();
  if (files.size() > 1) throw launch::UsageError("one code file can be opened, not several");
  Arguments read{.launch = launchOptions(parser), .project = {}, .codeFile = {}};
  if (parser.isSet(kProject)) read.project = fullName(fileOf(parser.value(kProject)));
  if (!files.isEmpty()) read.codeFile = fullName(fileOf(files.first()));
  const auto& chip = read.launch.chip;
  launch::checkSeparate(std::array<launch::FileOption, 5>{{
      {"The file to open", read.codeFile},
      {"--project", read.project},
      {"--trace", read.launch.trace},
      {"--waves", read.launch.waves},
      {"--chip", chip ? chip->file : std::filesystem::path()},
  }});
  return read;
}

}  // namespace kestrel::window
