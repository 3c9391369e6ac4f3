#include "app/work/device_catalogue.h"

#include <algorithm>
#include <array>
#include <functional>
#include <iomanip>
#include <memory>
#include <ostream>
#include <sstream>
#include <utility>

#include "app/launch/option_values.h"
#include "app/state/programmer_state.h"
#include "app/state/text_format.h"
#include "devices/chip_pins.h"
#include "devices/data_sheets.h"
#include "devices/device_table.h"
#include "devices/families.h"
#include "devices/remarks.h"
#include "platform/runtime_error.h"

namespace kestrel::work {
namespace {

using Device = DeviceCatalogue::Device;
using DeviceRow = decltype(ProgrammerState::DeviceTable)::value_type;
using Fits = bool (*)(const std::string& name, const std::string& text);

std::vector<std::string> wordsOf(const std::string& name) {
  std::istringstream stream(name);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

bool isName(const std::string& name, const std::string& text) { return name == text; }

bool isWord(const std::string& name, const std::string& text) {
  return std::ranges::count(wordsOf(name), text) > 0;
}

bool isPart(const std::string& name, const std::string& text) {
  return name.find(text) != std::string::npos;
}

constexpr std::array<Fits, 3> kWaysToFit{isName, isWord, isPart};  // the best first

/// The number of characters to change, add or leave out.
std::size_t distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i);
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t changed = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, changed});
    }
  }
  return row.back();
}

bool isNear(const std::string& name, const std::string& text) {
  constexpr std::size_t kTypingErrors = 2;
  return text.size() > kTypingErrors && std::ranges::any_of(wordsOf(name), [&](const auto& word) {
           return distance(word, text) <= kTypingErrors;
         });
}

std::vector<const Device*> fitting(const std::vector<Device>& devices, std::string_view text,
                                   Fits fits, const std::function<bool(const Device&)>& isWanted) {
  std::vector<const Device*> found;
  for (const Device& device : devices) {
    if (isWanted(device) && fits(upperCase(device.name), upperCase(text))) {
      found.push_back(&device);
    }
  }
  return found;
}

std::string namesOf(const std::vector<const Device*>& devices) {
  std::string names;
  for (const Device* const device : devices) {
    names += (names.empty() ? "\"" : ", \"") + device->name + "\"";
  }
  return names;
}

/// The word with the first digit.
std::string numberOf(const std::string& name) {
  for (const std::string& word : wordsOf(name)) {
    if (word.find_first_of("0123456789") != std::string::npos) return word;
  }
  return name;
}

std::string packageOf(const devices::ChipPins& pinout) {
  return pinout.count() == 0 ? "not known" : std::to_string(pinout.count()) + " pins";
}

Device deviceOf(std::int32_t position, const DeviceRow& row) {
  const auto vppClass = narrowed<std::int16_t>(std::stoi(row[devices::kVppClassColumn]));
  const std::string name(trimmed(row[devices::kNameColumn]));
  return {.position = position,
          .name = name,
          .shortName = numberOf(name),
          .family = row[devices::kLetterColumn] + row[devices::kSubCodeColumn],
          .isOffered = devices::isOffered(name, row[devices::kListedColumn], Algorithms::Classic),
          .isOfferedByDataSheet =
              devices::isOffered(name, row[devices::kListedColumn], Algorithms::DataSheet),
          .sizeKB = std::stoi(row[devices::kSizeKBColumn]),
          .vppClass = vppClass,
          .voltages = voltagesOf(vppClass)};
}

}  // namespace

std::string voltagesOf(std::int16_t vppClass) {
  if (vppClass == 0) return "5 V";
  if (vppClass == 1) return "12.5 V";
  return vppClass == 2 ? "12.5, 21 V" : "12.5, 21, 25 V";
}

std::string voltageText(std::size_t button) {
  static constexpr std::array<const char*, 4> kTexts{"5 V", "12.5 V", "21 V", "25 V"};
  return kTexts.at(button);
}

DeviceCatalogue::DeviceCatalogue() {
  const auto state = std::make_unique<ProgrammerState>();
  devices::BuildDeviceTable(*state, *state);
  for (std::int32_t position = 0; const auto& row : state->DeviceTable) {
    if (!row[devices::kNameColumn].empty()) devices_.push_back(deviceOf(position, row));
    ++position;
  }
}

