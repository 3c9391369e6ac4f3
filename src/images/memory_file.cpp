#include "images/memory_file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <cerrno>

#include "platform/polled_io.h"
#include "platform/runtime_error.h"

namespace kestrel::images {
namespace {

constexpr const char* kName = "a file in memory";

[[noreturn]] void fail(int error) { throw FileError("make", kName, error); }

}  // namespace

MemoryFile::MemoryFile(std::span<const std::uint8_t> bytes)
    : file_(::memfd_create("kestrel-image", MFD_CLOEXEC)) {
  if (!file_.isOpen()) fail(errno);
  if (const int error = writeAll(file_, bytes, nullptr); error != 0) fail(error);
  checkItOpens();
}

// The room is taken, and given back when the library opens the file to write: then neither the
// memory nor the limit of a file's size (ulimit -f) ends the writing.
MemoryFile::MemoryFile(std::size_t room) : file_(::memfd_create("kestrel-image", MFD_CLOEXEC)) {
  if (!file_.isOpen()) fail(errno);
  if (const int error = ::posix_fallocate(file_.number(), 0, static_cast<off_t>(room)); error != 0)
    fail(error);
  checkItOpens();
}

// No /proc, or no descriptor left.
void MemoryFile::checkItOpens() const {
  const Descriptor again(::open(name().c_str(), O_RDWR | O_CLOEXEC));
  if (!again.isOpen()) fail(errno);
}

std::string MemoryFile::name() const { return "/proc/self/fd/" + std::to_string(file_.number()); }

Bytes MemoryFile::contents() const {
  struct stat status {};
  if (::fstat(file_.number(), &status) != 0) fail(errno);
  Bytes bytes(static_cast<std::size_t>(status.st_size));
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t count =
        ::pread(file_.number(), bytes.data() + done, bytes.size() - done, static_cast<off_t>(done));
    if (count <= 0) fail(count < 0 ? errno : EIO);
    done += static_cast<std::size_t>(count);
  }
  return bytes;
}

}  // namespace kestrel::images
