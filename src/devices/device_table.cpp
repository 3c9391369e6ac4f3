#include "devices/device_table.h"

#include <algorithm>
#include <array>

#include "app/state/text_format.h"
#include "devices/data_sheets.h"
#include "platform/runtime_error.h"

namespace kestrel::devices {
namespace {

// Width of the name column in the list, in characters.
constexpr std::size_t kNameWidth = 30;

struct CatalogueRow {
  const char* name;
  const char* familyLetter;
  const char* familySubCode;
  int sizeKB;
  int reg1Fixed;
  int reg3Fixed;
  int vppClass;
  const char* listed;
};

// The fixed latch bits are the supply and idle levels of the chip in the 32-pin socket. Several
// chips share a family code on purpose; the 27C259 differs from the other 32 KB parts on purpose.
// clang-format off
constexpr auto kCatalogue = std::to_array<CatalogueRow>({
    // name                            letter sub   KB reg1 reg3 vpp listed
    {"Eprom 2716",                      "P", "1",    4,  32,  0, 3, "N"},
    {"Eprom 2732A",                     "P", "1",    4,  32,  0, 3, "Y"},
    {"Eprom 2732B",                     "P", "1",    4,  32,  0, 1, "Y"},
    {"Eprom 2732",                      "P", "1",    4,  32,  0, 3, "Y"},
    {"Eprom 27C32",                     "P", "1",    4,  32,  0, 3, "Y"},
    {"Eprom 2764",                      "P", "2",    8, 192,  2, 3, "Y"},
    {"Eprom 27C64",                     "P", "2",    8, 192,  2, 1, "Y"},
    {"Eprom 27128",                     "P", "3",   16, 192,  2, 3, "Y"},
    {"Eprom 27C128",                    "P", "3",   16, 192,  2, 1, "Y"},
    {"Eprom 27256",                     "P", "4",   32, 128,  2, 3, "Y"},
    {"Eprom 27C256",                    "P", "4",   32, 128,  2, 1, "Y"},
    {"Eprom 27C259",                    "P", "4",   32,   0,  2, 1, "Y"},
    {"Eprom 27C512",                    "P", "5",   64,   0,  2, 1, "Y"},
    {"Eprom 27C1001",                   "P", "6",  128,   0, 12, 1, "Y"},
    {"Eprom 27C010",                    "P", "6",  128,   0, 12, 1, "Y"},
    {"Eprom 27C2001",                   "P", "7",  256,   0, 12, 1, "Y"},
    {"Eprom 27C020",                    "P", "7",  256,   0, 12, 1, "Y"},
    {"Eprom 27C4001",                   "P", "8",  512,   0,  8, 1, "Y"},
    {"Eprom 27C040",                    "P", "8",  512,   0,  8, 1, "Y"},
    {"Eprom 27C801",                    "P", "9", 1024,   0,  0, 1, "Y"},
    {"Eprom 27C080",                    "P", "9", 1024,   0,  0, 1, "Y"},
    {"Eprom 27C080 OTP",                "P", "M", 1024,   0,  0, 1, "N"},
    {"Flash Atmel AT29C256",            "F", "A",   32, 128,  2, 0, "N"},
    {"Flash AMIC A29040",               "F", "L",  512,   0,  4, 0, "N"},
    {"Flash AMD AM29F010",              "F", "S",  128,   0,  4, 0, "N"},
    {"Flash AMD AM29F020",              "F", "R",  256,   0,  4, 0, "N"},
    {"Flash AMD AM29F040",              "F", "M",  512,   0,  4, 0, "N"},
    {"Flash EON EN29F040",              "F", "M",  512,   0,  4, 0, "N"},
    {"Flash Atmel AT29F040",            "F", "N",  512,   0,  4, 0, "N"},
    {"Flash Catalyst CAT28F001",        "F", "O",  128,   0, 12, 0, "N"},
    {"Flash Catalyst CAT28F010",        "F", "P",  128,   0, 12, 0, "N"},
    {"Flash Catalyst CAT28F020",        "F", "Q",  256,   0, 12, 0, "N"},
    {"Eeprom XICOR X28C256",            "E", "N",   32,  64,  2, 0, "Y"},
    {"Eeprom Catalyst CAT28C256",       "E", "O",   32,  64,  2, 0, "N"},
    {"Eeprom Catalyst CAT28C257",       "E", "P",   32,  64,  2, 0, "N"},
    {"Eeprom 24C08 Serial (8 pins)",    "S", "A",    1,   0,  0, 0, "Y"},
    {"Eeprom 24C16 Serial (8 pins)",    "S", "B",    2,   0,  0, 0, "Y"},
    {"Eeprom 24C32 Serial (8 pins)",    "S", "C",    4,   0,  0, 0, "Y"},
    {"Eeprom 24C256 Serial (8 pins)",   "S", "E",   32,   0,  0, 0, "N"},
    {"uC Atmel AT90S2313 Micro",        "M", "J", 1024,   0,  0, 0, "N"},
});
// clang-format on

std::string padded(std::string name) {
  name.resize(kNameWidth, ' ');
  return name;
}

}  // namespace

void BuildDeviceTable(CatalogueState& catalogue, ShellState& shell) {
  for (shell.LoopIndex = 1; const CatalogueRow& row : kCatalogue) {
    at(catalogue.DeviceTable, shell.LoopIndex) = {padded(row.name),
                                                  row.familyLetter,
                                                  row.familySubCode,
                                                  std::to_string(row.sizeKB),
                                                  std::to_string(row.reg1Fixed),
                                                  std::to_string(row.reg3Fixed),
                                                  std::to_string(row.vppClass),
                                                  row.listed};
    ++shell.LoopIndex;
  }
}

bool isOffered(std::string_view name, std::string_view listed, Algorithms algorithms) {
  if (algorithms == Algorithms::Classic) return listed == "Y";
  return isOffered(dataSheetOf(trimmed(name)));
}

void FillDeviceList(const CatalogueState& catalogue, Algorithms algorithms, DropDownList& list) {
  while (!list.items().empty()) list.removeFirst();
  const auto hasName = [](const auto& row) { return !row[kNameColumn].empty(); };
  const auto last =
      std::find_if(catalogue.DeviceTable.rbegin(), catalogue.DeviceTable.rend(), hasName).base();
  for (auto row = catalogue.DeviceTable.begin(); row != last; ++row) {
    const std::string& name = (*row)[kNameColumn];
    list.addItem(isOffered(name, (*row)[kListedColumn], algorithms) ? name : kNotAvailable + name);
  }
}

}  // namespace kestrel::devices
