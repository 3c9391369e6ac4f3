#include "data_sheet/two_wire_eeprom.h"

#include <array>
#include <vector>

#include "app/state/text_format.h"

namespace kestrel::data_sheet {
namespace {

constexpr unsigned kSelect = 0xA0;
constexpr unsigned kRead = 0x01;
constexpr std::size_t kMostPageBytes = 64;

constexpr std::int64_t kAcknowledgePollUs = 100;

Outcome sdaStaysLow() {
  return Outcome::failed(
      "the data line of the chip stays low: pins 1 to 4 go into socket pins 9 to 12");
}

}  // namespace

std::uint8_t TwoWireEeprom::selectByte(std::uint32_t address) const {
  const unsigned block = sheet_.addressBytes == 1 ? address >> 8U : 0U;
  return static_cast<std::uint8_t>(kSelect | block << 1U);
}

/// START, select to write, address; false if the chip does not acknowledge.
bool TwoWireEeprom::select(std::uint32_t address) {
  wires_.start();
  wires_.send(selectByte(address));
  if (!wires_.isAcknowledged()) {
    wires_.stop();
    return false;
  }
  if (sheet_.addressBytes == 2) wires_.send(static_cast<std::uint8_t>(address >> 8U));
  wires_.send(static_cast<std::uint8_t>(address & 0xFFU));
  return true;
}

Outcome TwoWireEeprom::read(std::uint32_t first, std::span<std::uint8_t> bytes) {
  if (!wires_.isSdaFree()) return sdaStaysLow();
  const std::uint32_t address = first % chip_.sizeBytes;
  if (!select(address)) return Outcome::noAcknowledge();
  wires_.start();
  wires_.send(static_cast<std::uint8_t>(selectByte(address) | kRead));
  const bool isAcknowledged = wires_.isAcknowledged();
  if (isAcknowledged) wires_.receive(bytes);
  wires_.stop();
  return isAcknowledged ? Outcome() : Outcome::noAcknowledge();
}

Outcome TwoWireEeprom::program(std::span<const std::uint8_t> image, Progress& progress) {
  const hardware::ChipSession session(bus_, chip_.sheet.wiring);
  if (!wires_.isSdaFree()) return sdaStaysLow();
  return forEachPage(image, static_cast<std::size_t>(sheet_.pageBytes), progress,
                     [this](std::uint32_t first, Page page) { return writePage(first, page); });
}

Outcome TwoWireEeprom::erase(Progress& progress) {
  const std::vector<std::uint8_t> erased(chip_.sizeBytes, kErased);
  return program(erased, progress);
}

Outcome TwoWireEeprom::writePage(std::uint32_t first, Page page) {
  if (!select(first)) return Outcome::noAcknowledge();
  for (const std::uint8_t byte : page) wires_.send(byte);
  wires_.stop();
  if (!wires_.isAcknowledged()) return Outcome::noAcknowledge();
  const Outcome outcome = waitForEnd(first);
  return outcome.isDone() ? compare(first, page) : outcome;
}

Outcome TwoWireEeprom::waitForEnd(std::uint32_t address) {
  const int timeOutMs = kTimeOutFactor * sheet_.longestCycleMs;
  for (std::int64_t poll = 0; poll < std::int64_t{1000} * timeOutMs / kAcknowledgePollUs; ++poll) {
    wires_.start();
    wires_.send(selectByte(address));
    wires_.stop();
    if (wires_.isAcknowledged()) return {};
    bus_.waitUs(kAcknowledgePollUs);
  }
  return Outcome::failed("the chip does not acknowledge " + std::to_string(timeOutMs) +
                         " ms after it was sent the page of address " +
                         hexText(static_cast<std::int32_t>(address)));
}

Outcome TwoWireEeprom::compare(std::uint32_t first, Page page) {
  std::array<std::uint8_t, kMostPageBytes> buffer{};
  const std::span seen = std::span(buffer).first(page.size());
  const Outcome outcome = read(first, seen);
  return outcome.isDone() ? compareBytes(first, page, seen) : outcome;
}

}  // namespace kestrel::data_sheet
