#include "operations/programming_facts.h"

#include <array>
#include <filesystem>
#include <iomanip>
#include <sstream>
#include <string>

#include "app/state/text_format.h"
#include "devices/data_sheets.h"
#include "devices/families.h"
#include "platform/file_names.h"
#include "platform/runtime_error.h"

namespace kestrel::operations {
namespace {

constexpr int kAnyVoltageClass = 3;  // the user chooses between 12.5, 21 and 25 V
constexpr double kUsualVolts = 12.5;

std::string bytes(std::int32_t count) {
  return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

Fact sourceFact(const SelectionState& device, const BufferState& buffers) {
  const CodeOrigin& from = buffers.CodeFrom;
  const auto file = [&] {
    return shownName(std::filesystem::path(from.name).filename().string()) + ", " +
           bytes(buffers.CodeImageBytes);
  };
  switch (from.source) {
    case CodeSource::File:
      return {.text = "Image: " + file()};
    case CodeSource::Import:
      return {.text = "Image: imported from " + file()};
    case CodeSource::Chip:
      return {.text = "Image: read from " + from.name,
              .isWarning = from.name != trimmed(device.DeviceName)};
    case CodeSource::Erased:
      return {.text = "Image: the erased buffer", .isWarning = true};
    case CodeSource::Start:
      break;
  }
  return {.text = "Image: the buffer as it stands, no file was opened", .isWarning = true};
}

Fact imageFact(const SelectionState& device, const BufferState& buffers) {
  Fact fact = sourceFact(device, buffers);
  if (buffers.CodeChanged) fact.text += ", changed in the buffer";
  return fact;
}

std::vector<Fact> sizeFacts(const SelectionState& device, const BufferState& buffers,
                            Algorithms algorithms) {
  const CodeSource source = buffers.CodeFrom.source;
  if (source != CodeSource::File && source != CodeSource::Import) return {};
  const std::int32_t more = buffers.CodeImageBytes - device.DeviceSizeBytes;
  if (more > 0) {
    return {{.text = "The file is longer than the chip: the last " + bytes(more) + " are left out",
             .isWarning = true}};
  }
  if (more == 0) return {};
  const std::int32_t kept = devices::bytesKept(devices::familyOf(device.FamilyCode), algorithms,
                                               device.DeviceSizeBytes, buffers.CodeLength);
  const std::string last = "The file is shorter than the chip: the last ";
  return {{.text = kept > 0 ? last + bytes(kept) + " stay as they are"
                            : last + bytes(-more) + " get what stands in the buffer",
           .isWarning = true}};
}

Fact laneFact(const Controls& controls) {
  const auto lane = [](const char* name) -> Fact {
    return {.text = std::string("Only the ") + name + " bytes, into the first half of the chip",
            .isWarning = true};
  };
  if (controls.HiLow_button[1].value()) return lane("odd");
  if (controls.HiLow_button[2].value()) return lane("even");
  return {.text = "All bytes of the buffer"};
}

Fact voltageFact(const SelectionState& device) {
  const std::optional<double> volts = voltageToApply(device);
  if (!volts) return {.text = "Voltage: 5 V alone"};
  std::ostringstream text;
  text << "Programming voltage: " << *volts << " V";
  const std::optional<double> usual = devices::usualVpp(trimmed(device.DeviceName));
  const bool isUsual = usual.value_or(kUsualVolts) == *volts;
  if (!isUsual) text << "; usual for this device: " << usual.value_or(kUsualVolts) << " V";
  return {.text = text.str(), .isWarning = !isUsual};
}

}  // namespace

std::optional<double> voltageToApply(const SelectionState& device) {
  const devices::Family& family = devices::familyOf(device.FamilyCode);
  const devices::DataSheet* const sheet = devices::dataSheetOf(trimmed(device.DeviceName));
  const bool sheetWantsIt = sheet != nullptr && sheet->wiring.vpp != devices::VppPin::None;
  if (family.vppPin == devices::VppPin::None && !sheetWantsIt) return std::nullopt;
  const bool isChosen = family.takes21And25V && device.VppClass == kAnyVoltageClass;
  if (isChosen && device.VppVolts > kUsualVolts) return device.VppVolts;
  return kUsualVolts;
}

std::vector<Fact> programmingFacts(const SelectionState& device, const BufferState& buffers,
                                   const Controls& controls, Algorithms algorithms) {
  std::vector<Fact> facts{{.text = "Device: " + std::string(trimmed(device.DeviceName)) + ", " +
                                   bytes(device.DeviceSizeBytes)},
                          imageFact(device, buffers)};
  const std::vector<Fact> sizes = sizeFacts(device, buffers, algorithms);
  facts.insert(facts.end(), sizes.begin(), sizes.end());
  facts.push_back(laneFact(controls));
  facts.push_back(voltageFact(device));
  const bool byDataSheet = algorithms == Algorithms::DataSheet;
  facts.push_back({.text = byDataSheet ? "By the chip's data sheet" : "By the classic procedures"});
  const bool isVerified = controls.VerifyAfterProgramming.isTicked();
  facts.push_back({.text = isVerified ? "Verified afterwards" : "Not verified afterwards"});
  return facts;
}

Fact checkFact(const ImageCheck::Result& check) {
  if (check.canBeProgrammed()) return {.text = "The chip was read: it can take the image"};
  return {.text = "The chip cannot take the image: a 0 would have to become a 1 in " +
                  bytes(narrowed<std::int32_t>(check.bytes)) + " (" +
                  images::rangesText(check.ranges) + "). Erase it first",
          .isWarning = true};
}

}  // namespace kestrel::operations
