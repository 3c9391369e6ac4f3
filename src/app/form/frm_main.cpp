#include "app/form/frm_main.h"

#include <utility>

#include "app/form/units.h"

namespace kestrel::form {

frmMain::frmMain(const Machine& machine) : units_(std::make_unique<Units>(machine)) {
  units_->connectAll();
}

frmMain::~frmMain() = default;

Controls& frmMain::controls() { return units_->controls; }

ProgrammerState& frmMain::state() { return units_->state; }

CommandResult frmMain::loadImage(const std::string& name, std::vector<std::uint8_t> image,
                                 const std::string& found) {
  return runner().run([&] { units_->files.loadImage(name, std::move(image), found); });
}

bool frmMain::isCodeOnView() const {
  return units_->state.DisplayMode == "Read" && units_->memoryDisplay.isCodeOnView();
}

CommandResult frmMain::changeCode(std::vector<std::uint8_t> buffer, std::int32_t length,
                                  const std::string& done) {
  return runner().run([&] { units_->files.changeCode(std::move(buffer), length, done); });
}

CommandResult frmMain::putCodeByte(std::size_t address, std::uint8_t value, std::int32_t length) {
  return runner().run([&] { units_->files.putCodeByte(address, value, length); });
}

CommandResult frmMain::exportImage(const std::string& name,
                                   std::span<const std::uint8_t> contents) {
  return runner().run([&] { units_->files.exportImage(name, contents); });
}

// The buffer is given back in the same run: nobody who looks behind a command sees another one.
CommandResult frmMain::readAside(std::vector<std::uint8_t>& chip) {
  Units& u = *units_;
  Button& read = u.controls.Read_button;
  RangeControl& scroll = u.controls.VScroll1;
  const auto giveBack = [&, before = BufferState(u.state),
                         kept = std::pair(scroll.maximum(), scroll.value())] {
    const auto size = static_cast<std::ptrdiff_t>(u.state.DeviceSizeBytes);
    chip.assign(u.state.CodeBuffer.begin(), u.state.CodeBuffer.begin() + size);
    static_cast<BufferState&>(u.state) = before;
    u.state.DisplayMode = "Read";
    scroll.setMaximum(kept.first);
    scroll.setValue(kept.second);
    u.memoryDisplay.DisplayPageMemory();
  };
  if (!read.enabled()) return u.runner.press(read);
  return u.runner.run([&] {
    u.runner.runWhenIdle(giveBack);
    u.state.CodeLength = u.state.DeviceSizeBytes;  // a short file must not shorten what is read
    read.press();
  });
}

bool frmMain::hasBoard() const {
  const PortState& port = units_->state;
  return port.BoardReady && port.PortBase != 0 && whyNoBoard().empty();
}

std::string frmMain::whyNoBoard() const { return units_->whyNoBoard(); }

std::vector<std::string> frmMain::diagnosis() const {
  return units_->machine.portService.diagnosis();
}

std::string frmMain::dateAndTime() const {
  const TimeOfDay& time = units_->machine.time;
  return time.shortDate() + "T" + time.longTime();
}

bool frmMain::mayVoltageBeOn() const { return units_->machine.portService.mayVoltageBeOn(); }

CommandResult frmMain::releaseSocket() {
  return runner().run([&] { units_->board.releaseSocket(); });
}

CommandRunner& frmMain::runner() { return units_->runner; }

}  // namespace kestrel::form
