#include "devices/chip_pins.h"

#include <algorithm>
#include <array>
#include <iomanip>
#include <sstream>

namespace kestrel::devices {
namespace {

using Name = std::string_view;

constexpr int kSerialPins = 8;
constexpr int kRows = kSocketPins / 2;

// What all byte-wide memories share: pins 1 to 23 of 24, and as many of the larger packages.
constexpr std::array<Name, 23> kCore{"A7", "A6",  "A5",  "A4",  "A3",  "A2", "A1", "A0",
                                     "D0", "D1",  "D2",  "GND", "D3",  "D4", "D5", "D6",
                                     "D7", "/CE", "A10", "/OE", "A11", "A9", "A8"};

/// The core with the pins before and behind it.
template <std::size_t Before, std::size_t Behind>
constexpr auto around(const std::array<Name, Before>& before,
                      const std::array<Name, Behind>& behind) {
  std::array<Name, Before + kCore.size() + Behind> pins{};
  auto next = std::ranges::copy(before, pins.begin()).out;
  next = std::ranges::copy(kCore, next).out;
  std::ranges::copy(behind, next);
  return pins;
}

constexpr auto package24() { return around(std::array<Name, 0>{}, std::array<Name, 1>{"VCC"}); }
constexpr auto package28(Name pin1, Name pin26, Name pin27) {
  return around(std::array<Name, 2>{pin1, "A12"}, std::array<Name, 3>{pin26, pin27, "VCC"});
}
constexpr auto package32(Name pin1, Name pin30, Name pin31) {
  return around(std::array<Name, 4>{pin1, "A16", "A15", "A12"},
                std::array<Name, 5>{"A13", "A14", pin30, pin31, "VCC"});
}
constexpr auto serialPins(Name pin1, Name pin2, Name pin3) {
  return std::array<Name, kSerialPins>{pin1, pin2, pin3, "GND", "SDA", "SCL", "WP", "VCC"};
}

constexpr auto kPins2732 = package24();
constexpr auto kPins2764 = package28("VPP", "NC", "/PGM");
constexpr auto kPins27128 = package28("VPP", "A13", "/PGM");
constexpr auto kPins27256 = package28("VPP", "A13", "A14");
constexpr auto kPins27512 = package28("A15", "A13", "A14");
constexpr auto kPins27010 = package32("VPP", "NC", "/PGM");
constexpr auto kPins27020 = package32("VPP", "A17", "/PGM");
constexpr auto kPins27040 = package32("VPP", "A17", "A18");
constexpr auto kPins27080 = package32("A19", "A17", "A18");
constexpr auto kPins29256 = package28("/WE", "A13", "A14");
constexpr auto kPins29010 = package32("NC", "NC", "/WE");
constexpr auto kPins29020 = package32("NC", "A17", "/WE");
constexpr auto kPins29040 = package32("A18", "A17", "/WE");
constexpr auto kPins28001 = package32("VPP", "/RP", "/WE");
constexpr auto kPins28010 = package32("VPP", "NC", "/WE");
constexpr auto kPins28020 = package32("VPP", "A17", "/WE");
constexpr auto kPins28256 = package28("A14", "A13", "/WE");
constexpr auto kPins2408 = serialPins("NC", "NC", "A2");
constexpr auto kPins2416 = serialPins("NC", "NC", "NC");
constexpr auto kPins2432 = serialPins("A0", "A1", "A2");
constexpr auto kPins24256 = serialPins("A0", "A1", "NC");

struct Row {
  std::string_view family;
  ChipPins pinout;
};

constexpr int kOe24 = 20;  // /OE of 24, 28 and 32 pins
constexpr int kOe28 = 22;
constexpr int kOe32 = 24;

constexpr std::array kChipPins{
    Row{"P1", {kPins2732, kOe24}},  Row{"P2", {kPins2764, 1}},      Row{"P3", {kPins27128, 1}},
    Row{"P4", {kPins27256, 1}},     Row{"P5", {kPins27512, kOe28}}, Row{"P6", {kPins27010, 1}},
    Row{"P7", {kPins27020, 1}},     Row{"P8", {kPins27040, 1}},     Row{"P9", {kPins27080, kOe32}},
    Row{"PM", {kPins27080, kOe32}}, Row{"FA", {kPins29256}},        Row{"FL", {kPins29040}},
    Row{"FS", {kPins29010}},        Row{"FR", {kPins29020}},        Row{"FM", {kPins29040}},
    Row{"FN", {kPins29040}},        Row{"FO", {kPins28001, 1}},     Row{"FP", {kPins28010, 1}},
    Row{"FQ", {kPins28020, 1}},     Row{"EN", {kPins28256}},        Row{"EO", {kPins28256}},
    Row{"EP", {kPins28256}},        Row{"SA", {kPins2408}},         Row{"SB", {kPins2416}},
    Row{"SC", {kPins2432}},         Row{"SE", {kPins24256}},
};

/// Rows of the socket that stay free between its pin 1 and the chip's. The board wires SDA and SCL
/// to data line 7 and /CE: that puts the 8 pins in the middle.
int rowsAbove(const ChipPins& pinout) {
  constexpr int kAboveSerialChip = 8;
  if (pinout.count() == kSerialPins) return kAboveSerialChip;
  return (kSocketPins - pinout.count()) / 2;
}

int rowsBelow(const ChipPins& pinout) { return kRows - rowsAbove(pinout) - pinout.count() / 2; }

std::string rows(int count) { return std::to_string(count) + (count == 1 ? " row" : " rows"); }

/// One half of a line: what stands in a socket pin, the name outside, the number at the body.
std::string half(const ChipPins& pinout, int socketPin, bool isLeft) {
  constexpr int kNameWidth = 8;
  constexpr int kNumberWidth = 2;
  const int pin = pinout.pinInSocket(socketPin);
  std::ostringstream text;
  const std::string name = pin == 0 ? "" : pinout.name(pin);
  const std::string number = pin == 0 ? "" : std::to_string(pin);
  if (isLeft) {
    text << std::right << std::setw(kNameWidth) << name << ' ' << std::setw(kNumberWidth) << number;
  } else {
    text << std::left << std::setw(kNumberWidth) << number << ' ' << std::setw(kNameWidth) << name;
  }
  return text.str();
}

std::string body(const ChipPins& pinout, int row) {
  const int below = row - rowsAbove(pinout);
  if (below < 0 || below >= pinout.count() / 2) return "        ";
  if (below == 0) return " |--U--|";
  return below == pinout.count() / 2 - 1 ? " |_____|" : " |     |";
}

}  // namespace

std::string ChipPins::name(int pin) const {
  const std::string name(pins[static_cast<std::size_t>(pin - 1)]);
  return pin == vppPin && name != "VPP" ? name + "/VPP" : name;
}

int ChipPins::socketPin(int pin) const {
  const bool isLeft = pin <= count() / 2;
  const int above = rowsAbove(*this);
  return isLeft ? above + pin : kSocketPins - above - (count() - pin);
}

int ChipPins::pinInSocket(int socketPin) const {
  for (int pin = 1; pin <= count(); ++pin) {
    if (this->socketPin(pin) == socketPin) return pin;
  }
  return 0;
}

ChipPins chipPinsOf(std::string_view family) {
  const auto* const found = std::ranges::find(kChipPins, family, &Row::family);
  return found == kChipPins.end() ? ChipPins{} : found->pinout;
}

std::string placeInSocket(const ChipPins& pinout) {
  if (pinout.count() == 0) return "not known";
  std::string place = "pin 1 in socket pin " + std::to_string(pinout.socketPin(1));
  if (rowsAbove(pinout) > 0) place += ", " + rows(rowsAbove(pinout)) + " free above it";
  if (rowsBelow(pinout) > 0) place += ", " + rows(rowsBelow(pinout)) + " free below it";
  return place;
}

std::string socketDrawing(const ChipPins& pinout) {
  if (pinout.count() == 0) return {};
  std::ostringstream text;
  text << "     +-------------- lever --------------+\n";
  for (int row = 0; row < kRows; ++row) {
    const int left = row + 1;
    const int right = kSocketPins - row;
    text << std::setw(4) << left << " |" << half(pinout, left, true) << body(pinout, row) << ' '
         << half(pinout, right, false) << "    | " << right << '\n';
  }
  text << "     +-----------------------------------+\n";
  return text.str();
}

}  // namespace kestrel::devices
