#include "platform/atomic_file.h"

#include <array>
#include <cerrno>

#include "platform/file_target.h"
#include "platform/polled_io.h"
#include "platform/runtime_error.h"

namespace kestrel {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t kTextLimit = 1'000'000;

}  // namespace

std::vector<std::uint8_t> readWholeFile(const fs::path& path, std::size_t maxBytes,
                                        const StopSwitch* stop) {
  if (path.empty()) throw FileError("read", path.string(), ENOENT);
  const Descriptor file = openToRead(path, stop);
  if (!file.isOpen()) throw FileError("read", path.string(), errno);
  std::vector<std::uint8_t> bytes;
  std::array<std::uint8_t, 65536> chunk{};
  for (;;) {
    const ssize_t count = readSome(file, chunk, stop);
    if (count < 0) throw FileError("read", path.string(), errno);
    if (count == 0) return bytes;
    bytes.insert(bytes.end(), chunk.begin(), chunk.begin() + count);
    if (bytes.size() > maxBytes) {
      throw FileError("read", path.string(),
                      "it is longer than the " + std::to_string(maxBytes) + " bytes allowed");
    }
  }
}

std::string readWholeTextFile(const fs::path& path, const StopSwitch* stop) {
  const std::vector<std::uint8_t> bytes = readWholeFile(path, kTextLimit, stop);
  return {bytes.begin(), bytes.end()};
}

void writeFileAtomically(const fs::path& path, std::span<const std::uint8_t> bytes,
                         const StopSwitch* stop) {
  FileTarget(path).commit(bytes, stop);
}

void writeFileAtomically(const fs::path& path, std::string_view text) {
  writeFileAtomically(path, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

}  // namespace kestrel
