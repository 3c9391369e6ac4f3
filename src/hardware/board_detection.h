#pragma once

#include <cstdint>

#include "app/state/controls.h"
#include "app/state/error_report.h"
#include "app/state/programmer_state.h"
#include "app/state/reporting.h"
#include "hardware/bus_primitives.h"
#include "hardware/error_alert.h"
#include "hardware/lamps.h"
#include "hardware/registers.h"
#include "platform/folders.h"
#include "platform/port_access.h"
#include "platform/time_of_day.h"

namespace kestrel::hardware {

/// The shared pieces that detection is built on.
struct DetectionParts {
  ProgrammerState& state;
  Controls& controls;
  Reporting& reporting;
  ErrorReport& errors;
  ErrorAlert& alert;
  Lamps& lamps;
  Registers& registers;
  BusPrimitives& bus;
  PortAccess& port;
  const TimeOfDay& time;
  const Folders& folders;
};

/// Finds the board among the three LPT bases and tells the models apart; remembers the result in
/// kestrel6.ini; takes the operator's word for port and model.
class BoardDetection {
 public:
  explicit BoardDetection(const DetectionParts& parts) : p_(parts) {}

  /// Probes the board at PortBase. A board sets KestrelModel and DetectedPort; none is logged and
  /// changes neither.
  void CheckHardware();

  /// The hardware test: probes all three ports, the last one that answers is taken, and reports.
  void TestHardware_button_Click();

  /// Applies and announces what DetectedPort and KestrelModel hold. A kestrel6.ini that cannot be
  /// written is told and ends the announcement; the model is applied and the board reset all the
  /// same.
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
  /// Two status reads of a probe, each with the three lines in bits 4-6.
  using Signature = int;

  void data(std::uint8_t value);
  void control(std::uint8_t value);
  [[nodiscard]] int settledStatusLines();
  [[nodiscard]] Signature probeModel5or6();
  [[nodiscard]] Signature probeModel4();
  [[nodiscard]] bool answersAsModel6();
  [[nodiscard]] std::uint8_t readWithLatch3(std::uint8_t value);
  void setPort(std::int16_t base);
  void showNoHardware();
  void announceModel();
  void pulseBoardLamp();
  void readConfigLine();
  void forceModel(std::int16_t model);

  DetectionParts p_;
};

}  // namespace kestrel::hardware
