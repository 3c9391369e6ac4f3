#include "operations/image_check.h"

#include <string>

#include "data_sheet/chip_driver.h"
#include "devices/families.h"
#include "display/hex_line.h"
#include "platform/runtime_error.h"

namespace kestrel::operations {
namespace {

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
  controls_.ProgressBar1.setMaximum(operation_.ProgramLength / display::kPageBytes);
  Result result;
  (void)walk_.readAll([&](std::int32_t address) {
    const std::uint8_t wanted = at(operation_.ProgramBuffer, address);
    if (data_sheet::canBecome(latches_.ReadByte, wanted)) return true;
    ++result.bytes;
    images::addAddress(result.ranges, narrowed<std::uint32_t>(address));
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
