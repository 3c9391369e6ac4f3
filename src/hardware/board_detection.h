#pragma once

#include <cstdint>

#include "app/state/controls.h"
#include "app/state/error_report.h"
#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "hardware/board.h"
#include "hardware/board_probe.h"
#include "hardware/error_alert.h"
#include "hardware/hardware_captions.h"
#include "hardware/hardware_config.h"
#include "platform/folders.h"
#include "platform/port_access.h"
#include "platform/time_of_day.h"

namespace kestrel::hardware {

/// Finds the board among the three LPT bases; remembers the result in kestrel6.ini; takes the
/// operator's word for port and model.
class BoardDetection {
 public:
  BoardDetection(PortState& portState, const AlgorithmState& chosen, LatchState& latches,
                 Controls& controls, Reporting& reporting, ErrorReport& errors, Board& board,
                 ErrorAlert& alert, PortAccess& port, const TimeOfDay& time, const Folders& folders)
      : portState_(portState),
        latches_(latches),
        controls_(controls),
        reporting_(reporting),
        errors_(errors),
        board_(board),
        alert_(alert),
        time_(time),
        captions_(portState, controls),
        config_(folders.configuration),
        probe_(portState, chosen, latches, reporting, board, port) {}

  /// The hardware test: probes all three ports, the last one that answers is taken, and reports.
  void TestHardware_button_Click();

  /// Applies and announces what DetectedPort and KestrelModel hold. A kestrel6.ini that cannot be
  /// written is reported and ends the announcement; the model is applied and the board reset all
  /// the same.
  void ReportDetection();

  /// Replaces kestrel6.ini. Throws FileError.
  void SaveHardwareConfig();

  /// Reads kestrel6.ini, if there is one, and reports it as a detection when port and model stand
  /// in it once each. Throws FileError for a file that cannot be read, RuntimeError 6 for a number
  /// that does not fit 16 bits.
  void LoadHardwareConfig();

  void LPTSelection_Click();

  void ForceKestrel4() { forceModel(4); }
  void ForceKestrel5() { forceModel(5); }
  void ForceKestrel6() { forceModel(6); }

 private:
  void probeAllPorts();
  void announceModel();
  void pulseBoardLamp();
  void forceModel(std::int16_t model);

  PortState& portState_;
  LatchState& latches_;
  Controls& controls_;
  Reporting& reporting_;
  ErrorReport& errors_;
  Board& board_;
  ErrorAlert& alert_;
  const TimeOfDay& time_;
  HardwareCaptions captions_;
  HardwareConfig config_;
  BoardProbe probe_;
};

}  // namespace kestrel::hardware
