// A command that ends by a run-time error or by Stop leaves the board idle and the form at rest.

#include <gtest/gtest.h>

#include "platform/runtime_error.h"
#include "support/form_rig.h"

namespace kestrel::test {
namespace {

using Log = std::vector<std::string>;

/// Passes on to the simulated board; before one of the reads something happens.
struct DisturbedPort final : PortAccess, Waits {
  explicit DisturbedPort(sim::SimulatedPort& given) : port(given) {}
  void PortOut(std::int16_t number, std::uint8_t value) override {
    if (stop != nullptr && stop->isThrown()) throw OperationStopped();
    port.PortOut(number, value);
  }
  std::uint8_t PortIn(std::int16_t number) override {
    if (readsLeft > 0 && --readsLeft == 0) disturb();
    return port.PortIn(number);
  }
  void Sleep(std::int32_t milliseconds) override { port.Sleep(milliseconds); }
  void Spin(std::int64_t counts) override { port.Spin(counts); }

  sim::SimulatedPort& port;
  const StopSwitch* stop = nullptr;
  int readsLeft = 0;
  std::function<void()> disturb;
};

struct Disturbed {
  Disturbed() {
    port.stop = &rig.stop;
    rig.form.Form_Load();
    rig.select("Eprom 27C256");
    rig.state.CodeBuffer[0] = 0xC0;
    rig.clearLog();
  }
  /// Reads the empty socket; the 20,000th status read is disturbed. The board is at rest then.
  void read(std::function<void()> disturb) {
    port.readsLeft = 20'000;
    port.disturb = std::move(disturb);
    EXPECT_NO_THROW(rig.press("Read_button"));
    EXPECT_EQ(port.readsLeft, 0);
    EXPECT_EQ(rig.state.CodeBuffer[0], 0xC0);
    EXPECT_EQ(rig.state.CodeBufferValid, 0);
    for (const auto* label : {&rig.controls.DataFlow_label, &rig.controls.Program_label})
      EXPECT_EQ(label->colour(), Colour::ButtonFace);
    EXPECT_EQ(rig.controls.ProgressBar1.value(), 0);
    EXPECT_EQ(rig.controls.StatusBar.text(), "");
    EXPECT_FALSE(rig.form.isRunning());
    const bool isGone = rig.state.CtlIdle[0] > 0xFF;
    EXPECT_TRUE(isGone || (board.latch(0) == 0x40 && board.latch(3) == 0xC6));
  }

  sim::Bench bench;
  sim::Board& board = bench.plug(sim::Model::kestrel5, 0x378);
  sim::SimulatedPort simulated{bench};
  DisturbedPort port{simulated};
  FormRig rig{port, port};
};

TEST(CommandBoundary, errorsAndStopAreToldOnceAndTheBoardPutToRest) {
  Disturbed d;
  d.read([] { throw RuntimeError(57, "The port has gone"); });
  EXPECT_EQ(d.rig.form.lastOutcome(), form::frmMain::Outcome::RunTimeError);
  ASSERT_EQ(d.rig.dialogs.boxes.size(), 1U);
  EXPECT_EQ(d.rig.dialogs.boxes[0].text, "Run-time error 57: The port has gone");
  EXPECT_EQ(d.rig.sounds.played.back(), "error.wav");
  d.read([] { throw std::bad_alloc(); });
  d.read([] { throw std::logic_error("a slip"); });
  d.rig.dialogs.boxes.clear();
  d.read([&d] { d.rig.stop.stopCommand(); });
  EXPECT_EQ(d.rig.form.lastOutcome(), form::frmMain::Outcome::Stopped);
  EXPECT_TRUE(d.rig.dialogs.boxes.empty());
  EXPECT_EQ(d.rig.log(),
            (Log{"Run-time error 57: The port has gone", "Run-time error 7: Out of memory",
                 "Run-time error 51: a slip", "Operation stopped by operator"}));
  d.rig.press("Read_button");
  EXPECT_EQ(d.rig.form.lastOutcome(), form::frmMain::Outcome::Done);
  EXPECT_EQ(d.rig.state.CodeBuffer[0], 0xFF);
}

TEST(CommandBoundary, anAlertThatWasUpStaysUpUntilTheHardwareTest) {
  Disturbed d;
  Controls& c = d.rig.controls;
  d.board.insert(sim::makeChip("27C256"));
  d.board.loadChip(std::vector<std::uint8_t>(32768, 0x00));
  d.rig.press("Blank_button");
  d.port.readsLeft = 100;
  d.port.disturb = [] { throw RuntimeError(57, "The port has gone"); };
  d.rig.press("menuReadCode");
  EXPECT_EQ(c.Error_label.colour(), Colour::Red);
  EXPECT_FALSE(c.Read_button.enabled());
  d.rig.press("TestHardware_button");
  EXPECT_EQ(c.Error_label.colour(), Colour::ButtonFace);
  EXPECT_TRUE(c.Read_button.enabled());
  EXPECT_FALSE(c.Program_button.enabled());
}

TEST(CommandBoundary, aPortThatHasGoneForGoodIsToldForTheResetToo) {
  Disturbed d;
  d.read([&d] {
    d.rig.state.CtlIdle[0] = 0x100;
    throw RuntimeError(57, "The port has gone");
  });
  EXPECT_EQ(d.rig.dialogs.boxes.size(), 2U);
  EXPECT_FALSE(d.rig.form.isRunning());
  EXPECT_NO_THROW(d.rig.form.Form_Unload());
}

TEST(ShutDown, closesTheOtherWindowsAndSavesThePlaceUnlessMinimised) {
  Disturbed d;
  d.rig.screen.windows = 3;
  d.rig.form.Form_Unload();
  EXPECT_EQ(d.rig.screen.windows, 1U);
  EXPECT_EQ(d.rig.settings.texts["Settings/MainHeight"], "6500");
  d.rig.controls.frmMain.setHeight(7);
  d.rig.controls.frmMain.setMinimised(true);
  d.rig.form.Form_Unload();
  EXPECT_EQ(d.rig.settings.texts["Settings/MainHeight"], "6500");
}

}  // namespace
}  // namespace kestrel::test
