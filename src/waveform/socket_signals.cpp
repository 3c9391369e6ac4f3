#include "waveform/socket_signals.h"

#include <algorithm>
#include <cstdlib>
#include <optional>

#include "hardware/registers.h"
#include "hardware/vpp_output.h"

namespace kestrel::waveform {
namespace {

// What each socket pin is connected to: latch and bit. The data lines, ground and supply have none.
struct Source {
  std::size_t socketPin;
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

/// The number of the data line in a socket pin.
std::optional<std::size_t> dataLineOf(int socketPin) {
  const auto* const found = std::ranges::find(kDataPins, socketPin);
  if (found == kDataPins.end()) return std::nullopt;
  return static_cast<std::size_t>(found - kDataPins.begin());
}

std::optional<std::size_t> addressBitOf(const std::string& name) {
  if (name.size() < 2 || name[0] != 'A' || name[1] < '0' || name[1] > '9') return std::nullopt;
  return static_cast<std::size_t>(std::atoi(name.c_str() + 1));
}

}  // namespace

SocketSignals::SocketSignals(VcdWriter& writer, const devices::ChipPins& pinout,
                             const Latches& latches)
    : writer_(writer) {
  constexpr int kSerialPins = 8;
  isSerial_ = pinout.count() == kSerialPins;
  declarePins(pinout);
  declareBus();
  takeSources();
  high_ = pins_.at(kSupplyPin);
  for (std::size_t latch = 0; latch < latches.size(); ++latch) load(latch, latches.at(latch));
}

void SocketSignals::declarePins(const devices::ChipPins& pinout) {
  struct Pin {
    int socketPin;
    std::string name;
  };
  std::vector<Pin> pins;
  std::vector<VcdWriter::Line> lines;
  std::array<std::optional<VcdWriter::Line>, kDataPins.size()> data;
  for (int pin = 1; pin <= pinout.count(); ++pin) {
    const std::string name = pinout.name(pin);
    const int socketPin = pinout.socketPin(pin);
    const VcdWriter::Line line = writer_.declare(name == "NC" ? name + std::to_string(pin) : name);
    if (const auto dataLine = dataLineOf(socketPin)) {
      data.at(*dataLine) = line;
    } else {
      lines.push_back(line);
      pins.push_back({.socketPin = socketPin, .name = name});
    }
  }
  for (const auto& line : data) {
    if (line) dataLines_.push_back(*line);
  }
  pinGroup_ = writer_.group(lines);
  std::uint32_t bit = 1U << lines.size();
  for (const Pin& pin : pins) {
    bit >>= 1U;
    Pins& here = pins_.at(static_cast<std::size_t>(pin.socketPin));
    here.lines = bit;
    if (const auto address = addressBitOf(pin.name); address && !isSerial_) {
      here.address = 1U << *address;
      addressWidth_ = std::max(addressWidth_, *address + 1);
    }
    if (pin.name == "/CE") enable_ |= bit;
    if (pin.name.starts_with("/OE")) outputEnable_ = bit;
    if (pin.name == "/WE") writeEnable_ = bit;
  }
  enable_ |= outputEnable_;
}

void SocketSignals::declareBus() {
  std::vector<VcdWriter::Line> data;
  if (!isSerial_) {
    std::vector<VcdWriter::Line> address = writer_.declareVector("address", addressWidth_);
    data = writer_.declareVector("data", kDataPins.size());
    address.push_back(writer_.declare("chip_drives_data"));
    addressGroup_ = writer_.group(address);
  }
  data.insert(data.end(), dataLines_.begin(), dataLines_.end());
  dataGroup_ = writer_.group(data);
  const VcdWriter::Line drive = writer_.declare("latch4_drives_data");
  voltage_ = writer_.declareReal("VPP_volts");
  std::vector<VcdWriter::Line> latches;
  for (std::size_t latch = 0; latch < latches_.size(); ++latch) {
    const auto lines = writer_.declareVector("latch" + std::to_string(latch), 8);
    latches.insert(latches.end(), lines.begin(), lines.end());
  }
  latches.push_back(drive);
  latchGroup_ = writer_.group(latches);
}

// The vector of the data lines has D7 first, the pins have D0 first.
void SocketSignals::takeSources() {
  for (const Source& source : kSources) {
    for (unsigned bits = 0; bits < reached_[source.latch].size(); ++bits) {
      Pins& pins = reached_[source.latch][bits];
      if ((bits >> source.bit & 1U) != 0) pins = pins | pins_.at(source.socketPin);
    }
  }
  for (unsigned byte = 0; byte < dataLevels_.size(); ++byte) {
    unsigned levels = byte;
    for (unsigned line = 0; line < kDataPins.size(); ++line) {
      levels = levels << 1U | (byte >> line & 1U);
    }
    dataLevels_[byte] = static_cast<std::uint16_t>(levels);
  }
}

bool SocketSignals::isClockHigh() const { return (latches_[3] & hardware::kChipDisable) != 0; }

bool SocketSignals::isDriven() const { return (latches_[3] & hardware::kDataLatchOff) == 0; }

void SocketSignals::load(std::size_t latch, std::uint8_t byte) {
  const unsigned changed = latches_[latch] ^ byte;
  latches_[latch] = byte;
  high_ = high_ ^ reached_[latch][changed];
  allLatches_ ^= std::uint64_t{changed} << (8 * (latches_.size() - 1 - latch));
}

void SocketSignals::takeVoltage(int model) {
  latch0_ = latches_[0];
  model_ = model;
  const auto vpp = hardware::vppOutput(latch0_, model);
  vpp_ = {};
  if (vpp && vpp->onPin1) vpp_ = vpp_ | pins_[1];
  if (vpp && vpp->onPin3) vpp_ = vpp_ | pins_[3];
  if (vpp && vpp->onPin24) vpp_ = vpp_ | pins_[24];
  // A voltage that is set by hand on the board is on, but its level is not known.
  constexpr double kSetByHand = 1.0;
  volts_ = vpp ? vpp->volts.value_or(kSetByHand) : 0.0;
}

void SocketSignals::show(int model) {
  if (latch0_ != latches_[0] || model_ != model) takeVoltage(model);
  const Pins pins = high_ | vpp_;
  writer_.set(pinGroup_, {.bits = pins.lines});
  writer_.setReal(voltage_, volts_);
  writer_.set(latchGroup_, {.bits = allLatches_ << 1U | (isDriven() ? 1U : 0U)});
  if (!isSerial_) {
    showBus(pins);
  } else if (isDriven()) {
    constexpr int kSdaLine = 7;
    showSda((latches_[4] >> kSdaLine & 1) != 0);
  }
}

void SocketSignals::showBus(Pins pins) {
  const bool chipDrives = doesChipDrive(pins.lines);
  writer_.set(addressGroup_, {.bits = std::uint64_t{pins.address} << 1U | (chipDrives ? 1U : 0U)});
  if (isDriven() && !chipDrives) {
    setData(latches_[4]);
  } else {  // what the chip drives is not known until it is read; what nobody drives floats
    writer_.set(dataGroup_, chipDrives ? kUnknown : kFloating);
  }
}

bool SocketSignals::doesChipDrive(std::uint32_t lines) const {
  const bool isEnabled = (lines & enable_) == 0;
  const bool isWritten = writeEnable_ != 0 && (lines & writeEnable_) == 0;
  return isEnabled && !isWritten && (vpp_.lines & outputEnable_) == 0;
}

void SocketSignals::showRead(std::uint8_t byte) {
  if (!isSerial_) setData(byte);
}

void SocketSignals::showSda(bool high) {
  const std::uint64_t lines = (std::uint64_t{1} << dataLines_.size()) - 1;
  writer_.set(dataGroup_, {.bits = high ? lines : 0});
}

}  // namespace kestrel::waveform
