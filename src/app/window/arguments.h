#pragma once

#include <QStringList>
#include <filesystem>

#include "app/launch/option_values.h"

namespace kestrel::window {

struct Arguments {
  launch::LaunchOptions launch;
  std::filesystem::path project;   ///< empty: none to open
  std::filesystem::path codeFile;  ///< likewise; goes before the project's
};

/// Reads the window's command line. Throws UsageError; --help and --version print and exit.
[[nodiscard]] Arguments readArguments(const QStringList& arguments);

}  // namespace kestrel::window
