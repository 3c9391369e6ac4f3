#pragma once

#include <array>
#include <filesystem>
#include <span>
#include <streambuf>
#include <string>

#include "platform/descriptor.h"
#include "platform/stop_switch.h"

namespace kestrel {

/// The buffer of a stream whose output must not be lost in silence: the first write that fails is
/// remembered, and reported by finish(). A pipe or a terminal that takes nothing is waited for
/// until the switch is thrown.
class OutputBuffer final : public std::streambuf {
 public:
  /// Makes the file, or empties the one that is there. Throws FileError, and OperationStopped where
  /// a pipe has no reader. The switch outlives this.
  OutputBuffer(const std::filesystem::path& path, const StopSwitch& stop);

  /// An open file under the name that an error names.
  OutputBuffer(Descriptor file, std::string name, const StopSwitch& stop);

  ~OutputBuffer() override;
  OutputBuffer(const OutputBuffer&) = delete;
  OutputBuffer& operator=(const OutputBuffer&) = delete;

  /// Writes what is left. Throws FileError when anything was lost since the beginning.
  void finish();

 protected:
  int_type overflow(int_type next) override;
  int sync() override;
  std::streamsize xsputn(const char* text, std::streamsize size) override;

 private:
  [[nodiscard]] bool isReady() const;
  void write(std::span<const char> text);

  std::string name_;
  Descriptor file_;
  const StopSwitch& stop_;
  bool isRegular_ = false;
  int error_ = 0;  ///< errno of the first write that failed
  std::array<char, 65536> text_;
};

}  // namespace kestrel
