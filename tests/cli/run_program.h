#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "support/temporary_folder.h"

namespace kestrel::test {

using Bytes = std::vector<std::uint8_t>;
using Words = std::vector<std::string>;

/// How a run of the program ended and what it said.
struct Outcome {
  int status = -1;  ///< exit status; 1000 and the number when a signal killed it
  std::string out;
  std::string err;

  /// The messages of the log, without their times.
  [[nodiscard]] Words log() const;
  [[nodiscard]] bool logged(std::string_view message) const;
  [[nodiscard]] bool told(std::string_view part) const {
    return err.find(part) != std::string::npos;
  }
};

/// A folder of its own in which kestrel-cli runs, with no terminal and with a configuration folder
/// that is not the user's.
class Workplace {
 public:
  Workplace();

  /// Runs `kestrel-cli` with the words to its end.
  [[nodiscard]] Outcome run(const Words& words) const;

  /// The same on the simulated board of model 5 at 378h.
  [[nodiscard]] Outcome simulate(Words words) const;

  /// Starts it and gives its process; its output goes to the files out.txt and err.txt.
  [[nodiscard]] pid_t start(const Words& words) const;
  /// Waits for its end.
  [[nodiscard]] Outcome finish(pid_t process) const;

  /// Writes a file, or reads one (empty if there is none).
  void put(const std::string& name, const Bytes& bytes) const;
  [[nodiscard]] Bytes get(const std::string& name) const;
  [[nodiscard]] std::string text(const std::string& name) const;
  [[nodiscard]] std::string path(const std::string& name) const { return folder_ / name; }

 private:
  TemporaryFolder folder_;
};

/// FFh but for the bytes of `text` from the address on.
[[nodiscard]] Bytes mostlyErased(std::size_t size, std::size_t address, std::string_view text);

}  // namespace kestrel::test
