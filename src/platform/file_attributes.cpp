#include "platform/file_attributes.h"

#include <fcntl.h>
#include <sys/xattr.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_names.h"

namespace kestrel {
namespace fs = std::filesystem;
namespace {

/// Right to run with more privileges, and sums over the old contents: neither suits new contents.
bool suitsNewContents(std::string_view attribute) {
  constexpr std::array<std::string_view, 3> kOfTheContents{"security.capability", "security.ima",
                                                           "security.evm"};
  return std::ranges::find(kOfTheContents, attribute) == kOfTheContents.end();
}

/// What a system call of the form "size needed, then the bytes" gives; nothing when it fails, as it
/// does when the value has grown in between.
template <typename Call>
std::optional<std::string> valueOf(const Call& call) {
  const ssize_t size = call(nullptr, 0);
  if (size < 0) return std::nullopt;
  std::string value(static_cast<std::size_t>(size), '\0');
  const ssize_t got = size == 0 ? 0 : call(value.data(), value.size());
  if (got < 0) return std::nullopt;
  value.resize(static_cast<std::size_t>(got));
  return value;
}

std::vector<std::string> namesIn(const std::string& list) {
  std::vector<std::string> names;
  for (std::size_t start = 0; start < list.size(); start += names.back().size() + 1) {
    names.emplace_back(list.c_str() + start);
  }
  return names;
}

bool contains(const std::vector<std::string>& names, const std::string& name) {
  return std::ranges::find(names, name) != names.end();
}

bool copyAttribute(const fs::path& from, int to, const std::string& name) {
  const auto old = valueOf(
      [&](char* v, std::size_t size) { return ::getxattr(from.c_str(), name.c_str(), v, size); });
  if (!old) return false;
  const auto present =
      valueOf([&](char* v, std::size_t size) { return ::fgetxattr(to, name.c_str(), v, size); });
  return old == present || ::fsetxattr(to, name.c_str(), old->data(), old->size(), 0) == 0;
}

/// A file system without extended attributes has none to copy.
bool copyAttributes(const fs::path& from, int to) {
  const auto list =
      valueOf([&](char* v, std::size_t size) { return ::listxattr(from.c_str(), v, size); });
  if (!list) return errno == ENOTSUP;
  const std::vector<std::string> wanted = namesIn(*list);
  const auto inherited =
      valueOf([&](char* v, std::size_t size) { return ::flistxattr(to, v, size); });
  for (const std::string& name : namesIn(inherited.value_or(std::string()))) {
    // The folder's default access list must not open what the old file kept closed.
    if (!contains(wanted, name) && ::fremovexattr(to, name.c_str()) != 0) return false;
  }
  return std::ranges::all_of(wanted, [&](const std::string& name) {
    return !suitsNewContents(name) || copyAttribute(from, to, name);
  });
}

bool takeOverOwner(const struct stat& old, int file) {
  struct stat made {};
  if (::fstat(file, &made) != 0) return false;
  return (made.st_uid == old.st_uid && made.st_gid == old.st_gid) ||
         ::fchown(file, old.st_uid, old.st_gid) == 0;
}

}  // namespace

bool takeOverAttributes(const fs::path& oldName, const struct stat& oldStatus,
                        const Descriptor& newFile) {
  const int file = newFile.number();
  return takeOverOwner(oldStatus, file) && copyAttributes(oldName, file) &&
         ::fchmod(file, oldStatus.st_mode & kPermissions) == 0;
}

void giveToOwnerOf(const fs::path& folder, const Descriptor& file) {
  struct stat above {};
  if (::geteuid() != 0 || ::stat(folder.c_str(), &above) != 0 || above.st_uid == 0) return;
  // A disk that refuses this to the superuser has put the user's own name on the file already.
  static_cast<void>(!::fchown(file.number(), above.st_uid, above.st_gid));
}

void giveToOwnerOfFolder(const fs::path& name) {
  if (::geteuid() != 0) return;
  const Descriptor file(::open(name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  struct stat made {};
  if (!file.isOpen() || ::fstat(file.number(), &made) != 0 || made.st_uid != 0) return;
  const bool isOnlyName = S_ISREG(made.st_mode) && made.st_nlink == 1;
  if (isOnlyName || S_ISDIR(made.st_mode)) giveToOwnerOf(folderOf(name), file);
}

}  // namespace kestrel
