#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <tuple>

namespace kestrel::window {

/// Looks after one file: reports when somebody else has changed it on the disk, also by putting a
/// new one in its place, as editors do.
class FileWatch final : public QObject {
 public:
  FileWatch(QObject* parent, std::function<void()> changed);

  /// The file from now on; empty for none. The same file goes on as it is.
  void follow(const std::filesystem::path& file);

  /// What stands in the file now is known.
  void takeAsKnown();

 private:
  /// Device, inode, size and time of the last change.
  using Stamp = std::tuple<std::uint64_t, std::uint64_t, std::int64_t, std::int64_t, std::int64_t>;

  [[nodiscard]] std::optional<Stamp> stamp() const;
  void look();

  std::function<void()> changed_;
  std::filesystem::path file_;
  std::optional<Stamp> known_;
  QFileSystemWatcher watcher_;
  QTimer rests_;  // a file is written in several steps
};

}  // namespace kestrel::window
