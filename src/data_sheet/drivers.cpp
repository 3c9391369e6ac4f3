#include "data_sheet/drivers.h"

#include "data_sheet/eprom.h"
#include "data_sheet/flash.h"
#include "data_sheet/page_eeprom.h"
#include "data_sheet/twelve_volt_flash.h"
#include "data_sheet/two_wire_eeprom.h"
#include "devices/families.h"

namespace kestrel::data_sheet {
namespace {

using devices::EpromSheet;
using Made = std::unique_ptr<ChipDriver>;

/// Makes the driver of a sheet; one overload for each kind of chip that has one.
struct Maker {
  const ChipChoice& chip;
  hardware::ChipBus& bus;

  Made operator()(const EpromSheet& sheet) const {
    return std::make_unique<Eprom>(chip, sheet, bus);
  }
  Made operator()(const devices::PageSheet& sheet) const {
    return std::make_unique<PageEeprom>(chip, sheet, bus);
  }
  Made operator()(const devices::SerialSheet& sheet) const {
    return std::make_unique<TwoWireEeprom>(chip, sheet, bus);
  }
  Made operator()(const devices::FlashSheet& sheet) const {
    return std::make_unique<Flash>(chip, sheet, bus);
  }
  Made operator()(const devices::TwelveVoltFlashSheet& sheet) const {
    return std::make_unique<TwelveVoltFlash>(chip, sheet, bus);
  }
  Made operator()(const devices::NotOffered& /*sheet*/) const { return nullptr; }
};

}  // namespace

bool Drivers::areChosen() const {
  return chosen_.algorithms == Algorithms::DataSheet &&
         devices::isOffered(devices::dataSheetOf(device_.DeviceName));
}

// 21 and 25 V reach only the chips that the catalogue gives them to.
int Drivers::vppVolts() const {
  const bool takesMore =
      devices::familyOf(device_.FamilyCode).takes21And25V && device_.VppClass == 3;
  return takesMore ? device_.VppVolts : 12;
}

std::unique_ptr<ChipDriver> Drivers::forDevice() const {
  const devices::DataSheet& sheet = *devices::dataSheetOf(device_.DeviceName);
  const ChipChoice chip{.sheet = sheet,
                        .sizeBytes = static_cast<std::uint32_t>(device_.DeviceSizeBytes),
                        .vppVolts = vppVolts(),
                        .protection = chosen_.protection,
                        .takesAnyCode = anyCode_.isTicked()};
  return std::visit(Maker{chip, bus_}, sheet.part);
}

}  // namespace kestrel::data_sheet
