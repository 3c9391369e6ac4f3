#include "setups/setup_files.h"

#include "app/state/text_format.h"
#include "platform/atomic_file.h"

namespace kestrel::setups {
namespace {

namespace fs = std::filesystem;

/// The rest of the line behind the key; the text as it was where the line has another key.
std::string valueOr(const std::string& earlier, const std::string& line, std::string_view key) {
  return line.starts_with(key) ? line.substr(key.size()) : earlier;
}

}  // namespace

std::string fileNameOf(std::size_t slot) { return "KSSetup" + std::to_string(slot) + ".INI"; }

fs::path pathOf(const fs::path& folder, const std::string& fileName) {
  fs::path exact = folder / fileName;
  std::error_code error;
  if (fs::exists(exact, error)) return exact;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
    const std::string name = entry.path().filename().string();
    if (upperCase(name) == upperCase(fileName)) return entry.path();
  }
  return exact;
}

SetupSummary summaryOf(const fs::path& folder, std::size_t slot) {
  const fs::path path = pathOf(folder, fileNameOf(slot));
  std::error_code error;
  SetupSummary setup;
  if (!fs::exists(path, error)) return setup;
  setup.isThere = true;
  std::string position = "-1";
  for (const std::string& line : linesOf(readWholeTextFile(path))) {
    setup.name = valueOr(setup.name, line, "SetupName = ");
    setup.codeFile = valueOr(setup.codeFile, line, "sFILE = ");
    position = valueOr(position, line, "Device.Index = ");
  }
  setup.devicePosition = clampedInt32(leadingNumber(position));
  return setup;
}

}  // namespace kestrel::setups
