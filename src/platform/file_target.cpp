#include "platform/file_target.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/file_attributes.h"
#include "platform/file_names.h"
#include "platform/polled_io.h"
#include "platform/runtime_error.h"

namespace kestrel {
namespace fs = std::filesystem;
namespace {

constexpr mode_t kReplacementMode = 0600;  // nobody else's until it has the old file's permissions
constexpr mode_t kAllModeBits = 07777;

/// Makes the rename itself survive a power failure. A folder that cannot be opened for this (no
/// read permission) still holds the new file, so this is no error.
void flushFolder(const fs::path& folder) {
  const Descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (opened.isOpen()) ::fsync(opened.number());
}

/// The folder takes no new file from this user; an old one in it may be writable all the same.
bool isFolderClosed(int error) { return error == EACCES || error == EPERM || error == EROFS; }

/// The set-user-id bit would hand new contents the owner's rights. The superuser has to take it
/// away; the system does so when anyone else writes.
int dropPrivilegeBits(const Descriptor& file, const struct stat& old) {
  if ((old.st_mode & kAllModeBits & ~kPermissions) == 0) return 0;
  const bool isDone = ::fchmod(file.number(), old.st_mode & kPermissions) == 0;
  return isDone || errno == EPERM ? 0 : errno;
}

/// So that a full disk is met while the old contents are whole. A file system that cannot take
/// space beforehand is written as it is.
int takeSpace(const Descriptor& file, std::size_t size, const struct stat& old) {
  if (size == 0 || ::fallocate(file.number(), 0, 0, static_cast<off_t>(size)) == 0) return 0;
  const int error = errno;
  if (error == EOPNOTSUPP || error == ENOSYS) return 0;
  // What was taken before the disk was full is given back.
  static_cast<void>(!::ftruncate(file.number(), old.st_size));
  return error;
}

}  // namespace

FileTarget::FileTarget(fs::path path) : path_(std::move(path)) {
  if (path_.empty()) fail(ENOENT);
  if (path_ == kStandardOutput) return;
  // The system looks at the links first: it refuses some that a user planted for another.
  const Status old = status();
  std::error_code error;
  name_ = followLinks(path_, error);
  if (error) fail(error.value());
  if (old && S_ISDIR(old->st_mode)) fail(EISDIR);
  // A rename would replace a write-protected file, which its owner did not ask for.
  if (old && ::faccessat(AT_FDCWD, path_.c_str(), W_OK, AT_EACCESS) != 0) fail(errno);
  if (isReplaceable(old)) prepareTemporary(old);
}

void FileTarget::commit(std::span<const std::uint8_t> bytes, const StopSwitch* stop) {
  if (path_ == kStandardOutput) {
    if (const int error = writeStream(bytes, stop); error != 0) fail(error);
    return;
  }
  // Looked at anew: minutes may have passed.
  const Status old = status();
  int error = 0;
  if (old && !S_ISREG(old->st_mode)) {
    error = writeStream(bytes, stop);
  } else if (isReplaceable(old) && prepareTemporary(old) &&
             (!old || takeOverAttributes(name_, *old, temporary_->descriptor()))) {
    error = replace(bytes);
    // A file that is a mount point of its own keeps its name.
    if (error == EBUSY && old) error = rewrite(bytes, *old);
  } else {
    error = rewrite(bytes, *old);
  }
  temporary_.reset();
  if (error != 0) fail(error);
}

// A name that leads nowhere or to a folder is shown as it was given; of any other the folder may be
// the reason.
void FileTarget::fail(int error) const {
  const bool isAsGiven = error == ENOENT || error == EISDIR;
  throw FileError("write", (isAsGiven ? path_ : fullName(path_)).string(), error);
}

FileTarget::Status FileTarget::status() const {
  struct stat found {};
  if (::stat(path_.c_str(), &found) == 0) return found;
  if (errno != ENOENT) fail(errno);
  return std::nullopt;
}

// A link of /proc leads to a file that may have no name, or another file under its old name.
bool FileTarget::isReplaceable(const Status& old) const {
  if (!old) return true;
  return S_ISREG(old->st_mode) && old->st_nlink == 1 && isSameFile(path_, name_);
}

/// False when the folder takes no new file, and the old one has to be written in place.
bool FileTarget::prepareTemporary(const Status& old) {
  const bool isNew = !old;
  if (!temporary_ || isForNewFile_ != isNew) {
    temporary_.emplace(folderOf(name_), isNew ? kNewFileMode : kReplacementMode);
    isForNewFile_ = isNew;
    if (isNew && temporary_->error() == 0) giveToOwnerOf(folderOf(name_), temporary_->descriptor());
  }
  const int error = temporary_->error();
  if (error == 0) return true;
  temporary_.reset();
  if (isNew || !isFolderClosed(error)) fail(error);
  return false;
}

// The temporary file is closed, and its lock given up, after the rename: before it the file would
// pass for a left-over. A full network disk is met by fsync.
int FileTarget::replace(std::span<const std::uint8_t> bytes) {
  const Descriptor& file = temporary_->descriptor();
  int error = writeAll(file, bytes, nullptr);
  if (error == 0 && ::fsync(file.number()) != 0) error = errno;
  if (error == 0) error = temporary_->renameTo(name_);
  if (error == 0) flushFolder(folderOf(name_));
  return error;
}

int FileTarget::rewrite(std::span<const std::uint8_t> bytes, const struct stat& old) {
  const Descriptor file = openToWrite(path_, nullptr);
  if (!file.isOpen()) return errno;
  int error = takeSpace(file, bytes.size(), old);
  if (error == 0) error = dropPrivilegeBits(file, old);
  if (error == 0) error = writeAll(file, bytes, nullptr);
  if (error == 0 && ::ftruncate(file.number(), static_cast<off_t>(bytes.size())) != 0)
    error = errno;
  if (error == 0 && ::fsync(file.number()) != 0) error = errno;
  return error;
}

int FileTarget::writeStream(std::span<const std::uint8_t> bytes, const StopSwitch* stop) {
  const Descriptor file = openToWrite(path_, stop);
  return file.isOpen() ? writeAll(file, bytes, stop) : errno;
}

}  // namespace kestrel
