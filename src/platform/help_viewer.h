#pragma once

#include <filesystem>

namespace kestrel {

enum class HelpPage { Contents, Search };

class HelpViewer {
 public:
  virtual ~HelpViewer() = default;

  /// Opens the help file on the given page; every failure is ignored.
  virtual void show(const std::filesystem::path& helpFile, HelpPage page) = 0;
};

}  // namespace kestrel
