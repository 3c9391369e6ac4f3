#include "simulator/chip_factory.h"

#include <algorithm>
#include <cctype>
#include <string>

#include "simulator/page_write_memory.h"
#include "simulator/serial_eeprom.h"
#include "simulator/uv_eprom.h"

namespace kestrel::sim {
namespace {

// Every family looks for the name, in upper case, among its own types.
using Maker = std::unique_ptr<Chip> (*)(std::string_view upperName);

std::unique_ptr<Chip> makeUvEprom(std::string_view upperName) {
  for (const UvEpromType& type : uvEpromTypes()) {
    if (type.name == upperName) return std::make_unique<UvEprom>(type);
  }
  return nullptr;
}

std::unique_ptr<Chip> makePageWriteMemory(std::string_view upperName) {
  for (const PageWriteType& type : pageWriteTypes()) {
    if (type.name == upperName) return std::make_unique<PageWriteMemory>(type);
  }
  return nullptr;
}

std::unique_ptr<Chip> makeSerialEeprom(std::string_view upperName) {
  for (const SerialEepromType& type : serialEepromTypes()) {
    if (type.name == upperName) return std::make_unique<SerialEeprom>(type);
  }
  return nullptr;
}

constexpr Maker kFamilies[]{&makeUvEprom, &makePageWriteMemory, &makeSerialEeprom};

}  // namespace

std::unique_ptr<Chip> makeChip(std::string_view typeName) {
  std::string upper(typeName);
  std::transform(upper.begin(), upper.end(), upper.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  for (const Maker make : kFamilies) {
    if (auto chip = make(upper)) return chip;
  }
  return nullptr;
}

std::vector<std::string_view> chipTypeNames() {
  std::vector<std::string_view> names;
  for (const UvEpromType& type : uvEpromTypes()) names.push_back(type.name);
  for (const PageWriteType& type : pageWriteTypes()) names.push_back(type.name);
  for (const SerialEepromType& type : serialEepromTypes()) names.push_back(type.name);
  return names;
}

}  // namespace kestrel::sim
