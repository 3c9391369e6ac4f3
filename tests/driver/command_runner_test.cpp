// A command that ends by a run-time error or by Stop leaves the board idle and the form at rest.

#include <gtest/gtest.h>

#include "driver/prepared_form.h"
#include "platform/atomic_file.h"
#include "platform/runtime_error.h"
#include "support/form_rig.h"

namespace kestrel::test {
namespace {

using Log = std::vector<std::string>;

/// Passes on to the simulated board; before one of the reads something happens.
struct DisturbedPort final : PortAccess, Waits {
  explicit DisturbedPort(sim::SimulatedPort& given) : port(given) {}
  void PortOut(std::int16_t number, std::uint8_t value) override { port.PortOut(number, value); }
  std::uint8_t PortIn(std::int16_t number) override {
    if (readsLeft > 0 && --readsLeft == 0) disturb();
    return port.PortIn(number);
  }
  void Sleep(std::int32_t milliseconds) override {
    if (const auto event = whenAsleep) event();
    port.Sleep(milliseconds);
  }
  void Spin(std::int64_t counts) override { port.Spin(counts); }

  sim::SimulatedPort& port;
  int readsLeft = 0;
  std::function<void()> disturb;
  std::function<void()> whenAsleep;
};

struct Disturbed : BoardOnBench {
  Disturbed() : BoardOnBench(sim::Model::kestrel5) {
    rig.form.Form_Load();
    rig.select("Eprom 27C256");
    rig.state.CodeBuffer[0] = 0xC0;
    rig.clearLog();
  }
  /// Reads the empty socket; the 20,000th status read is disturbed. The board is at rest then.
  void read(std::function<void()> disturb) {
    lines.readsLeft = 20'000;
    lines.disturb = std::move(disturb);
    EXPECT_NO_THROW(rig.press("Read_button"));
    EXPECT_EQ(lines.readsLeft, 0);
    EXPECT_EQ(rig.state.CodeBuffer[0], 0xC0);
    EXPECT_EQ(rig.state.CodeBufferValid, 0);
    for (const auto* label : {&rig.controls.DataFlow_label, &rig.controls.Program_label})
      EXPECT_EQ(label->colour(), Colour::ButtonFace);
    EXPECT_EQ(rig.controls.ProgressBar1.value(), 0);
    EXPECT_EQ(rig.controls.StatusBar.text(), "");
    EXPECT_FALSE(rig.form.runner().isRunning());
    const bool isGone = rig.state.CtlIdle[0] > 0xFF;
    EXPECT_TRUE(isGone || (board->latch(0) == 0x40 && board->latch(3) == 0xC6));
  }

