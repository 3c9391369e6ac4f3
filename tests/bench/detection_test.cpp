// Finding boards on the bench: every model, every port, several boards at once, none.

#include <gtest/gtest.h>

#include "app/state/text_format.h"
#include "platform/atomic_file.h"
#include "support/form_rig.h"

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
  std::string iniLine(std::size_t number) {
    return linesOf(readWholeTextFile(rig.folder / "config/kestrel6.ini")).at(number);
  }
  void expectFound(const std::string& model, const std::string& base, std::size_t button) {
    EXPECT_EQ(c.KestrelHardwareFound.caption(), "MODEL " + model + " - PC port " + base + "h");
    EXPECT_EQ(c.KestrelHardwareFound.colour(), Colour::ButtonText);
    EXPECT_EQ(c.Ready_label.caption(), "Ready");
    EXPECT_EQ(c.Ready_label.colour(), Colour::Green);
    EXPECT_EQ(c.PortSelected.text(), base + "h");
    EXPECT_TRUE(c.LPTSelection[button].value());
    EXPECT_EQ(iniLine(2), "IO_PORT = " + base);
    EXPECT_EQ(iniLine(3), "MODEL =  " + model);
  }
};

struct Plugged {
  sim::Model model;
  const char* name;
  std::uint16_t base;
  const char* port;
  std::size_t button;
  Log silent;
};
class OneBoard : public testing::TestWithParam<Plugged> {};

TEST_P(OneBoard, isFoundNamedAndRemembered) {
  const Plugged& p = GetParam();
  Detecting d;
  sim::Board& board = d.bench.plug(p.model, p.base);
  d.rig.form.Form_Load();
  // With no codes applied yet a model 6 looks like a model 5.
  d.expectFound(p.model == sim::Model::kestrel6 ? "5" : p.name, p.port, p.button);
  Log expected = p.silent;
  expected.push_back("Port Selection changed to " + std::string(p.port) + "h");
  expected.push_back("KESTREL-" + std::string(p.name) + " Device was FOUND at Port: " + p.port);
  EXPECT_EQ(d.test(), expected);
  d.expectFound(p.name, p.port, p.button);
  EXPECT_EQ(board.latch(0), 0x40);
  EXPECT_EQ(board.latch(3), 0xC4);
  EXPECT_TRUE(d.bench.findings().empty());
}

INSTANTIATE_TEST_SUITE_P(
    EveryModelAndPort, OneBoard,
    testing::Values(Plugged{sim::Model::kestrel4,
                            "4",
                            0x378,
                            "378",
                            0,
                            {"Port 278 Not Responding", "Port 3BC Not Responding"}},
                    Plugged{sim::Model::kestrel5,
                            "5",
                            0x278,
                            "278",
                            1,
                            {"Port 378 Not Responding", "Port 3BC Not Responding"}},
                    Plugged{sim::Model::kestrel6,
                            "6",
                            0x3BC,
                            "3BC",
                            2,
                            {"Port 278 Not Responding", "Port 378 Not Responding"}}));

TEST(SeveralBoards, theLastThatAnswersIsTaken) {
  Detecting d;
  d.bench.plug(sim::Model::kestrel5, 0x278);
  d.bench.plug(sim::Model::kestrel4, 0x3BC);
  d.rig.form.Form_Load();
  d.expectFound("4", "3BC", 2);
  EXPECT_EQ(d.test(), (Log{"Port 378 Not Responding", "Port Selection changed to 3BCh",
                           "KESTREL-4 Device was FOUND at Port: 3BC"}));
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

}  // namespace
}  // namespace kestrel::test
