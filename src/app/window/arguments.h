#pragma once

#include <QStringList>
#include <filesystem>

#include "app/launch/option_values.h"

namespace kestrel::window {

struct Arguments {
  launch::LaunchOptions launch;
  std::filesystem::path codeFile;  ///< empty: none to open
};

/// Reads the window's command line. Throws UsageError; --help and --version print and exit.
[[nodiscard]] Arguments readArguments(const QStringList& arguments);

}  // namespace kestrel::window
