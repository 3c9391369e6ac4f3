#include "platform/temporary_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <random>
#include <string_view>
#include <system_error>

namespace kestrel {
namespace fs = std::filesystem;
namespace {

constexpr std::string_view kPrefix = ".kestrel-";
constexpr std::size_t kRandomLength = 6;
constexpr std::string_view kLetters =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
constexpr int kMostTries = 100;

std::string randomName() {
  std::random_device random;
  std::uniform_int_distribution<std::size_t> index(0, kLetters.size() - 1);
  std::string name(kPrefix);
  std::generate_n(std::back_inserter(name), kRandomLength, [&] { return kLetters[index(random)]; });
  return name;
}

bool isOurName(const std::string& name) {
  return name.starts_with(kPrefix) && name.size() == kPrefix.size() + kRandomLength &&
         name.find_first_not_of(kLetters, kPrefix.size()) == std::string::npos;
}

bool isLockedByOther(const Descriptor& file) {
  return ::flock(file.number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

bool isRemoved(const Descriptor& file) {
  struct stat status {};
  return ::fstat(file.number(), &status) == 0 && status.st_nlink == 0;
}

/// The user's own file that nobody holds the lock of. No lock at all, as on some network disks,
/// means that it cannot be told, and the file stays.
bool isLeftOver(const Descriptor& file) {
  struct stat status {};
  return file.isOpen() && ::fstat(file.number(), &status) == 0 && S_ISREG(status.st_mode) &&
         status.st_uid == ::geteuid() && ::flock(file.number(), LOCK_EX | LOCK_NB) == 0;
}

void removeLeftOvers(const fs::path& folder) {
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const fs::path& path = entry->path();
    if (!isOurName(path.filename().string())) continue;
    // Open for writing too, which a lock on a network disk asks for.
    const Descriptor file(::open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (isLeftOver(file)) ::unlink(path.c_str());
  }
}

}  // namespace

// Another program that clears the folder may hold the lock, or have removed the file, between its
// making and its locking here: then the next name is tried.
Descriptor TemporaryFile::make(std::string& name, mode_t mode) {
  const fs::path folder = name;
  for (int tries = 0; tries < kMostTries; ++tries) {
    name = folder / randomName();
    Descriptor file(::open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode));
    if (!file.isOpen() && errno == EEXIST) continue;
    if (!file.isOpen() || (!isLockedByOther(file) && !isRemoved(file))) return file;
    ::unlink(name.c_str());
  }
  errno = EEXIST;
  return Descriptor();
}

TemporaryFile::TemporaryFile(const fs::path& folder, mode_t mode)
    : name_(folder), file_(make(name_, mode)), error_(file_.isOpen() ? 0 : errno) {
  if (file_.isOpen()) removeLeftOvers(folder);
}

TemporaryFile::~TemporaryFile() {
  if (file_.isOpen() && !name_.empty()) ::unlink(name_.c_str());
}

int TemporaryFile::renameTo(const fs::path& name) {
  if (::rename(name_.c_str(), name.c_str()) != 0) return errno;
  name_.clear();
  return 0;
}

}  // namespace kestrel
