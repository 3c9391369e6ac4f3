#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/launch/option_values.h"
#include "cli/image_options.h"
#include "images/serial_numbers.h"

namespace kestrel::cli {

/// The command line as it was given. What is not set was not given, and presses nothing.
struct Arguments {
  launch::LaunchOptions launch;

  std::vector<std::string> commands;  ///< in the order in which they are to run
  std::vector<std::string> words;     ///< behind the command image or save-project
  std::optional<std::string> device;
  std::optional<std::string> codeFile;    ///< -i
  std::optional<std::string> saveFile;    ///< -o
  std::optional<std::size_t> model;       ///< --force-model: index of the menu entry
  std::optional<std::size_t> port;        ///< --select-port: index of the port button
  std::optional<std::size_t> setup;       ///< slot 1 to 4
  std::optional<std::int32_t> speed;      ///< 1 to 20
  std::optional<std::size_t> voltage;     ///< index of the voltage button
  std::optional<std::size_t> lane;        ///< index of the lane button
  std::optional<std::int32_t> page;       ///< of display
  std::optional<std::size_t> protection;  ///< index of the protection button
  std::optional<std::int32_t> repeat;     ///< how often read reads
  ImageOptions image;
  std::optional<std::string> backup;         ///< folder of --backup
  std::optional<images::SerialPlan> serial;  ///< of program --several
  std::optional<std::string> report;         ///< its table
  bool several = false;
  bool force = false;
  bool json = false;
  bool blankCheck = false;
  bool check = false;
  bool verify = false;
  bool padFF = false;
  bool show = false;
  bool names = false;  ///< of devices: short names alone
  bool yes = false;
  bool quiet = false;

  /// Option and text as they were given, in the order of the manual.
  std::vector<std::pair<std::string, std::string>> given;

  std::size_t saveSlot = 0;  ///< save-setup N NAME
  std::string setupName;

  /// nullptr for an option that was not given.
  [[nodiscard]] const std::string* textOf(std::string_view option) const;

  [[nodiscard]] bool runs(std::string_view command) const;
};

/// Reads the command line. Nothing when it only asked for help or the version, which is printed.
/// Throws UsageError.
[[nodiscard]] std::optional<Arguments> readArguments(int argc, const char* const* argv);

}  // namespace kestrel::cli
