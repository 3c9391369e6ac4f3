#include "hardware/ports/port_discovery.h"

#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <optional>
#include <system_error>

#include "hardware/ports/guard.h"

namespace kestrel::ports {
namespace {

namespace fs = std::filesystem;

// Names in a folder, sorted; none when it cannot be read. Entries of /proc come and go.
std::vector<std::string> namesIn(const fs::path& folder) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator each(folder, error), end; !error && each != end;
       each.increment(error)) {
    names.push_back(each->path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string firstLineOf(const fs::path& file) {
  std::ifstream stream(file);
  std::string line;
  std::getline(stream, line);
  return line;
}

// The file has two decimal numbers: the base, and that of the extended registers.
std::optional<std::uint16_t> baseIn(const fs::path& file) {
  std::ifstream stream(file);
  unsigned base = 0;
  if (!(stream >> base) || base > 0xFFFF) return std::nullopt;
  return static_cast<std::uint16_t>(base);
}

// Folders are the registered drivers; the file "active" names the one that works now.
std::vector<std::string> driversIn(const fs::path& folder) {
  std::vector<std::string> drivers = namesIn(folder);
  std::erase(drivers, "active");
  return drivers;
}

bool isOpenIn(const fs::path& process, const std::string& device) {
  std::error_code error;
  for (const std::string& file : namesIn(process / "fd")) {
    if (fs::read_symlink(process / "fd" / file, error) == device) return true;
  }
  return false;
}

bool isNumber(const std::string& text) {
  return text.find_first_not_of("0123456789") == std::string::npos;
}

}  // namespace

bool ListedPort::isHeldByPrinterDriver() const {
  return std::find(drivers.begin(), drivers.end(), "lp") != drivers.end();
}

std::vector<ListedPort> listParallelPorts(const fs::path& root) {
  const fs::path folder = root / "proc/sys/dev/parport";
  std::vector<ListedPort> ports;
  // Besides the ports there is a folder "default", which has no address.
  for (const std::string& name : namesIn(folder)) {
    if (const auto base = baseIn(folder / name / "base-addr")) {
      ports.push_back({name, *base, driversIn(folder / name / "devices")});
    }
  }
  return ports;
}

bool isModuleLoaded(const fs::path& root, std::string_view module) {
  std::error_code error;
  return fs::exists(root / "sys/module" / module, error);
}

// One line with the state in brackets: "none [integrity] confidentiality".
bool isLockedDown(const fs::path& root) {
  const std::string states = firstLineOf(root / "sys/kernel/security/lockdown");
  return states.find('[') != std::string::npos && states.find("[none]") == std::string::npos;
}

std::string asHolder(const std::string& program, const std::string& process) {
  return program + ", process " + process;
}

std::string holderOf(const fs::path& root, const std::string& device) {
  const std::string own = std::to_string(getpid());
  std::string guard;
  for (const std::string& process : namesIn(root / "proc")) {
    const fs::path folder = root / "proc" / process;
    if (!isNumber(process) || process == own || !isOpenIn(folder, device)) continue;
    const std::string name = firstLineOf(folder / "comm");
    if (name != kGuardName) return asHolder(name, process);
    guard = asHolder(name, process);
  }
  return guard;
}

}  // namespace kestrel::ports
