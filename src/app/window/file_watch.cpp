#include "app/window/file_watch.h"

#include <sys/stat.h>

#include <QFile>
#include <utility>

#include "platform/file_names.h"

namespace kestrel::window {
namespace {

constexpr int kRestMs = 300;

QString nameFor(const std::filesystem::path& path) {
  return QFile::decodeName(QByteArray::fromStdString(path.string()));
}

}  // namespace

FileWatch::FileWatch(QObject* parent, std::function<void()> changed)
    : QObject(parent), changed_(std::move(changed)) {
  rests_.setSingleShot(true);
  rests_.setInterval(kRestMs);
  connect(&rests_, &QTimer::timeout, this, [this] { look(); });
  const auto soon = [this] { rests_.start(); };
  connect(&watcher_, &QFileSystemWatcher::fileChanged, this, soon);
  connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, soon);
}

// The folder is watched as well: a file that is replaced is another one to the system.
void FileWatch::follow(const std::filesystem::path& file) {
  if (file == file_) return;
  const QStringList before = watcher_.files() + watcher_.directories();
  if (!before.isEmpty()) watcher_.removePaths(before);
  file_ = file;
  rests_.stop();
  takeAsKnown();
  if (file.empty()) return;
  watcher_.addPath(nameFor(folderOf(file)));
  watcher_.addPath(nameFor(file));
}

void FileWatch::takeAsKnown() { known_ = stamp(); }

std::optional<FileWatch::Stamp> FileWatch::stamp() const {
  struct stat found {};
  if (file_.empty() || ::stat(file_.c_str(), &found) != 0) return std::nullopt;
  if (!S_ISREG(found.st_mode)) return std::nullopt;
  return Stamp(found.st_dev, found.st_ino, found.st_size, found.st_mtim.tv_sec,
               found.st_mtim.tv_nsec);
}

// A file that is gone for a moment comes back; one that stays away has nothing to offer.
void FileWatch::look() {
  const std::optional<Stamp> now = stamp();
  if (!now || now == known_) return;
  known_ = now;
  watcher_.addPath(nameFor(file_));
  changed_();
}

}  // namespace kestrel::window
