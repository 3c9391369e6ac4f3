#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/launch/option_values.h"
#include "app/work/work.h"

namespace kestrel::cli {

/// The command line as it was given.
struct Arguments : work::Work {
  launch::LaunchOptions launch;

  std::vector<std::string> commands;  ///< in the order in which they are to run
  std::vector<std::string> words;     ///< behind the command image or save-project
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
