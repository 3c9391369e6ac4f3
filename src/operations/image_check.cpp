#include "operations/image_check.h"

#include <string>

#include "devices/families.h"
#include "platform/runtime_error.h"

namespace kestrel::operations {
namespace {

constexpr std::int32_t kPageBytes = 256;

/// What is read is as long as the image, whatever the last file was.
class LengthForNow {
 public:
  LengthForNow(std::int32_t& length, std::int32_t now) : length_(length), before_(length) {
    length_ = now;
  }
  ~LengthForNow() { length_ = before_; }
  LengthForNow(const LengthForNow&) = delete;
  LengthForNow& operator=(const LengthForNow&) = delete;

 private:
  std::int32_t& length_;
  std::int32_t before_;
};

void add(ImageCheck::Result& result, std::int32_t at) {
  const auto address = narrowed<std::uint32_t>(at);
  ++result.bytes;
  if (!result.ranges.empty() && result.ranges.back().last + 1 == address) {
    result.ranges.back().last = address;
  } else {
    result.ranges.push_back({.first = address, .last = address});
  }
}

}  // namespace

bool ImageCheck::isWanted() const {
  return controls_.CheckChipFirst.isTicked() &&
         devices::isEprom(devices::familyOf(device_.FamilyCode));
}

std::optional<ImageCheck::Result> ImageCheck::run() {
  if (!isWanted()) return std::nullopt;
  const DeviceOperation operation = board_.operation();
  board_.lamps.DataFlowLampOn();
  reporting_.LogMessage("Checking whether the Chip can take the Image... Wait");
  Result result = readChip();
  report(result);
  board_.lamps.DataFlowLampOff();
  controls_.ProgressBar1.setValue(0);
  board_.bus.Reset();
  return result;
}

ImageCheck::Result ImageCheck::readChip() {
  image_.PrepareProgramBuffer();
  const LengthForNow length(buffers_.CodeLength, operation_.ProgramLength);
  shell_.ProgressStep = narrowed<std::int16_t>(operation_.ProgramLength / 100);
  shell_.ProgressCount = 0;
  walk_.begin();
  controls_.ProgressBar1.setValue(0);
  controls_.ProgressBar1.setMaximum(operation_.ProgramLength / kPageBytes);
  Result result;
  (void)walk_.readAll([&](std::int32_t address) {
    const unsigned wanted = at(operation_.ProgramBuffer, address);
    if ((wanted & ~unsigned{latches_.ReadByte}) != 0) add(result, address);
    return true;
  });
  return result;
}

void ImageCheck::report(const Result& result) {
  if (result.canBeProgrammed()) return reporting_.LogMessage("The Chip can take the Image");
  reporting_.LogMessage("The Chip cannot take the Image: " + std::to_string(result.bytes) +
                        " Bytes want a 0 to become a 1: " + images::rangesText(result.ranges));
}

}  // namespace kestrel::operations