  DisturbedPort lines{port};
  FormRig rig{lines, lines};
};

TEST(CommandRunner, errorsAndStopAreReportedOnceAndTheBoardIsAtRestBeforeThat) {
  Disturbed d;
  // Nothing comes between the fault and the idle board: no box, no log line.
  d.rig.dialogs.onBox = [&d] { EXPECT_EQ(d.board->latch(0), 0x40); };
  d.rig.screen.onTurn = [&d, lines = std::size_t{0}]() mutable {
    if (d.rig.log().size() == lines) return;
    lines = d.rig.log().size();
    EXPECT_EQ(d.board->latch(0), 0x40);
  };
  d.read([] { throw RuntimeError(57, "The port has gone"); });
  EXPECT_EQ(d.rig.result.ending, Ending::RunTimeError);
  ASSERT_EQ(d.rig.dialogs.boxes.size(), 1U);
  EXPECT_EQ(d.rig.dialogs.boxes[0].text, "Run-time error 57: The port has gone");
  EXPECT_EQ(d.rig.sounds.played.back(), "error.wav");
  d.read([] { throw std::bad_alloc(); });
  d.read([] { throw std::logic_error("a slip"); });
  d.rig.dialogs.boxes.clear();
  d.read([&d] { d.rig.stop.stopCommand(); });
  EXPECT_EQ(d.rig.result.ending, Ending::Stopped);
  EXPECT_TRUE(d.rig.dialogs.boxes.empty());
  EXPECT_EQ(d.rig.log(),
            (Log{"Run-time error 57: The port has gone", "Run-time error 7: Out of memory",
                 "Run-time error 51: a slip", "Operation stopped by operator"}));
  d.rig.screen.onTurn = nullptr;
  d.rig.press("Read_button");
  EXPECT_EQ(d.rig.result.ending, Ending::Done);
  EXPECT_EQ(d.rig.state.CodeBuffer[0], 0xFF);
  EXPECT_EQ(d.rig.state.CodeBufferValid, 1);
}

TEST(StartUp, aBoardWhosePortFailsIsAtRestBeforeThatIsReported) {
  BoardOnBench b(sim::Model::kestrel5);
  DisturbedPort port{b.port};
  FormRig rig{port, port};
  // The board has just been found and its lamp is lit, at the first search and at the second.
  port.whenAsleep = [&, faults = 2]() mutable {
    if (rig.state.DetectedPort == 0 || b.board->latch(0) == 0x40) return;
    if (--faults == 0) port.whenAsleep = nullptr;
    throw RuntimeError(57, "The port has gone");
  };
  rig.dialogs.onBox = [&b] { EXPECT_EQ(b.board->latch(0), 0x40); };
  rig.form.Form_Load();
  EXPECT_EQ(rig.dialogs.boxes.size(), 2U);
  EXPECT_EQ(rig.controls.Ready_label.caption(), "Ready") << "found by the second search";
}

TEST(CommandRunner, anAlertThatWasUpStaysUpUntilTheHardwareTest) {
  Disturbed d;
  Controls& c = d.rig.controls;
  d.insert("27C256", Bytes(32768, 0x00));
  d.rig.press("Blank_button");
  d.lines.readsLeft = 100;
  d.lines.disturb = [] { throw RuntimeError(57, "The port has gone"); };
  d.rig.press("menuReadCode");
  EXPECT_EQ(c.Error_label.colour(), Colour::Red);
  EXPECT_FALSE(c.Read_button.enabled());
  d.rig.press("TestHardware_button");
  EXPECT_EQ(c.Error_label.colour(), Colour::ButtonFace);
  EXPECT_TRUE(c.Read_button.enabled());
  EXPECT_FALSE(c.Program_button.enabled());
}

TEST(CommandRunner, aPortThatHasGoneForGoodIsReportedOnce) {
  Disturbed d;
  d.read([&d] {
    d.rig.state.CtlIdle[0] = 0x100;
    throw RuntimeError(57, "The port has gone");
  });
  EXPECT_EQ(d.rig.dialogs.boxes.size(), 1U);
  EXPECT_FALSE(d.rig.form.runner().isRunning());
  EXPECT_NO_THROW(d.rig.form.Form_Unload());
}

TEST(CommandRunner, tellsOnceOfAVoltageThatCouldNotBeSwitchedOff) {
  struct : PortService {
    bool mayVoltageBeOn() const override { return true; }
  } service;
  sim::Bench bench;
  sim::SimulatedPort port(bench);
  FormRig rig(port, port, {.service = &service});
  for (int round = 0; round < 2; ++round) rig.press("Show_button"), rig.press("mnuFileClose");
  EXPECT_EQ(std::ranges::count(rig.log(), form::kVoltageWarning), 1);
}

TEST(CommandRunner, refusesASecondCommandAndRunsWhatWaitsInOrder) {
  Disturbed d;
  std::vector<int> order;
  form::CommandRunner& runner = d.rig.form.runner();
  const CommandResult result = runner.run([&] {
    EXPECT_EQ(runner.run([] { FAIL(); }).ending, Ending::Refused);
    runner.runWhenIdle([&] { order.push_back(2); });
    order.push_back(1);
    throw std::runtime_error("the cable melted");
  });
  EXPECT_EQ(result.reason, "the cable melted");
  EXPECT_EQ(order, (std::vector<int>{1, 2}));
  EXPECT_FALSE(runner.isRunning());
  EXPECT_EQ(runner.press(d.rig.controls.Program_button).ending, Ending::Refused);
}

// 2732 at 25 V, then a 2764 chosen over a port that fails: a voltage of the one on the other would
// destroy the chip.
TEST(FailedSelection, leavesDeviceVoltageAndFormAsTheyWere) {
  SimulatedForm s;
  s.start();
  s.rig.select("Eprom 2732");
  s.rig.controls.Voltage_button[3].press();
  const auto look = [&] {
    return namesOf(s.rig.controls, [](const Control& c) { return c.enabled(); }) + "|" +
           namesOf(s.rig.controls, [](const Control& c) { return c.visible(); });
  };
  const SelectionState before = s.rig.state;
  const std::string formBefore = look();
  const std::int32_t position = s.rig.controls.Device.position();
  for (const std::int16_t goodCode : {s.rig.state.CtlIdle[3], s.rig.state.CtlIdle[0]}) {
    const std::size_t latch = goodCode == s.rig.state.CtlIdle[3] ? 3 : 0;
    s.rig.state.CtlIdle[latch] = 0x100;  // a load of this latch fails
    s.rig.select("Eprom 27C801");
    EXPECT_EQ(s.rig.result.ending, Ending::RunTimeError);
    EXPECT_TRUE(static_cast<const SelectionState&>(s.rig.state) == before);
    EXPECT_EQ(s.rig.controls.Device.position(), position);
    EXPECT_TRUE(s.rig.controls.Voltage_button[3].value());
    EXPECT_EQ(s.rig.state.CodeLength, 4096);
    EXPECT_EQ(s.rig.controls.VScroll1.maximum(), 15);
    EXPECT_EQ(look(), formBefore);
    s.rig.state.CtlIdle[latch] = goodCode;
  }
  // Stopped, the board rests with the fixed bits of the device that is back, at its old speed.
  const std::uint8_t atRest = s.board->latch(3);
  s.rig.screen.onTurn = [&] { s.rig.stop.stopCommand(); };
  s.rig.result = s.rig.form.runner().run([&] {
    s.rig.controls.Slider1.setValue(3);
    s.rig.controls.Device.setPosition(position + 15);
  });
  EXPECT_EQ(s.rig.result.ending, Ending::Stopped);
  EXPECT_EQ(s.board->latch(3), atRest);
  EXPECT_EQ(s.rig.controls.Slider1.value(), 18);
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

TEST(Help, isShownWhereItIsInstalled) {
  SimulatedForm s(sim::Model::kestrel5, SimulatedForm::Trace::Off);
  std::filesystem::create_directories(s.rig.folder / "data" / "help");
  writeFileAtomically(s.rig.folder / "data" / "help" / "kestrel5.hlp", "a.html\tPage\n");
  for (const char* const entry : {"mnuHelpContents", "mnuHelpSearchForHelpOn"}) s.rig.press(entry);
  const std::pair<std::string, HelpPage> contents{"kestrel5.hlp", HelpPage::Contents};
  const std::pair<std::string, HelpPage> search{"kestrel5.hlp", HelpPage::Search};
  EXPECT_EQ(s.rig.help.shown, (std::vector{contents, search}));
}

/// Everything that a press can leave behind for somebody to see.
std::string seenOf(PreparedForm& s) {
  std::ostringstream seen;
  for (const Control* const control : s.rig.controls.all()) {
    const auto* const text = dynamic_cast<const TextBox*>(control);
    seen << control->caption() << control->enabled() << control->visible()
         << static_cast<unsigned>(control->colour()) << (text != nullptr ? text->text() : "");
  }
  seen << s.bench.now() << ' ' << s.rig.dialogs.boxes.size() << ' ' << s.rig.dialogs.asked.size()
       << ' ' << s.rig.help.shown.size();
  return seen.str();
}

TEST(Form, everyButtonLeadsSomewhere) {
  std::vector<std::string> names;
  SimulatedForm any(sim::Model::kestrel5, SimulatedForm::Trace::Off);
  for (const Control* const control : any.rig.controls.all()) {
    if (dynamic_cast<const Button*>(control) != nullptr) names.push_back(control->name());
  }
  std::string silent;
  for (const std::string& name : names) {
    PreparedForm s("24C08", Bytes(0x400, 0x5A));
    writeFileAtomically(s.rig.folder / "KSSetup1.INI", "SetupName = lot\r\n");
    s.rig.controls.find(name)->setEnabled(true);
    const std::string before = seenOf(s);
    s.rig.press(name);
    if (seenOf(s) == before) silent += name + ' ';
  }
  // Those without a caption, an alert that is not up, a separator, and what the window does.
  EXPECT_EQ(silent,
            "frmDisplay1.Command1 frmDisplay1.Command2 frmDisplay1.Command3 frmDisplay1.Command4 "
            "frmDisplay1.Command5 Error_label tbToolBar(3) mnuFileExit ");
}

}  // namespace
}  // namespace kestrel::test
