#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace kestrel {

/// A failure that ends the current command: a number and a text for the person at the screen.
/// It is caught by the command runner and nowhere passes through a front end's event handler.
class RuntimeError : public std::runtime_error {
 public:
  RuntimeError(int number, const std::string& text) : std::runtime_error(text), number_(number) {}

  [[nodiscard]] int number() const { return number_; }

 private:
  int number_;
};

inline constexpr int kOverflowError = 6;
inline constexpr int kSubscriptError = 9;
inline constexpr int kFileNotFoundError = 53;
inline constexpr int kDeviceIoError = 57;
inline constexpr int kDiskFullError = 61;
inline constexpr int kDeviceUnavailableError = 68;
inline constexpr int kPermissionDeniedError = 70;
inline constexpr int kPathAccessError = 75;

/// What an errno value means, in English whatever the locale: log lines and scripts read it.
[[nodiscard]] std::string errorText(int errorNumber);

/// A file operation that failed. The text names the file and the reason.
class FileError : public RuntimeError {
 public:
  /// `doing` is what was tried ("read", "write"), `errorNumber` an errno value.
  FileError(const std::string& doing, const std::string& path, int errorNumber);
  FileError(const std::string& doing, const std::string& path, const std::string& reason);
};

/// The person at the screen, or a signal, ended the running command.
class OperationStopped : public std::exception {
 public:
  OperationStopped() = default;

  /// `remark` tells what the stop has left behind: a literal. It goes to the log before what(),
  /// once the board is at rest.
  explicit OperationStopped(const char* remark) : remark_(remark) {}

  [[nodiscard]] std::string_view remark() const noexcept { return remark_; }
  [[nodiscard]] const char* what() const noexcept override {
    return "Operation stopped by operator";
  }

 private:
  std::string_view remark_;
};

[[noreturn]] void throwOverflow();
[[noreturn]] void throwSubscript();

/// Converts to a narrower (or differently signed) integer; throws RuntimeError 6 when the value
/// does not fit.
template <std::integral To, std::integral From>
[[nodiscard]] constexpr To narrowed(From value) {
  if (!std::in_range<To>(value)) throwOverflow();
  return static_cast<To>(value);
}

/// The element of a fixed table or buffer; throws RuntimeError 9 when the index is outside it.
template <typename Table, std::integral Index>
[[nodiscard]] constexpr auto& at(Table& table, Index index) {
  if (std::cmp_less(index, 0) || std::cmp_greater_equal(index, table.size())) throwSubscript();
  return table[static_cast<std::size_t>(index)];
}

}  // namespace kestrel
