#include "simulator/chip_factory.h"

#include <algorithm>
#include <cctype>
#include <string>

#include "simulator/page_write_memory.h"
#include "simulator/parallel_flash.h"
#include "simulator/serial_eeprom.h"
#include "simulator/twelve_volt_flash.h"
#include "simulator/uv_eprom.h"

namespace kestrel::sim {
namespace {

// Looks for the name, in upper case, among the types of one family.
template <typename Family, typename Types>
std::unique_ptr<Chip> makeFrom(const Types& types, std::string_view upperName) {
  for (const auto& type : types) {
    if (type.name == upperName) return std::make_unique<Family>(type);
  }
  return nullptr;
}

template <typename Types>
void addNames(std::vector<std::string_view>& names, const Types& types) {
  for (const auto& type : types) names.push_back(type.name);
}

}  // namespace

std::unique_ptr<Chip> makeChip(std::string_view typeName) {
  std::string upper(typeName);
  std::transform(upper.begin(), upper.end(), upper.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  if (auto chip = makeFrom<UvEprom>(uvEpromTypes(), upper)) return chip;
  if (auto chip = makeFrom<PageWriteMemory>(pageWriteTypes(), upper)) return chip;
  if (auto chip = makeFrom<SerialEeprom>(serialEepromTypes(), upper)) return chip;
  if (auto chip = makeFrom<ParallelFlash>(parallelFlashTypes(), upper)) return chip;
  return makeFrom<TwelveVoltFlash>(twelveVoltFlashTypes(), upper);
}

std::vector<std::string_view> chipTypeNames() {
  std::vector<std::string_view> names;
  addNames(names, uvEpromTypes());
  addNames(names, pageWriteTypes());
  addNames(names, serialEepromTypes());
  addNames(names, parallelFlashTypes());
  addNames(names, twelveVoltFlashTypes());
  return names;
}

}  // namespace kestrel::sim
