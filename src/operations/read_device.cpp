#include "operations/read_device.h"

#include <algorithm>
#include <functional>
#include <span>
#include <string>

#include "app/state/text_format.h"
#include "buffers/checksum.h"
#include "devices/families.h"
#include "images/checksums.h"
#include "platform/runtime_error.h"

namespace kestrel::operations {
namespace {

constexpr std::size_t kListed = 100;  // unstable addresses; a loose chip has thousands

}  // namespace

void ReadDevice::Read_button_Click() {
  if (controls_.CheckCode.isTicked()) ReadCode();
  if (controls_.CheckData.isTicked()) ReadData();
}

void ReadDevice::ReadCode() {
  if (walk_.isByDataSheet()) return ReadParallel();
  switch (devices::familyOf(device_.FamilyCode).read) {
    case devices::BusKind::Parallel:
      return ReadParallel();
    case devices::BusKind::Serial:
      return ReadSerial();
    case devices::BusKind::None:
      reporting_.noteEnding(Ending::NoRoutine, "there is no routine that reads this device");
      dialogs_.messageBox(
          {.text = "Please Write Missing Routines at READCODE", .title = "Routine Not Ready"});
  }
}

void ReadDevice::ReadParallel() {
  const DeviceOperation operation = board_.operation();
  board_.lamps.DataFlowLampOn();
  buffers_.DisplayMode = "Read";
  std::vector<std::uint8_t> read = buffers_.CodeBuffer;
  const auto readOnce = [this, &read] { return readParallelOnce(read); };
  if (!readOnce() || !vote(readOnce, read)) {
    return reports_.ChipUnreadableReport(walk_.outcome());
  }
  buffers_.CodeBuffer.swap(read);
  noteUniform();
  buffers_.DeviceChecksumText = buffers::checksumText(buffers_.DeviceChecksum);
  board_.lamps.DataFlowLampOff();
  reporting_.LogMessage(std::to_string(buffers_.CodeLength) + " bytes Read from Device");
  reporting_.LogMessage("Device CHKSUMM = $" + buffers_.DeviceChecksumText);
  showBuffer();
  finishReading();
  reporting_.PlaySoundEvent("OK");
  board_.bus.Reset();
}

bool ReadDevice::readParallelOnce(std::vector<std::uint8_t>& read) {
  buffers_.DeviceChecksum = 0;
  walk_.begin();
  controls_.ProgressBar1.setValue(0);
  controls_.ProgressBar1.setMaximum(buffers_.CodeLength / 256);
  return walk_.readAll([this, &read](std::int32_t) {
    // The bytes are stored one after the other, whatever address they were read from.
    at(read, latches_.LinearAddress) = latches_.ReadByte;
    buffers_.DeviceChecksum = buffers::addToChecksum(buffers_.DeviceChecksum, latches_.ReadByte);
    ++latches_.LinearAddress;
    return true;
  });
}

/// The chip was read into the bytes once; as often again as is asked for, and the vote.
bool ReadDevice::vote(const std::function<bool()>& readOnce, std::vector<std::uint8_t>& bytes) {
  if (controls_.ReadTimes.value() == 1) return true;
  const auto length = static_cast<std::size_t>(buffers_.CodeLength);
  ReadVote reads;
  reads.add(std::span(bytes).first(length));
  for (int time = 1; time < controls_.ReadTimes.value(); ++time) {
    if (!readOnce()) return false;
    reads.add(std::span(bytes).first(length));
  }
  const std::vector<std::uint8_t> majority = reads.majority();
  std::ranges::copy(majority, bytes.begin());
  buffers_.DeviceChecksum = narrowed<std::int32_t>(images::sum16(majority));
  reportUnstable(reads);
  return true;
}

void ReadDevice::reportUnstable(const ReadVote& reads) {
  const std::string times = std::to_string(controls_.ReadTimes.value());
  const std::vector<std::size_t> addresses = reads.unstable();
  reporting_.LogMessage("Device was Read " + times +
                        " Times, Unstable Addresses: " + std::to_string(addresses.size()));
  if (addresses.empty()) return;
  for (const std::size_t address :
       std::span(addresses).first(std::min(addresses.size(), kListed))) {
    reporting_.LogMessage("Address: " + hexText(static_cast<std::int32_t>(address)) +
                          " ][ Device Data: " + reads.readsAt(address));
  }
  if (addresses.size() > kListed) reporting_.LogMessage("and more that are not listed");
  reporting_.noteRemark(std::to_string(addresses.size()) +
                        " addresses did not read the same each time, the first is " +
                        hexText(static_cast<std::int32_t>(addresses.front())));
}

// A blank chip is read so too, and a missing one; the person at the bench knows which it is.
void ReadDevice::noteUniform() {
  const std::span<const std::uint8_t> bytes =
      std::span(buffers_.CodeBuffer).first(static_cast<std::size_t>(buffers_.CodeLength));
  if (bytes.empty() || std::ranges::adjacent_find(bytes, std::not_equal_to{}) != bytes.end())
    return;
  if (bytes[0] != kErased && bytes[0] != 0x00) return;
  reporting_.noteRemark("every byte read is " + hexText(bytes[0], 2) +
                        "h: is the board there, the chip in?");
}

void ReadDevice::showBuffer() {
  buffers_.CodeFrom = {.source = CodeSource::Chip,
                       .name = std::string(trimmed(device_.DeviceName))};
  buffers_.CodeChanged = false;
  ++buffers_.CodeLoads;
  controls_.VScroll1.setMaximum(buffers_.CodeLength / 256 - 1);
  reporting_.LogMessage("Data is available at above Window, use Scroll Bar");
  reporting_.LogMessage("You can Save the file using [FILE - Save As] menu");
  display_.DisplayPageMemory();
}

void ReadDevice::finishReading() {
  Controls& c = controls_;
  c.ProgressBar1.setValue(0);
  c.StatusBar.setText("");
  for (Button* const button :
       {&c.Verify_button, &c.menuVerifyCode, &c.Program_button, &c.menuProgramCode, &c.Erase_button,
        &c.menuEraseCode, &c.mnuFileSaveCodeAs}) {
    alert_.enable(*button);
  }
  buffers_.CodeBufferValid = 1;
}

void ReadDevice::ReadSerial() {
  const DeviceOperation operation = board_.operation();
  board_.lamps.DataFlowLampOn();
  const auto readOnce = [this] { return readSerialOnce(); };
  if (readOnce()) (void)vote(readOnce, buffers_.CodeBuffer);
  board_.lamps.DataFlowLampOff();
  if (operation_.I2CError != 0) {
    reports_.AckErrorReport();
  } else {
    reporting_.LogMessage(std::to_string(buffers_.CodeLength) + " bytes Read from Device");
    noteUniform();
    showBuffer();
    reporting_.PlaySoundEvent("OK");
  }
  finishReading();
  board_.bus.Reset();
  board_.leaveSerialChip();
  // The shadow alone: latch 0 itself keeps /OE low.
  latches_.RegShadow0 = hardware::kLatch0Idle;
}

bool ReadDevice::readSerialOnce() {
  board_.startOperation();
  buffers_.DisplayMode = "Read";
  controls_.ProgressBar1.setMaximum(buffers_.CodeLength);
  serial_.Read24CXX();
  return operation_.I2CError == 0;
}

void ReadDevice::ReadData() {
  buffers_.DisplayMode = "Read";
  board_.registers.REG4OFF();
  board_.bus.CEOEON();
  board_.lamps.DataFlowLampOn();
  shell_.ProgressStep = narrowed<std::int16_t>(buffers_.CodeLength / 100);
  reporting_.LogMessage("Start Device Reading Operation");
  controls_.StatusBar.setText("Reading Device... Wait");
  reporting_.noteEnding(Ending::NoRoutine, "there is no routine that reads the data memory");
  dialogs_.messageBox(
      {.text = "Please Write AT90S2313 Eeprom Read Routine", .title = "Routine Not Ready"});
}

}  // namespace kestrel::operations
