#pragma once

#include <string>
#include <string_view>

namespace kestrel::cli {

/// The terminal on standard error, for what may be lost: a command must not wait, with a voltage
/// on, until somebody takes back a Ctrl-S.
class Terminal {
 public:
  Terminal();
  ~Terminal();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  /// Writes what the terminal takes at once. What is left of a text that was begun comes first the
  /// next time; a text that cannot be begun is dropped.
  void write(std::string_view text);

 private:
  /// False when the terminal takes no more.
  bool writePiece(std::string_view& text) const;

  int descriptor_;
  std::string left_;
};

}  // namespace kestrel::cli