const Device& DeviceCatalogue::find(std::string_view text, Algorithms algorithms) const {
  const auto isOffered = [=](const Device& device) { return device.isOfferedWith(algorithms); };
  for (const Fits fits : kWaysToFit) {
    const auto found = fitting(devices_, text, fits, isOffered);
    if (found.size() == 1) return *found.front();
    if (found.size() > 1) {
      throw launch::UsageError("-d: \"" + std::string(text) + "\" fits " +
                               std::to_string(found.size()) + " devices: " + namesOf(found) +
                               "; give more of the name");
    }
  }
  refuse(text, algorithms);
}

void DeviceCatalogue::refuse(std::string_view text, Algorithms algorithms) const {
  const auto isOffered = [=](const Device& device) { return device.isOfferedWith(algorithms); };
  const auto isNotOffered = [=](const Device& device) { return !isOffered(device); };
  const std::string quoted = "-d: \"" + std::string(text) + "\"";
  for (const Fits fits : kWaysToFit) {
    const auto found = fitting(devices_, text, fits, isNotOffered);
    if (found.empty()) continue;
    const bool isClassic = algorithms == Algorithms::Classic;
    const bool isOfferedOtherwise =
        isClassic && std::ranges::any_of(found, &Device::isOfferedByDataSheet);
    const std::string_view reason = devices::whyNoDataSheet(found.front()->name);
    if (!isClassic && found.size() == 1 && !reason.empty()) {
      throw launch::UsageError(quoted + " cannot be had: " + std::string(reason));
    }
    throw launch::UsageError(quoted + " is in the list but not available (N/A): " + namesOf(found) +
                             (isOfferedOtherwise ? "; --algorithms datasheet has it"
                                                 : "; kestrel-cli devices lists those that are"));
  }
  const auto near = fitting(devices_, text, isNear, isOffered);
  throw launch::UsageError(quoted + " fits no device" +
                           (near.empty() ? "" : "; perhaps you mean " + namesOf(near)) +
                           "; kestrel-cli devices lists them all");
}

void DeviceCatalogue::print(Algorithms algorithms, std::ostream& out) const {
  for (const Device& device : devices_) {
    out << std::left << std::setw(38)
        << (device.isOfferedWith(algorithms) ? "" : devices::kNotAvailable) + device.name
        << std::right << std::setw(5) << device.sizeKB << " KB   " << device.voltages << '\n';
  }
}

void DeviceCatalogue::printNames(std::ostream& out, Algorithms algorithms) const {
  for (const Device& device : devices_) {
    if (device.isOfferedWith(algorithms)) out << device.shortName << '\n';
  }
}

void DeviceCatalogue::print(const Device& device, Algorithms algorithms, std::ostream& out) {
  constexpr int kBytesPerKB = 1024;
  const devices::Family& family = devices::familyOf(device.family);
  const devices::ChipPins pinout = devices::chipPinsOf(device.family);
  out << device.name << '\n'
      << "Family:    " << devices::kindOf(family) << " (" << device.family << ")\n"
      << "Size:      " << device.sizeKB * kBytesPerKB << " bytes\n"
      << "Package:   " << packageOf(pinout) << '\n'
      << "Socket:    " << devices::placeInSocket(pinout) << '\n'
      << "Voltages:  " << device.voltages << '\n';
  const bool isClassic = algorithms == Algorithms::Classic;
  const std::string voltage = devices::usualVoltage(device.name);
  if (!voltage.empty()) out << "Usual VPP: " << voltage << '\n';
  const std::string_view limit = devices::classicLimit(device.name);
  if (isClassic && !limit.empty()) {
    out << "Classic:   " << limit << "\n           (not so with --algorithms datasheet)\n";
  }
  const std::string_view voltageLimit = devices::voltageLimit(family, device.vppClass);
  if (!voltageLimit.empty()) out << "Remark:    " << voltageLimit << '\n';
  for (const auto remark : {devices::whyNoBlankCheck(family), devices::whyNoErase(family),
                            devices::whyNoDisplay(family)}) {
    if (isClassic && !remark.empty()) out << "Remark:    " << remark << '\n';
  }
  if (pinout.count() > 0) out << '\n' << devices::socketDrawing(pinout);
}

}  // namespace kestrel::work
