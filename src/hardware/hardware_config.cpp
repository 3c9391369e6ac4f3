#include "hardware/hardware_config.h"

#include "app/state/text_format.h"
#include "platform/atomic_file.h"
#include "platform/runtime_error.h"

namespace kestrel::hardware {
namespace {

constexpr std::string_view kFileName = "kestrel6.ini";
constexpr std::string_view kPortKey = "IO_PORT = ";
constexpr std::string_view kModelKey = "MODEL = ";

void readLine(PortState& state) {
  const std::string_view line = state.ConfigLine;
  if (line.starts_with(kPortKey)) {
    state.PortBase = leadingHex16(line.substr(kPortKey.size()));
    state.ConfigSeen += "PORT";
  } else if (line.starts_with(kModelKey)) {
    state.KestrelModel = roundedInt16(leadingNumber(line.substr(kModelKey.size())));
    state.ConfigSeen += "MODEL";
  }
}

}  // namespace

std::filesystem::path HardwareConfig::path() const { return folder_ / kFileName; }

void HardwareConfig::load(PortState& state) const {
  state.PortBase = 0;
  state.ConfigSeen.clear();
  state.ConfigPath = path().string();
  std::error_code ignored;
  if (!std::filesystem::exists(path(), ignored)) return;
  for (std::string& line : linesOf(readWholeTextFile(path()))) {
    state.ConfigLine = std::move(line);
    readLine(state);
  }
}

void HardwareConfig::save(const PortState& state, std::string_view dateAndTime) const {
  std::error_code ignored;  // a folder that cannot be made fails at the write, which names it
  std::filesystem::create_directories(folder_, ignored);
  writeFileAtomically(path(), hardwareConfigText(dateAndTime, state.PortBase, state.KestrelModel));
}

std::string hardwareConfigText(std::string_view dateAndTime, int port, int model) {
  std::string text = "[KESTREL6 SETUP]\r\nDATE = ";
  text.append(dateAndTime).append("\r\n");
  text.append(kPortKey).append(hexText(port)).append("\r\n");
  text.append(kModelKey).append(printForm(model)).append("\r\n");
  return text;
}

}  // namespace kestrel::hardware
