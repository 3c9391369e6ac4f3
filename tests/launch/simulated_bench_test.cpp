#include "app/launch/simulated_bench.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/atomic_file.h"
#include "platform/runtime_error.h"
#include "support/temporary_folder.h"

namespace kestrel {
namespace {

using Bytes = std::vector<std::uint8_t>;

LaunchOptions withChip(const std::string& type, const std::filesystem::path& file) {
  LaunchOptions options;
  options.simulate = true;
  options.chip = ChipChoice{.type = type, .file = file};
  return options;
}

TEST(SimulatedBench, anAbsentChipFileIsABlankChipThatIsWrittenAtTheEnd) {
  const test::TemporaryFolder folder;
  SimulatedBench simulated(withChip("2764", folder / "chip.bin"), "27C256");
  EXPECT_EQ(simulated.bench().board(0x378)->chip()->typeName(), "2764");
  simulated.saveChip();
  EXPECT_EQ(readWholeFile(folder / "chip.bin", 10'000), Bytes(8192, 0xFF));
}

TEST(SimulatedBench, theFileHoldsTheContentsAndTakesChanges) {
  const test::TemporaryFolder folder;
  writeFileAtomically(folder / "chip.bin", Bytes(8192, 0x5A));
  SimulatedBench simulated(withChip("2764", folder / "chip.bin"), "");
  EXPECT_EQ(simulated.bench().board(0x378)->chip()->contents()[8191], 0x5A);
  simulated.bench().board(0x378)->blankChip();
  simulated.saveChip();
  EXPECT_EQ(readWholeFile(folder / "chip.bin", 10'000)[0], 0xFF);
}

TEST(SimulatedBench, aFileOfAnotherSizeIsRefusedAndLeftAlone) {
  const test::TemporaryFolder folder;
  writeFileAtomically(folder / "chip.bin", Bytes(8191, 1));
  EXPECT_THROW(SimulatedBench(withChip("2764", folder / "chip.bin"), ""), UsageError);
  EXPECT_THROW(SimulatedBench(withChip("2764", folder.path()), ""), FileError);
  EXPECT_EQ(readWholeFile(folder / "chip.bin", 10'000).size(), 8191U);
}

TEST(SimulatedBench, aChipTakenOutKeepsItsFileAndTheNextOneHasNone) {
  const test::TemporaryFolder folder;
  SimulatedBench simulated(withChip("2764", folder / "chip.bin"), "");
  sim::Board& board = *simulated.bench().board(0x378);
  simulated.releaseChip();
  board.loadChip(Bytes(8192, 0));
  simulated.saveChip();
  EXPECT_EQ(readWholeFile(folder / "chip.bin", 10'000)[0], 0xFF);
}

TEST(SimulatedBench, theChipMayLieBesideTheBoardForATime) {
  const test::TemporaryFolder folder;
  SimulatedBench simulated(withChip("2764", folder / "chip.bin"), "");
  sim::Board& board = *simulated.bench().board(0x378);
  simulated.takeChipOut();
  simulated.takeChipOut();
  EXPECT_EQ(board.chip(), nullptr);
  simulated.putChipBack();
  simulated.putChipBack();
  ASSERT_NE(board.chip(), nullptr);
  EXPECT_EQ(board.chip()->typeName(), "2764");
}

TEST(SimulatedBench, faultsAreFitted) {
  LaunchOptions options = withChip("2764", {});
  options.faults = {parseFault("weak:2000")};
  EXPECT_THROW(SimulatedBench(options, ""), UsageError) << "one past the end";
  options.faults = {parseFault("empty")};
  EXPECT_EQ(SimulatedBench(options, "").bench().board(0x378)->chip(), nullptr);
  options.faults = {parseFault("stuck:2")};
  EXPECT_EQ(SimulatedBench(options, "").bench().board(0x378)->dataBus() & 0x04, 0);
}

TEST(SimulatedBench, anUnpluggingCountsFromTheEndOfStartUp) {
  LaunchOptions options = withChip("2764", {});
  options.faults = {parseFault("unplug:3")};
  SimulatedBench simulated(options, "");
  for (int access = 0; access < 10; ++access) simulated.bench().portOut(0x378, 0);
  simulated.startUpDone();
  for (int access = 0; access < 3; ++access) {
    EXPECT_TRUE(simulated.bench().isPlugged(0x378));
    simulated.bench().portOut(0x378, 0);
  }
  simulated.bench().portOut(0x378, 0);
  EXPECT_FALSE(simulated.bench().isPlugged(0x378));
}

TEST(SimulatedBench, theBoardIsTheOneOfTheOptions) {
  LaunchOptions options = withChip("2764", {});
  options.model = sim::Model::kestrel6;
  options.lpt = std::uint16_t{0x3BC};
  SimulatedBench simulated(options, "");
  EXPECT_EQ(simulated.base(), 0x3BC);
  EXPECT_EQ(simulated.bench().board(0x3BC)->model(), sim::Model::kestrel6);
  EXPECT_EQ(simulated.bench().board(0x378), nullptr);
}

TEST(SimulatedBench, anotherBoardTakesOverTheChip) {
  SimulatedBench simulated(withChip("2764", {}), "");
  simulated.plug(sim::Model::kestrel4, 0x278);
  EXPECT_FALSE(simulated.bench().isPlugged(0x378));
  EXPECT_TRUE(simulated.bench().isPlugged(0x278));
  EXPECT_EQ(simulated.board().chip()->typeName(), "2764");
  EXPECT_TRUE(simulated.wasExchanged());
}

TEST(SimulatedBench, theSameBoardPluggedInAgainIsNoOther) {
  SimulatedBench simulated(withChip("2764", {}), "");
  simulated.bench().unplug(0x378);
  simulated.plug(sim::Model::kestrel5, 0x378);
  EXPECT_TRUE(simulated.bench().isPlugged(0x378));
  EXPECT_FALSE(simulated.wasExchanged());
}

TEST(ChipTypeForDevice, isAWordOfTheDevicesName) {
  EXPECT_EQ(chipTypeForDevice("Eprom 27C256                  "), "27C256");
  EXPECT_EQ(chipTypeForDevice("Eprom 2732A"), "2732A");
  EXPECT_EQ(chipTypeForDevice("uC Atmel AT90S2313 Micro"), "");
}

}  // namespace
}  // namespace kestrel
