#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <iostream>

#include "platform/output_buffer.h"

namespace kestrel::cli {

/// Stands behind std::cout for as long as it lives, so that no output is lost in silence.
class StandardOutput {
 public:
  explicit StandardOutput(const StopSwitch& stop)
      : buffer_(Descriptor(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)),
                "standard output", stop),
        before_(std::cout.rdbuf(&buffer_)) {}
  ~StandardOutput() { std::cout.rdbuf(before_); }
  StandardOutput(const StandardOutput&) = delete;
  StandardOutput& operator=(const StandardOutput&) = delete;

  /// Throws FileError when anything that was printed is lost.
  void finish() { buffer_.finish(); }

 private:
  OutputBuffer buffer_;
  std::streambuf* before_;
};

}  // namespace kestrel::cli
