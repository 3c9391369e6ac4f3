// Finding boards on the bench: every model on every port, several at once,
// none.

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

struct Place {
  std::uint16_t base;
  const char* text;
  std::size_t button;
  Log silent;
};

const std::vector<Place> kPlaces{
    {0x378, "378", 0, {"Port 278 Not Responding", "Port 3BC Not Responding"}},
    {0x278, "278", 1, {"Port 378 Not Responding", "Port 3BC Not Responding"}},
    {0x3BC, "3BC", 2, {"Port 278 Not Responding", "Port 378 Not Responding"}}};

using ModelAndPlace = std::tuple<std::pair<sim::Model, const char*>, Place>;
class OneBoard : public testing::TestWithParam<ModelAndPlace> {};

TEST_P(OneBoard, isFoundNamedAndRemembered) {
  const auto& [model, place] = GetParam();
  Detecting d;
  sim::Board& board = d.bench.plug(model.first, place.base);
  d.rig.form.Form_Load();
  EXPECT_TRUE(d.rig.log().empty());
  // With no codes applied yet a model 6 looks like a model 5.
  d.expectFound(model.second == std::string("6") ? "5" : model.second, place.text, place.button);
  Log expected = place.silent;
  expected.push_back("Port Selection changed to " + std::string(place.text) + "h");
  expected.push_back("KESTREL-" + std::string(model.second) +
                     " Device was FOUND at Port: " + place.text);
  EXPECT_EQ(d.test(), expected);
  d.expectFound(model.second, place.text, place.button);
  EXPECT_EQ(board.latch(0), 0x40);
  EXPECT_EQ(board.latch(3), 0xC4);
  EXPECT_TRUE(d.bench.findings().all().empty());
}

INSTANTIATE_TEST_SUITE_P(EveryModelAndPort, OneBoard,
                         testing::Combine(testing::Values(std::pair(sim::Model::kestrel4, "4"),
                                                          std::pair(sim::Model::kestrel5, "5"),
                                                          std::pair(sim::Model::kestrel6, "6")),
                                          testing::ValuesIn(kPlaces)));

TEST(SeveralBoards, theLastThatAnswersIsTaken) {
  Detecting d;
  d.bench.plug(sim::Model::kestrel5, 0x278);
  d.bench.plug(sim::Model::kestrel4, 0x3BC);
  d.rig.form.Form_Load();
  d.expectFound("4", "3BC", 2);
  EXPECT_EQ(d.test(), (Log{"Port 378 Not Responding", "Port Selection changed to 3BCh",
                           "KESTREL-4 Device was FOUND at Port: 3BC"}));
  d.bench.plug(sim::Model::kestrel5, 0x3BC);
  d.bench.plug(sim::Model::kestrel4, 0x378);
  EXPECT_EQ(d.test(),
            (Log{"Port Selection changed to 3BCh", "KESTREL-5 Device was FOUND at Port: 3BC"}));
  d.expectFound("5", "3BC", 2);
}

TEST(NoBoard, isSaidAndThePortKept) {
  Detecting d;
  d.rig.form.Form_Load();
  d.c.LPTSelection[2].press();
  const Log silence{"Port 278 Not Responding", "Port 378 Not Responding", "Port 3BC Not Responding",
                    "Can't Locate Kestrel Board at Any LPT port.",
                    "Kestrel should be connected to a LPT port, with power and "
                    "socket empty."};
  EXPECT_EQ(d.test(), silence);
  EXPECT_EQ(d.c.KestrelHardwareFound.caption(), "NO HARDWARE FOUND");
  EXPECT_EQ(d.c.KestrelHardwareFound.colour(), Colour::Red);
  EXPECT_EQ(d.c.Ready_label.caption(), "NotReady");
  EXPECT_EQ(d.c.Ready_label.colour(), Colour::Red);
  EXPECT_EQ(d.c.PortSelected.text(), "None");
  EXPECT_FALSE(d.c.LPTSelection[2].value());
  EXPECT_EQ(d.rig.state.PortBase, 0x3BC);
  EXPECT_EQ(d.rig.state.StatusPort, 0x3BD);
  EXPECT_EQ(d.rig.state.KestrelModel, 0);
}

TEST(HardwareTest, endsAnAlert) {
  Detecting d;
  sim::Board& board = d.bench.plug(sim::Model::kestrel5, 0x378);
  d.rig.form.Form_Load();
  board.insert(sim::makeChip("27C256"));
  board.loadChip(std::vector<std::uint8_t>(32768, 0x00));
  d.rig.select("Eprom 27C256");
  d.rig.press("Blank_button");
  ASSERT_EQ(d.c.Error_label.colour(), Colour::Red);
  ASSERT_FALSE(d.c.Read_button.enabled());
  (void)d.test();
  EXPECT_EQ(d.c.Error_label.colour(), Colour::ButtonFace);
  EXPECT_TRUE(d.c.Read_button.enabled());
  EXPECT_FALSE(d.c.Verify_button.enabled());
}

}  // namespace
}  // namespace kestrel::test
