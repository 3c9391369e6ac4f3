#include "link/serial_devices.h"

#include <algorithm>
#include <fstream>
#include <system_error>

namespace kestrel::link {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> entriesOf(const fs::path& folder) {
  std::vector<fs::path> entries;
  std::error_code error;
  for (fs::directory_iterator each(folder, error), end; !error && each != end;
       each.increment(error)) {
    entries.push_back(each->path());
  }
  std::sort(entries.begin(), entries.end());
  return entries;
}

bool isUsbLine(const std::string& name) {
  return name.starts_with("ttyACM") || name.starts_with("ttyUSB");
}

// The link in by-id whose target has this name.
fs::path lastingName(const fs::path& root, const std::string& name) {
  std::error_code error;
  for (const fs::path& each : entriesOf(root / "dev/serial/by-id")) {
    if (fs::read_symlink(each, error).filename() == name) return each.filename();
  }
  return {};
}

// "product" stands in the folder of the USB device, one or two above that of the interface.
std::string productOf(const fs::path& root, const std::string& name) {
  std::error_code error;
  fs::path folder = fs::canonical(root / "sys/class/tty" / name / "device", error);
  for (int i = 0; i < 3 && !folder.empty(); ++i, folder = folder.parent_path()) {
    std::ifstream file(folder / "product");
    std::string line;
    if (std::getline(file, line)) return line;
  }
  return {};
}

}  // namespace

std::vector<SerialDevice> listSerialDevices(const fs::path& root) {
  std::vector<SerialDevice> devices;
  for (const fs::path& each : entriesOf(root / "sys/class/tty")) {
    const std::string name = each.filename().string();
    if (!isUsbLine(name)) continue;
    SerialDevice found{.device = "/dev/" + name, .name = {}, .product = productOf(root, name)};
    const fs::path lasting = lastingName(root, name);
    found.name = lasting.empty() ? found.device : "/dev/serial/by-id/" + lasting.string();
    devices.push_back(std::move(found));
  }
  return devices;
}

}  // namespace kestrel::link
