#include "waveform/socket_signals.h"

#include <cstdlib>

#include "hardware/registers.h"
#include "hardware/vpp_output.h"

namespace kestrel::waveform {
namespace {

// What each socket pin is connected to: latch and bit. The data lines, ground and supply have none.
struct Source {
  int socketPin;
  std::size_t latch;
  int bit;
};
constexpr std::array kSources{
    Source{1, 3, 3},  Source{2, 3, 0},  Source{3, 1, 7},  Source{4, 1, 4},  Source{5, 2, 7},
    Source{6, 2, 6},  Source{7, 2, 5},  Source{8, 2, 4},  Source{9, 2, 3},  Source{10, 2, 2},
    Source{11, 2, 1}, Source{12, 2, 0}, Source{22, 3, 7}, Source{23, 1, 2}, Source{24, 0, 6},
    Source{25, 1, 3}, Source{26, 1, 1}, Source{27, 1, 0}, Source{28, 1, 5}, Source{29, 1, 6},
    Source{30, 3, 1}, Source{31, 3, 2}};
constexpr std::array kDataPins{13, 14, 15, 17, 18, 19, 20, 21};  // D0 first
constexpr int kSupplyPin = 32;
constexpr std::string_view kFloating = "zzzzzzzz";
constexpr std::string_view kUnknown = "xxxxxxxx";

constexpr std::uint32_t mask(int socketPin) { return 1U << (socketPin - 1); }

std::uint32_t levelsOf(const Latches& latches) {
  std::uint32_t levels = mask(kSupplyPin);
  for (const Source& source : kSources) {
    if ((latches[source.latch] >> source.bit & 1) != 0) levels |= mask(source.socketPin);
  }
  return levels;
}

std::uint32_t pinsOf(const hardware::VppOutput& vpp) {
  constexpr int kPin1 = 1;
  constexpr int kPin3 = 3;
  constexpr int kPin24 = 24;
  return (vpp.onPin1 ? mask(kPin1) : 0) | (vpp.onPin3 ? mask(kPin3) : 0) |
         (vpp.onPin24 ? mask(kPin24) : 0);
}

/// The number of the data line in a socket pin, or -1.
int dataLineOf(int socketPin) {
  for (std::size_t line = 0; line < kDataPins.size(); ++line) {
    if (kDataPins.at(line) == socketPin) return static_cast<int>(line);
  }
  return -1;
}

std::optional<int> addressBitOf(const std::string& name) {
  if (name.size() < 2 || name[0] != 'A' || name[1] < '0' || name[1] > '9') return std::nullopt;
  return std::atoi(name.c_str() + 1);
}

}  // namespace

SocketSignals::SocketSignals(VcdWriter& writer, const devices::ChipPins& pinout) : writer_(writer) {
  constexpr int kSerialPins = 8;
  isSerial_ = pinout.count() == kSerialPins;
  declarePins(pinout);
  if (!isSerial_) {
    address_ = writer.declare("address", static_cast<int>(addressPins_.size()));
    data_ = writer.declare("data", static_cast<int>(kDataPins.size()));
    chipDrives_ = writer.declare("chip_drives_data");
  }
  latchDrives_ = writer.declare("latch4_drives_data");
  vpp_ = writer.declareReal("VPP_volts");
  for (std::size_t latch = 0; latch < latchSignals_.size(); ++latch) {
    latchSignals_.at(latch) = writer.declare("latch" + std::to_string(latch), 8);
  }
}

void SocketSignals::declarePins(const devices::ChipPins& pinout) {
  for (int pin = 1; pin <= pinout.count(); ++pin) {
    const std::string name = pinout.name(pin);
    const int socketPin = pinout.socketPin(pin);
    const VcdWriter::Signal signal =
        writer_.declare(name == "NC" ? name + std::to_string(pin) : name);
    if (const int line = dataLineOf(socketPin); line >= 0) {
      dataLines_.at(static_cast<std::size_t>(line)) = signal;
    } else {
      pins_.push_back({.socketPin = socketPin, .signal = signal});
    }
    if (name == "/CE") chipEnable_ = mask(socketPin);
    if (name.starts_with("/OE")) outputEnable_ = mask(socketPin);
    if (name == "/WE") writeEnable_ = mask(socketPin);
    if (const auto bit = addressBitOf(name); bit && !isSerial_) {
      if (addressPins_.size() <= static_cast<std::size_t>(*bit)) {
        addressPins_.resize(static_cast<std::size_t>(*bit) + 1);
      }
      addressPins_[static_cast<std::size_t>(*bit)] = socketPin;
    }
  }
}

bool SocketSignals::clockOf(const Latches& latches) {
  return (latches[3] & hardware::kChipDisable) != 0;
}

bool SocketSignals::isDriven(const Latches& latches) {
  return (latches[3] & hardware::kDataLatchOff) == 0;
}

void SocketSignals::show(const Latches& latches, int model) {
  const auto vpp = hardware::vppOutput(latches[0], model);
  const std::uint32_t levels = levelsOf(latches) | (vpp ? pinsOf(*vpp) : 0);
  showPins(levels);
  // A voltage that is set by hand on the board is on, but its level is not known.
  constexpr double kSetByHand = 1.0;
  writer_.setReal(vpp_, vpp ? vpp->volts.value_or(kSetByHand) : 0.0);
  for (std::size_t latch = 0; latch < latches.size(); ++latch) {
    writer_.set(latchSignals_.at(latch), latches.at(latch));
  }
  writer_.set(latchDrives_, isDriven(latches) ? 1U : 0U);
  if (isSerial_) {
    constexpr int kSdaLine = 7;
    if (isDriven(latches)) showSda((latches[4] >> kSdaLine & 1) != 0);
    return;
  }
  unsigned address = 0;
  for (std::size_t bit = 0; bit < addressPins_.size(); ++bit) {
    const int socketPin = addressPins_[bit];
    if (socketPin != 0 && (levels & mask(socketPin)) != 0) address |= 1U << bit;
  }
  writer_.set(address_, address);
  const bool chipDrives = doesChipDrive(levels, vpp ? pinsOf(*vpp) : 0);
  writer_.set(chipDrives_, chipDrives ? 1U : 0U);
  if (isDriven(latches)) {
    chipDrives ? setData(kUnknown) : setData(latches[4]);
  } else {
    setData(chipDrives ? kUnknown : kFloating);
  }
}

bool SocketSignals::doesChipDrive(std::uint32_t levels, std::uint32_t vpp) const {
  const bool isEnabled = (levels & (chipEnable_ | outputEnable_)) == 0;
  const bool isWritten = writeEnable_ != 0 && (levels & writeEnable_) == 0;
  return isEnabled && !isWritten && (vpp & outputEnable_) == 0;
}

void SocketSignals::showPins(std::uint32_t levels) {
  for (const Pin& pin : pins_) {
    writer_.set(pin.signal, (levels & mask(pin.socketPin)) != 0 ? 1U : 0U);
  }
}

void SocketSignals::setData(std::string_view digits) {
  writer_.set(data_, digits);
  for (std::size_t line = 0; line < dataLines_.size(); ++line) {
    if (dataLines_.at(line)) writer_.set(*dataLines_.at(line), digits.substr(7 - line, 1));
  }
}

void SocketSignals::setData(std::uint8_t byte) {
  std::array<char, 8> digits{};
  for (std::size_t line = 0; line < digits.size(); ++line) {
    digits.at(7 - line) = (byte >> line & 1) != 0 ? '1' : '0';
  }
  setData(std::string_view(digits.data(), digits.size()));
}

void SocketSignals::showRead(std::uint8_t byte) {
  if (!isSerial_) setData(byte);
}

void SocketSignals::showSda(bool high) {
  for (const auto& line : dataLines_) {
    if (line) writer_.set(*line, high ? 1U : 0U);
  }
}

}  // namespace kestrel::waveform
