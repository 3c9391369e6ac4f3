// Finding boards on the bench: every model, every port, several boards at once, none.

#include <gtest/gtest.h>

#include "platform/atomic_file.h"
#include "support/script_form.h"

namespace kestrel::test {
namespace {

using Log = std::vector<std::string>;

/// A form on a bench with the boards that a test plugs in.
struct Detecting {
  sim::Bench bench;
  sim::SimulatedPort port{bench};
  FormRig rig{port, port};
  Controls& c = rig.controls;

  Log test() {
    rig.clearLog();
    EXPECT_TRUE(rig.press("TestHardware_button"));
    return rig.log();
  }
  void expectFound(const std::string& model, const std::string& base, std::size_t button) {
    EXPECT_EQ(c.KestrelHardwareFound.caption(), "MODEL " + model + " - PC port " + base + "h");
    EXPECT_EQ(c.Ready_label.caption(), "Ready");
    EXPECT_EQ(c.Ready_label.colour(), Colour::Green);
    EXPECT_EQ(c.PortSelected.text(), base + "h");
    EXPECT_TRUE(c.LPTSelection[button].value());
    EXPECT_TRUE(readWholeTextFile(rig.folder / "config/kestrel6.ini")
                    .ends_with("IO_PORT = " + base + "\r\nMODEL =  " + model + "\r\n"));
  }
};

TEST(OneBoard, isFoundNamedAndRemembered) {
  using Plugged = std::tuple<sim::Model, std::string, std::uint16_t, std::string, Log>;
  std::size_t button = 0;
  for (const auto& [model, name, base, port, silent] :
       std::initializer_list<Plugged>{{sim::Model::kestrel4, "4", 0x378, "378", {"278", "3BC"}},
                                      {sim::Model::kestrel5, "5", 0x278, "278", {"378", "3BC"}},
                                      {sim::Model::kestrel6, "6", 0x3BC, "3BC", {"278", "378"}}}) {
    Detecting d;
    const sim::Board& board = d.bench.plug(model, base);
    d.rig.form.Form_Load();
    // With no codes applied yet a model 6 looks like a model 5.
    d.expectFound(name == "6" ? "5" : name, port, button);
    EXPECT_EQ(d.test(),
              (Log{"Port " + silent[0] + " Not Responding", "Port " + silent[1] + " Not Responding",
                   "Port Selection changed to " + port + "h",
                   "KESTREL-" + name + " Device was FOUND at Port: " + port}));
    d.expectFound(name, port, button++);
    EXPECT_EQ(board.latch(0), 0x40);
    EXPECT_EQ(board.latch(3), 0xC4);
    EXPECT_TRUE(d.bench.findings().empty());
  }
}

TEST(SeveralBoards, theLastThatAnswersIsTaken) {
  Detecting d;
  d.bench.plug(sim::Model::kestrel5, 0x278);
  d.bench.plug(sim::Model::kestrel4, 0x3BC);
  d.rig.form.Form_Load();
  d.expectFound("4", "3BC", 2);
}

TEST(NoBoard, isSaidAndThePortKept) {
  Detecting d;
  d.rig.form.Form_Load();
  d.c.LPTSelection[2].press();
  EXPECT_EQ(d.test(),
            (Log{"Port 278 Not Responding", "Port 378 Not Responding", "Port 3BC Not Responding",
                 "Can't Locate Kestrel Board at Any LPT port.",
                 "Kestrel should be connected to a LPT port, with power and socket empty."}));
  EXPECT_EQ(d.c.KestrelHardwareFound.caption(), "NO HARDWARE FOUND");
  EXPECT_EQ(d.c.Ready_label.caption(), "NotReady");
  EXPECT_EQ(d.c.PortSelected.text(), "None");
  EXPECT_FALSE(d.c.LPTSelection[2].value());
  EXPECT_EQ(d.rig.state.PortBase, 0x3BC);
}

// The status bytes of a board at 278h; the other ports are silent.
TEST(Signatures, tellTheModels) {
  const std::vector<std::pair<std::deque<std::uint8_t>, const char*>> cases{
      {{0x0F, 0xF0, 0xFF, 0xFF, 0x78, 0x70, 0x70, 0x78}, "MODEL 5 - PC port 278h"},  // FEh
      {{0x00, 0x70, 0x8F, 0x7F}, "MODEL 4 - PC port 278h"},  // both signatures
      {{0x10, 0x70, 0x00, 0x60}, "NO HARDWARE FOUND"},
      {{0x40, 0x70, 0x00, 0x30}, "NO HARDWARE FOUND"}};
  ScriptForm f;
  f.load();
  for (const auto& [answers, caption] : cases) {
    f.port.answers = answers;
    ASSERT_TRUE(f.rig.press("menuTestHardware"));
    EXPECT_EQ(f.c.KestrelHardwareFound.caption(), caption);
  }
}

}  // namespace
}  // namespace kestrel::test
