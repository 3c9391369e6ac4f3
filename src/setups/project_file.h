#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrel::setups {

/// A project: how a board, a chip and its image are worked with, as text that people read, change
/// and put under version control.
///
///   # anything
///   kestrel-project = 1
///   device = 27C256
///   file = monitor.hex
///   verify = yes
///
/// A line is kept as it is when another one changes; so are keys that this version does not know.
class ProjectFile {
 public:
  using Item = std::pair<std::string, std::string>;

  /// An empty project of this version.
  ProjectFile();

  /// Throws FileError with the line for a text that is no project, of a later version, or gives a
  /// key twice. `name` is for that.
  static ProjectFile parse(std::string_view text, const std::string& name);

  /// Reads the file. Throws FileError.
  static ProjectFile read(const std::filesystem::path& file);

  /// Keys and values in the order of the file, but for the version.
  [[nodiscard]] std::vector<Item> items() const;

  /// Changes the value of a key in its line, or adds one at the end. Throws FileError for a value
  /// that would not be read back.
  void set(const std::string& key, const std::string& value);

  /// Takes the line of a key out.
  void remove(const std::string& key);

  [[nodiscard]] std::string text() const;

 private:
  std::vector<std::string> lines_;
};

}  // namespace kestrel::setups
