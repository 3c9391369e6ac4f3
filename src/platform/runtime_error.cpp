#include "platform/runtime_error.h"

#include <cerrno>
#include <cstring>

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

std::string errorText(int errorNumber) {
  const char* const text = strerrordesc_np(errorNumber);  // strerror would follow LC_MESSAGES
  return text != nullptr ? text : "Unknown error " + std::to_string(errorNumber);
}

FileError::FileError(const std::string& doing, const std::string& path, int errorNumber)
    : RuntimeError(numberOf(errorNumber), textOf(doing, path, errorText(errorNumber))) {}

FileError::FileError(const std::string& doing, const std::string& path, const std::string& reason)
    : RuntimeError(kPathAccessError, textOf(doing, path, reason)) {}

void throwOverflow() { throw RuntimeError(kOverflowError, "Overflow"); }

void throwSubscript() { throw RuntimeError(kSubscriptError, "Subscript out of range"); }

}  // namespace kestrel
