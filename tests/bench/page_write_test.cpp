// 28C256 and AT29C256 on the simulated board.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "devices/device_table.h"
#include "support/form_rig.h"

namespace kestrel::test {
namespace {

using testing::Each;

constexpr sim::Model kModels[]{sim::Model::kestrel4, sim::Model::kestrel5, sim::Model::kestrel6};

struct PageChip {
  const char* chip;
  const char* device;
  const char* success;
};

constexpr PageChip k28C256{"28C256", "Eeprom XICOR X28C256", "XICOR 28C256 Programmed Sucessfully"};
constexpr PageChip kAT29C256{"AT29C256", "Flash Atmel AT29C256",
                             "FLASH Atmel AT29C256 Programmed Sucessfully"};

void setUp(SimulatedForm& s, const PageChip& chip, const std::vector<std::uint8_t>& image) {
  s.start();
  s.insert(chip.chip);
  // The AT29C256 stands in the list as not available: its row is opened here, its entry's text too.
  auto& row = s.rig.state.DeviceTable[23];
  if (chip.device == kAT29C256.device) {
    row[kListedColumn] = "Y";
    FillDeviceList(s.rig.state, s.rig.controls.Device);
  }
  s.rig.select(chip.device);
  s.rig.openImage(image);
  s.rig.clearLog();
  s.bench.findings().clear();
}

TEST(PageWriteChips, areProgrammedVerifiedAndReadBackOnEveryModel) {
  for (const PageChip& chip : {k28C256, kAT29C256}) {
    for (const sim::Model model : kModels) {
      SCOPED_TRACE(std::string(chip.chip) + " on model " + std::to_string(static_cast<int>(model)));
      SimulatedForm s(model, SimulatedForm::Trace::Off);
      const auto image = randomBytes(32768, 51);
      setUp(s, chip, image);
      s.board->setChip({.softwareProtection = model != sim::Model::kestrel5});
      s.rig.controls.VerifyAfterProgramming.press();
      ASSERT_TRUE(s.rig.program());
      EXPECT_TRUE(s.rig.logged(chip.success));
      EXPECT_TRUE(s.rig.logged("Device Contents MATCHES with Buffer Contents"));
      EXPECT_TRUE(s.chipContents() == image);
      for (const sim::Finding& f : s.bench.findings().all()) ADD_FAILURE() << f.text << f.count;
      std::ranges::fill(s.rig.state.CodeBuffer, std::uint8_t{0});
      s.rig.press("Read_button");
      EXPECT_TRUE(std::equal(image.begin(), image.end(), s.rig.state.CodeBuffer.begin()));
      EXPECT_EQ(s.board->latch(0), 0x40);
    }
  }
}

TEST(PageWriteChips, eraseA28C256AndKeepTheImage) {
  SimulatedForm s;
  const auto image = randomBytes(32768, 51);
  setUp(s, k28C256, image);
  s.board->loadChip(image);
  ASSERT_TRUE(s.rig.press("EraseFlash_button"));
  EXPECT_THAT(s.rig.log(),
              testing::ElementsAre("Erasing Program Buffer", "Erasing XICOR 28C256",
                                   "Programming 28C256 XICOR Device", k28C256.success));
  EXPECT_THAT(s.chipContents(), Each(0xFF));
  EXPECT_TRUE(std::equal(image.begin(), image.end(), s.rig.state.CodeBuffer.begin()));
  EXPECT_TRUE(std::equal(image.begin(), image.end(), s.rig.state.ProgramBuffer.begin()));
}

TEST(PageWriteChips, eraseOfAnAT29C256ChangesNothing) {
  SimulatedForm s;
  const auto image = randomBytes(32768, 51);
  setUp(s, kAT29C256, image);
  s.board->loadChip(image);
  ASSERT_TRUE(s.rig.press("EraseFlash_button"));
  EXPECT_TRUE(s.chipContents() == image);
  EXPECT_TRUE(s.rig.log().empty());
}

// The wait after a page is 23 ms less the slider's value: at 18, 12 and 1 it is 5, 11 and 22 ms.
// Below 10 the bytes come too slowly for the load window of 100 us, whatever the wait.
TEST(PageWriteSpeed, hasToFitTheChipsLoadWindowAndWriteCycle) {
  struct Case {
    std::int32_t slider;
    int writeCycleMs;
    bool succeeds;
  };
  for (const Case c : {Case{18, 7, false}, {12, 10, true}, {1, 3, false}}) {
    SCOPED_TRACE(std::to_string(c.slider) + ", " + std::to_string(c.writeCycleMs) + " ms");
    SimulatedForm s(sim::Model::kestrel5, SimulatedForm::Trace::Off);
    const auto image = randomBytes(32768, 53);
    setUp(s, k28C256, image);
    s.rig.controls.Slider1.setValue(c.slider);
    s.board->setChip({.writeCycle = sim::milliseconds(c.writeCycleMs)});
    s.rig.clearLog();
    s.rig.program();
    EXPECT_EQ(s.chipContents() == image, c.succeeds);
    EXPECT_EQ(s.rig.logged("*** Programming Failure ***"), !c.succeeds);
    EXPECT_EQ(s.rig.controls.Error_label.colour() == Colour::Red, !c.succeeds);
    EXPECT_EQ(s.board->latch(0), 0x40);
  }
}

}  // namespace
}  // namespace kestrel::test
