// The probe of one port, access by access, and what the status lines make of it.

#include <gtest/gtest.h>

#include "hardware/board_detection.h"
#include "hardware/decode_tables.h"
#include "support/fakes.h"
#include "support/port_script.h"
#include "support/temporary_folder.h"

namespace kestrel::test {
namespace {

struct Probe {
  Probe() {
    BuildDecodeTables(state);
    registers.InitControlTables();
    state.SettleFactor = 5;
    state.PortBase = 0x278;
  }
  TemporaryFolder folder;
  Folders folders{.configuration = folder.path(), .data = {}, .working = {}};
  ProgrammerState state;
  Controls controls;
  PortScript port;
  RecordingSounds sounds;
  FakeScreen screen;
  ScriptedDialogs dialogs;
  Reporting reporting{state, controls, port, sounds, screen, folders};
  ErrorReport errors{reporting, dialogs};
  OperationButtons buttons{state, controls};
  Registers registers{state, port, port};
  BusPrimitives bus{state, controls, registers, port, port};
  Lamps lamps{state, controls, registers, screen};
  BoardDetection detection{{.state = state,
                            .controls = controls,
                            .reporting = reporting,
                            .errors = errors,
                            .buttons = buttons,
                            .lamps = lamps,
                            .registers = registers,
                            .bus = bus,
                            .port = port,
                            .clock = port,
                            .folders = folders}};

  /// Probes with these status bytes.
  void check(const std::deque<std::uint8_t>& answers) {
    port.answers = answers;
    detection.CheckHardware();
  }
};

const std::string kBothProbes =
    "278=9F 27A=0E 27A=00 278=00 27A=06 spin500 279? 27A=00 278=FF 27A=06 spin500 279? "
    "27A=09 278=BF 27A=01 27A=09 278=00 27A=0F 27A=09 spin500 279? "
    "278=FF 27A=0F 27A=09 spin500 279? 27A=08";

TEST(CheckHardware, probesBothFamiliesAndLogsASilentPort) {
  Probe p;
  p.state.KestrelModel = 4;
  p.check({});
  EXPECT_EQ(p.port.taken(), kBothProbes);
  EXPECT_EQ(p.controls.SystemLog.text(), "\r\n14:03:07>  Port 278 Not Responding");
  EXPECT_EQ(p.state.KestrelModel, 4);
  EXPECT_EQ(p.state.DetectedPort, 0);
  EXPECT_EQ(p.controls.DataFlow_label.colour(), Colour::ButtonFace);
}

TEST(CheckHardware, tellsModel6FromModel5WithTheNibbleCodesAppliedLast) {
  Probe p;
  p.check({0x0F, 0xF0, 0xFF, 0xFF, 0x78, 0x70, 0x78, 0x78});
  EXPECT_EQ(p.port.taken(), kBothProbes +
                                " 278=60 27A=0E 27A=00 27A=00 279? 27A=00 279?"
                                " 278=40 27A=0E 27A=00 27A=00 279? 27A=00 279?");
  EXPECT_EQ(p.state.KestrelModel, 6);
  EXPECT_EQ(p.state.DetectedPort, 0x278);
  p.registers.ApplyPortAndModel();
  p.check({0x80, 0x70, 0xFF, 0xFF, 0x78, 0x70, 0x78, 0x78});
  EXPECT_EQ(p.port.taken(), kBothProbes +
                                " 278=60 27A=0E 27A=00 27A=05 279? 27A=01 279?"
                                " 278=40 27A=0E 27A=00 27A=05 279? 27A=01 279?");
  EXPECT_EQ(p.controls.SystemLog.text(), "");
}

TEST(CheckHardware, model4WinsWhenBothSignaturesMatchAndModel5NeedsBothReads) {
  Probe p;
  p.check({0x00, 0x70, 0x8F, 0x7F});
  EXPECT_EQ(p.port.taken(), kBothProbes);
  EXPECT_EQ(p.state.KestrelModel, 4);
  p.check({0x0F, 0x70, 0xFF, 0xFF, 0x78, 0x70, 0x70, 0x78});
  EXPECT_EQ(p.state.KestrelModel, 5) << "the second read is FEh: no model 6";
}

TEST(CheckHardware, oneLineAtTheWrongLevelIsNoSignature) {
  const std::vector<std::deque<std::uint8_t>> almost{
      {0x10, 0x70, 0x00, 0x60}, {0x20, 0x70, 0x00, 0x50}, {0x40, 0x70, 0x00, 0x30}};
  for (const auto& answers : almost) {
    Probe p;
    p.check(answers);
    EXPECT_EQ(p.state.KestrelModel, 0);
    EXPECT_EQ(p.state.DetectedPort, 0);
  }
}

// Every step leaves its mark: what stands on the form when the port is addressed next.
TEST(ReportDetection, showsLogsSavesAppliesPulsesAndResets) {
  Probe p;
  p.state.DetectedPort = 0x3BC;
  p.state.KestrelModel = 6;
  p.detection.ReportDetection();
  EXPECT_EQ(p.port.taken(), loads5("0 08", "3BC", "3BE") + " sleep200 " +
                                loads5("0 00,0 40,1 00,2 00,3 C4", "3BC", "3BE"));
  EXPECT_TRUE(p.controls.LPTSelection[2].value());
  EXPECT_EQ(p.controls.Ready_label.caption(), "Ready");
  EXPECT_EQ(p.controls.Ready_label.colour(), Colour::Green);
  EXPECT_EQ(p.controls.KestrelHardwareFound.caption(), "MODEL 6 - PC port 3BCh");
  EXPECT_EQ(p.controls.KestrelHardwareFound.colour(), Colour::ButtonText);
  EXPECT_EQ(p.controls.SystemLog.text(), "\r\n14:03:07>  KESTREL-6 Device was FOUND at Port: 3BC");
}

TEST(ReportDetection, model4GetsNoPulse) {
  Probe p;
  p.state.KestrelModel = 4;
  p.detection.ReportDetection();
  EXPECT_EQ(p.port.taken(), "") << "no port was detected";
  p.state.DetectedPort = 0x278;
  p.detection.ReportDetection();
  EXPECT_EQ(p.port.taken(),
            "278=40 27A=0A 27A=0B 27A=0A 278=00 27A=02 27A=03 27A=02 "
            "278=00 27A=08 27A=09 27A=08 278=C4 27A=00 27A=01 27A=00");
}

}  // namespace
}  // namespace kestrel::test
