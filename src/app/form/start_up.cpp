#include "app/form/frm_main.h"
#include "app/form/units.h"
#include "app/form/window_place.h"
#include "app/state/text_format.h"
#include "devices/device_table.h"
#include "hardware/decode_tables.h"

namespace kestrel::form {

void frmMain::Form_Load() {
  Units& u = *units_;
  ProgrammerState& s = u.state;
  s.KestrelModel = 0;
  restoreWindowPlace(u.controls.frmMain, u.machine.settings);
  u.controls.Frame3.setHeight(241);
  u.controls.Frame3.setTop(72);
  u.controls.Frame3.setWidth(481);
  s.Pow16Table = {1, 16, 256, 65536};
  s.SettleFactor = 5;
  s.SpeedFactorB = 100;
  s.SpeedFactorA = 500;
  u.memoryDisplay.DisplayPageMemory();
  hardware::BuildDecodeTables(s, s, s);
  u.captions.showNoBoardYet();
  s.DetectedPort = 0;
  s.PortBase = 0;
  u.board.registers.InitControlTables();
  u.findBoard();
  s.CrLf = "\r\n";
  (void)u.step([&u] {
    u.board.lamps.DataFlowLampOff();
    u.board.lamps.ProgramLampOff();
    u.board.lamps.ErrorLampOff();
  });
  u.controls.SystemLog.setText("");
  u.reportPortInForce();
  u.controls.VScroll1.setValue(0);
  devices::BuildDeviceTable(s, s);
  devices::FillDeviceList(s, s.algorithms, u.controls.Device);
  (void)u.step([&u] { u.board.bus.Reset(); });
  u.reporting.PlaySoundEvent("INIT");
}

// The window always comes up: an error in kestrel6.ini or of the port is reported, and the board is
// looked for as if there were no file.
void Units::findBoard() {
  const auto testIfNoPort = [this] {
    if (state.PortBase == 0) detection.TestHardware_button_Click();
  };
  const auto load = [&] {
    detection.LoadHardwareConfig();
    testIfNoPort();
    board.registers.ApplyPortAndModel();
  };
  const bool isFound = step(load);
  // Once the program is to end the ports stay as they are, for the board's last reset.
  if (!isFound && !machine.stop.isEnding()) {
    state.PortBase = state.StatusPort = state.ControlPort = 0;
    (void)step(testIfNoPort);
    (void)step([this] { board.registers.ApplyPortAndModel(); });
  }
  // The start-up caption stays when nothing answers; a later hardware test words it without the
  // exclamation marks.
  if (!state.BoardReady) captions.showNoBoardYet();
  // kestrel6.ini may name a port that the program could not take, or half of what is needed: then
  // no board is there, whatever the procedures have shown.
  if (!whyNoBoard().empty()) captions.showNotReady();
}

// One step of the start-up. A board that was addressed already goes to rest before a fault is
// shown.
bool Units::step(const CommandRunner::Event& event) {
  return runner.runStep(event, [this] { restAfterFault(); });
}

void Units::restAfterFault() {
  try {
    if (state.ControlPort != 0) runner.resetBoard();
  } catch (const std::exception&) {
    // The fault that is reported is the port's: nobody is there to be reset.
  }
}

std::string Units::whyNoBoard() const {
  const std::int16_t base = state.PortBase;
  const std::int16_t model = state.KestrelModel;
  if (base == 0) return {};
  if (!machine.portService.holdsPort(base)) return "No port can be used at " + hexText(base) + "h";
  if (model == 0) return "kestrel6.ini names a port and no model";
  if (model == 4 || model == 5 || model == 6) return {};
  return "kestrel6.ini names model " + std::to_string(model) + ", which is none of 4, 5 and 6";
}

// The log has been emptied since the board was looked for; it opens with what is wrong.
void Units::reportPortInForce() {
  const std::string reason = whyNoBoard();
  if (!reason.empty()) {
    reporting.LogMessage(reason + ": press the hardware test, which writes that file anew");
  }
  if (state.KestrelModel == 0 || !machine.portService.holdsPort(state.PortBase)) logDiagnosis();
}

// Why a real port may have no board behind it.
void Units::logDiagnosis() {
  for (const std::string& line : machine.portService.diagnosis()) reporting.LogMessage(line);
}

void Units::reportDiagnosis() {
  if (state.KestrelModel == 0) logDiagnosis();
}

// The board comes first; a port that has gone must not keep the window from closing.
void frmMain::Form_Unload() {
  Units& u = *units_;
  try {
    u.runner.resetBoard();
  } catch (const std::exception&) {
    // There is nothing left to switch off, and nobody to show it to.
  }
  while (u.machine.screen.openWindows() > 1) u.machine.screen.closeLastWindow();
  saveWindowPlace(u.controls.frmMain, u.machine.settings);
}

}  // namespace kestrel::form
