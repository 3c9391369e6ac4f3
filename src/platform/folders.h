#pragma once

#include <filesystem>

namespace kestrel {

/// Where the program's files are. kestrel6.ini is written, so it lives in the user's configuration
/// folder; sounds and help are only read, so they live with the installed data.
struct Folders {
  std::filesystem::path configuration;
  std::filesystem::path data;
  std::filesystem::path working = ".";
};

}  // namespace kestrel
