#include "platform/runtime_error.h"

#include <cerrno>
#include <system_error>

#include "platform/file_names.h"

namespace kestrel {
namespace {

int numberOf(int errorNumber) {
  switch (errorNumber) {
    case ENOENT:
      return kFileNotFoundError;
    case ENOSPC:
    case EDQUOT:
      return kDiskFullError;
    case EACCES:
    case EPERM:
    case EROFS:
      return kPermissionDeniedError;
    case EIO:
      return kDeviceIoError;
    default:
      return kPathAccessError;
  }
}

std::string textOf(const std::string& doing, const std::string& path, const std::string& reason) {
  return "Cannot " + doing + " " + shownName(path) + ": " + reason;
}

}  // namespace

FileError::FileError(const std::string& doing, const std::string& path, int errorNumber)
    : RuntimeError(numberOf(errorNumber),
                   textOf(doing, path, std::generic_category().message(errorNumber))) {}

FileError::FileError(const std::string& doing, const std::string& path, const std::string& reason)
    : RuntimeError(kPathAccessError, textOf(doing, path, reason)) {}

void throwOverflow() { throw RuntimeError(kOverflowError, "Overflow"); }

void throwSubscript() { throw RuntimeError(kSubscriptError, "Subscript out of range"); }

}  // namespace kestrel
