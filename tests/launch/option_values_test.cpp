#include "app/launch/option_values.h"

#include <gmock/gmock.h>

#include "app/launch/program_folders.h"
#include "support/temporary_folder.h"

namespace kestrel {
namespace {

using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

TEST(OptionValues, aChipMayBringAFile) {
  EXPECT_EQ(parseChip("27c256").type, "27c256");
  EXPECT_TRUE(parseChip("27C256").file.empty());
  EXPECT_EQ(parseChip("27C256=a=b.bin").file, "a=b.bin");
  EXPECT_THAT([] { (void)parseChip("27C999"); }, ThrowsMessage<UsageError>(HasSubstr("27C256")));
  EXPECT_THROW((void)parseChip("27C256="), UsageError);
  EXPECT_THROW((void)parseChip(""), UsageError);
}

TEST(OptionValues, faultsTakeTheirNumbersInTheirOwnBase) {
  EXPECT_EQ(parseFault("weak:1F00").value, 0x1F00U);
  EXPECT_EQ(parseFault("unplug:1000").value, 1000U);
  EXPECT_EQ(parseFault("stuck:7").kind, Fault::Kind::StuckDataLine);
  EXPECT_EQ(parseFault("empty").kind, Fault::Kind::EmptySocket);
  for (const char* const wrong : {"", "weak", "weak:", "weak:xyz", "stuck:8", "stuck:-1",
                                  "unplug:1F", "unplug:99999999999999999999", "fire:1"}) {
    EXPECT_THROW((void)parseFault(wrong), UsageError) << wrong;
  }
}

TEST(OptionValues, portsAreTheThreeBases) {
  EXPECT_EQ(parseLpt("3bc"), 0x3BC);
  EXPECT_THAT([] { (void)parseLpt("379"); },
              ThrowsMessage<UsageError>(HasSubstr("378, 278 or 3BC")));
  const PortChoice port = parsePort("278=/dev/parport1");
  EXPECT_EQ(port.base, 0x278);
  EXPECT_EQ(port.device, "/dev/parport1");
  for (const char* const wrong : {"278", "278=", "=x", "e010=/dev/parport0"}) {
    EXPECT_THROW((void)parsePort(wrong), UsageError) << wrong;
  }
}

TEST(OptionValues, voltagesModelsAndCountsAreChecked) {
  EXPECT_EQ(parseBoardVpp("12.5"), 12'500);
  EXPECT_THROW((void)parseBoardVpp("13"), UsageError);
  EXPECT_EQ(parseModel("6"), sim::Model::kestrel6);
  EXPECT_THROW((void)parseModel("7"), UsageError);
  EXPECT_EQ(parseCountNs("100"), 100);
  EXPECT_THROW((void)parseCountNs("0"), UsageError);
}

TEST(OptionValues, optionsThatContradictEachOtherAreRefused) {
  LaunchOptions options;
  options.chip = ChipChoice{.type = "27C256", .file = {}};
  EXPECT_THAT([&] { checkTogether(options); }, ThrowsMessage<UsageError>(HasSubstr("--simulate")));
  options.simulate = true;
  EXPECT_NO_THROW(checkTogether(options));
  options.boardVppMillivolts = 21'000;
  EXPECT_THROW(checkTogether(options), UsageError);
  options.model = sim::Model::kestrel4;
  EXPECT_NO_THROW(checkTogether(options));
  options.ports.push_back({.base = 0x378, .device = "/dev/parport0"});
  EXPECT_THROW(checkTogether(options), UsageError);
}

TEST(ProgramFolders, everySimulatedBoardHasItsOwn) {
  const test::TemporaryFolder user;
  ASSERT_EQ(::setenv("XDG_CONFIG_HOME", user.path().c_str(), 1), 0);
  LaunchOptions options;
  EXPECT_EQ(programFolders(options).configuration, user / "kestrel");
  options.simulate = true;
  EXPECT_EQ(programFolders(options).configuration, user / "kestrel" / "simulator" / "5-378");
  options.model = sim::Model::kestrel4;
  options.lpt = std::uint16_t{0x3BC};
  EXPECT_EQ(programFolders(options).configuration, user / "kestrel" / "simulator" / "4-3BC");
  EXPECT_TRUE(std::filesystem::is_directory(user / "kestrel" / "simulator" / "4-3BC"));
  options.home = user / "elsewhere";
  EXPECT_EQ(programFolders(options).configuration, user / "elsewhere");
}

TEST(ProgramFolders, aBuiltProgramFindsTheSourceTreesData) {
  EXPECT_TRUE(std::filesystem::exists(programFolders({}).data / "sounds" / "init.wav"));
}

}  // namespace
}  // namespace kestrel
