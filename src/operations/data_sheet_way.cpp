#include "operations/data_sheet_way.h"

#include <span>
#include <string>

#include "devices/families.h"
#include "platform/runtime_error.h"

namespace kestrel::operations {
namespace {

using data_sheet::Outcome;

constexpr std::int64_t kBlinkEvery = 64;
constexpr std::int64_t kFullBar = 100;

/// The bar by hundredths, and the program lamp.
class BarAndLamp final : public data_sheet::Progress {
 public:
  BarAndLamp(Controls& controls, Reporting& reporting, hardware::Lamps& lamps,
             hardware::ChipBus& bus)
      : controls_(controls), reporting_(reporting), lamps_(lamps), bus_(bus) {}

  void expect(std::int64_t steps) override {
    controls_.ProgressBar1.setMaximum(kFullBar);
    controls_.ProgressBar1.setValue(0);
    expected_ = steps;
    done_ = 0;
  }

  void advance(std::int64_t steps) override {
    const std::int64_t before = done_;
    done_ += steps;
    const auto hundredths = static_cast<int>(done_ * kFullBar / expected_);
    const int further = hundredths - controls_.ProgressBar1.value();
    if (further > 0) reporting_.advanceProgress(further);
    if (before / kBlinkEvery == done_ / kBlinkEvery) return;
    lamps_.BlinkProgramLamp();
    bus_.portWasUsed();
  }

 private:
  Controls& controls_;
  Reporting& reporting_;
  hardware::Lamps& lamps_;
  hardware::ChipBus& bus_;
  std::int64_t expected_ = 1;
  std::int64_t done_ = 0;
};

}  // namespace

void DataSheetWay::program() {
  operation_.I2CError = 0;
  if (drivers_.vppVolts() > 12) reporting_.LogMessage("Wait 1500ms second VPP Settling");
  reporting_.LogMessage("Programming Started... Wait ");
  BarAndLamp progress(controls_, reporting_, board_.lamps, bus_);
  const auto length = static_cast<std::size_t>(operation_.ProgramLength);
  const Outcome outcome =
      drivers_.forDevice()->program(std::span(operation_.ProgramBuffer).first(length), progress);
  if (!outcome.isDone()) report("Programming", outcome);
}

void DataSheetWay::erase() {
  operation_.I2CError = 0;
  board_.lamps.DataFlowLampOn();
  board_.lamps.ProgramLampOn();
  reporting_.LogMessage("Erasing Device " + device_.DeviceName);
  BarAndLamp progress(controls_, reporting_, board_.lamps, bus_);
  try {
    const Outcome outcome = drivers_.forDevice()->erase(progress);
    if (outcome.isDone()) {
      reportErased();
    } else {
      report("Erasing", outcome);
    }
  } catch (const OperationStopped&) {
    throw OperationStopped("Erasing was stopped, the chip is erased in part");
  }
  board_.bus.Reset();
  const bool isSerial = devices::familyOf(device_.FamilyCode).bus == devices::BusKind::Serial;
  if (isSerial) board_.leaveSerialChip();
}

void DataSheetWay::reportErased() {
  reporting_.LogMessage("Erasing Device Successfull");
  board_.lamps.DataFlowLampOff();
  board_.lamps.ProgramLampOff();
  reporting_.PlaySoundEvent("OK");
}

void DataSheetWay::report(std::string_view what, const Outcome& outcome) {
  using enum Outcome::Kind;
  operation_.ProgramFailed = 1;
  switch (outcome.kind) {
    case Done:
      return;
    case NoAcknowledge:
      return reports_.AckErrorReport();
    case ByteFailed:
      latches_.LinearAddress = narrowed<std::int32_t>(outcome.address);
      operation_.ByteToWrite = outcome.wanted;
      latches_.ReadByte = outcome.seen;
      return reports_.ProgramFailureReport();
    case Refused:
      return reports_.ChipFailureReport(what, Ending::Refused, outcome.reason);
    case Failed:
      return reports_.ChipFailureReport(what, Ending::Failed, outcome.reason);
  }
}

}  // namespace kestrel::operations
