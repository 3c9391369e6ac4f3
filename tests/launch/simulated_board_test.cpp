#include "app/launch/simulated_board.h"

#include <gtest/gtest.h>

#include <fstream>
#include <vector>

#include "support/temporary_folder.h"

namespace kestrel {
namespace {

launch::LaunchOptions with2764(const std::vector<std::string>& faults = {}) {
  launch::LaunchOptions options;
  options.simulate = true;
  options.chip = launch::ChipChoice{.type = "2764", .file = {}};
  for (const std::string& fault : faults) options.faults.push_back(launch::parseFault(fault));
  return options;
}

TEST(SimulatedBoard, faultsAreFitted) {
  EXPECT_THROW(launch::SimulatedBoard(with2764({"weak:2000"}), ""), launch::UsageError)
      << "one past the end";
  EXPECT_EQ(launch::SimulatedBoard(with2764({"empty"}), "").board().chip(), nullptr);
  EXPECT_EQ(launch::SimulatedBoard(with2764({"stuck:2"}), "").board().dataBus() & 0x04, 0);
}

TEST(SimulatedBoard, anUnpluggingCountsFromTheEndOfStartUp) {
  launch::SimulatedBoard simulated(with2764({"unplug:3"}), "");
  for (int access = 0; access < 10; ++access) simulated.bench().portOut(0x378, 0);
  simulated.startUpDone();
  for (int access = 0; access < 4; ++access) {
    EXPECT_TRUE(simulated.bench().isPlugged(0x378)) << access;
    simulated.bench().portOut(0x378, 0);
  }
  EXPECT_FALSE(simulated.bench().isPlugged(0x378));
}

TEST(SimulatedBoard, anotherBoardTakesOverTheChipAndTheSameOneIsNoOther) {
  launch::SimulatedBoard simulated(with2764(), "");
  simulated.bench().unplug(0x378);
  simulated.plug(sim::Model::kestrel5, 0x378);
  EXPECT_TRUE(simulated.bench().isPlugged(0x378) && !simulated.wasExchanged());
  simulated.plug(sim::Model::kestrel4, 0x278);
  EXPECT_TRUE(simulated.bench().isPlugged(0x278) && !simulated.bench().isPlugged(0x378));
  EXPECT_EQ(simulated.board().chip()->typeName(), "2764");
  EXPECT_TRUE(simulated.wasExchanged());
}

TEST(SimulatedBoard, aChipTakenOutKeepsItsFileAndTheNextOneHasNone) {
  const test::TemporaryFolder folder;
  launch::LaunchOptions options = with2764();
  options.chip->file = folder / "chip.bin";
  launch::SimulatedBoard simulated(options, "27C256");
  simulated.releaseChip();
  simulated.saveChip();
  EXPECT_EQ(std::filesystem::file_size(folder / "chip.bin"), 8192U);
  simulated.board().loadChip(std::vector<std::uint8_t>(8192, 0));
  simulated.saveChip();
  EXPECT_EQ(std::ifstream(folder / "chip.bin").get(), 0xFF);
}

}  // namespace
}  // namespace kestrel
