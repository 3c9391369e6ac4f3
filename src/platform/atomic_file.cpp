#include "platform/atomic_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <system_error>

#include "platform/runtime_error.h"

namespace kestrel {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t kTextLimit = 1'000'000;
constexpr mode_t kNewFileMode = 0666;

/// An open file descriptor, closed on every way out.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() { close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  [[nodiscard]] int number() const { return number_; }
  [[nodiscard]] bool isOpen() const { return number_ >= 0; }

  /// Closes now; 0, or the errno of a close that failed (a network disk tells a full disk here).
  int close() {
    if (number_ < 0) return 0;
    const int result = ::close(number_);
    number_ = -1;
    return result == 0 ? 0 : errno;
  }

 private:
  int number_;
};

/// 0, or the errno that ended the writing.
int writeAll(int descriptor, std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
  return 0;
}

void writeDirectly(const fs::path& path, std::span<const std::uint8_t> bytes) {
  Descriptor file(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
  if (!file.isOpen()) throw FileError("write", path.string(), errno);
  int error = writeAll(file.number(), bytes);
  if (error == 0) error = file.close();
  if (error != 0) throw FileError("write", path.string(), error);
}

/// The file that a chain of links ends at; a link to nothing yet gives the name it points to.
fs::path targetOf(const fs::path& path) {
  std::error_code error;
  fs::path target = fs::weakly_canonical(path, error);
  return error ? path : target;
}

/// The permissions that the new file takes over from the old one, or a new file's own.
mode_t modeFor(const fs::path& path) {
  struct stat old {};
  if (::stat(path.c_str(), &old) == 0) return old.st_mode & 07777U;
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return kNewFileMode & ~mask;
}

/// Makes the rename itself survive a power failure. A folder that cannot be opened for this (no
/// read permission) still holds the new file, so this is no error.
void flushFolder(const fs::path& folder) {
  const Descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (opened.isOpen()) ::fsync(opened.number());
}

void replaceFile(const fs::path& path, std::span<const std::uint8_t> bytes) {
  const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
  std::string temporary = (folder / (".kestrel-XXXXXX")).string();
  Descriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
  if (!file.isOpen()) throw FileError("write", path.string(), errno);
  int error = writeAll(file.number(), bytes);
  if (error == 0 && ::fchmod(file.number(), modeFor(path)) != 0) error = errno;
  if (error == 0 && ::fsync(file.number()) != 0) error = errno;
  if (error == 0) error = file.close();
  if (error == 0 && ::rename(temporary.c_str(), path.c_str()) != 0) error = errno;
  if (error != 0) {
    ::unlink(temporary.c_str());
    throw FileError("write", path.string(), error);
  }
  flushFolder(folder);
}

}  // namespace

std::vector<std::uint8_t> readWholeFile(const fs::path& path, std::size_t maxBytes) {
  if (path.empty()) throw FileError("read", path.string(), ENOENT);
  Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.isOpen()) throw FileError("read", path.string(), errno);
  std::vector<std::uint8_t> bytes;
  std::array<std::uint8_t, 65536> chunk{};
  for (;;) {
    const ssize_t count = ::read(file.number(), chunk.data(), chunk.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw FileError("read", path.string(), errno);
    if (count == 0) return bytes;
    bytes.insert(bytes.end(), chunk.begin(), chunk.begin() + count);
    if (bytes.size() > maxBytes) {
      throw FileError("read", path.string(),
                      "it is longer than the " + std::to_string(maxBytes) + " bytes allowed");
    }
  }
}

std::string readWholeTextFile(const fs::path& path) {
  const std::vector<std::uint8_t> bytes = readWholeFile(path, kTextLimit);
  return {bytes.begin(), bytes.end()};
}

void writeFileAtomically(const fs::path& path, std::span<const std::uint8_t> bytes) {
  if (path.empty()) throw FileError("write", path.string(), ENOENT);
  const fs::path target = targetOf(path);
  std::error_code error;
  const fs::file_status status = fs::status(target, error);
  if (fs::is_directory(status)) throw FileError("write", path.string(), EISDIR);
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    writeDirectly(target, bytes);
  } else if (fs::exists(status) && ::access(target.c_str(), W_OK) != 0) {
    // A rename would replace a write-protected file, which its owner did not ask for.
    throw FileError("write", path.string(), errno);
  } else {
    replaceFile(target, bytes);
  }
}

void writeFileAtomically(const fs::path& path, std::string_view text) {
  writeFileAtomically(path, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

}  // namespace kestrel
