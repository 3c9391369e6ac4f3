#include <gtest/gtest.h>
#include <pwd.h>
#include <sched.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <vector>

#include "app/launch/machine_options.h"
#include "app/launch/machine_ports.h"
#include "app/launch/option_values.h"
#include "app/launch/program_folders.h"
#include "app/launch/separate_files.h"
#include "app/launch/simulated_board.h"
#include "hardware/ports/real_time.h"
#include "support/child.h"
#include "support/temporary_folder.h"

namespace kestrel {
namespace {

TEST(OptionValues, mayHaveAnEqualsSignOrAFraction) {
  EXPECT_EQ(launch::parseChip("27C256=a=b.bin").file, "a=b.bin");
  EXPECT_EQ(launch::parseBoardVpp("12.5"), 12'500);
}

TEST(ProgramFolders, everySimulatedBoardHasItsOwn) {
  const test::TemporaryFolder user;
  ASSERT_EQ(::setenv("XDG_CONFIG_HOME", user.path().c_str(), 1), 0);
  launch::LaunchOptions options;
  EXPECT_EQ(launch::programFolders(options).configuration, user / "kestrel");
  options.simulate = true;
  EXPECT_EQ(launch::programFolders(options).configuration,
            user / "kestrel" / "simulator" / "5-378");
  options.model = sim::Model::kestrel4;
  options.lpt = std::uint16_t{0x3BC};
  EXPECT_EQ(launch::programFolders(options).configuration,
            user / "kestrel" / "simulator" / "4-3BC");
  options.home = user / "elsewhere";
  EXPECT_EQ(launch::programFolders(options).configuration, user / "elsewhere");
  EXPECT_TRUE(std::filesystem::exists(launch::programFolders({}).data / "sounds" / "init.wav"));
}

/// Whether the files of this user are there without XDG_CONFIG_HOME; "usage": nobody knows where.
bool isConfigurationOf(uid_t user, const char* home, const std::string& expected) {
  return test::holdsInChild([&] {
    ::unsetenv("XDG_CONFIG_HOME");
    ::unsetenv("HOME");
    if (home != nullptr) ::setenv("HOME", home, 1);
    if (::setuid(user) != 0) return false;
    try {
      return launch::programFolders({}).configuration == expected;
    } catch (const launch::UsageError&) {
      return expected == "usage";
    }
  });
}

TEST(ProgramFolders, areFoundWithoutHomeAndBelongToTheOwnerOfTheHome) {
  const passwd* const nobody = ::getpwnam("nobody");
  constexpr uid_t kSomeUser = 4711;
  if (::geteuid() != 0 || nobody == nullptr || ::getpwuid(kSomeUser) != nullptr) {
    GTEST_SKIP() << "needs a user with and one without a password entry";
  }
  for (const char* const unset : {static_cast<const char*>(nullptr), ""}) {
    const passwd& user = *::getpwnam("nobody");
    EXPECT_TRUE(
        isConfigurationOf(user.pw_uid, unset, user.pw_dir + std::string("/.config/kestrel")));
    EXPECT_TRUE(isConfigurationOf(kSomeUser, unset, "usage"));
  }
  const test::TemporaryFolder home;
  ASSERT_EQ(::chown(home.path().c_str(), kSomeUser, kSomeUser), 0);
  EXPECT_TRUE(isConfigurationOf(0, home.path().c_str(), home / ".config/kestrel"));
  for (const char* const made : {".config", ".config/kestrel"}) {
    struct stat status {};
    ASSERT_EQ(::stat((home / made).c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, kSomeUser) << "the superuser leaves " << made << " to the user";
  }
}

TEST(FileOptions, thatNameOneFileAreRefused) {
  const test::TemporaryFolder folder;
  std::filesystem::create_symlink("chip.bin", folder / "link");
  const auto check = [](std::initializer_list<launch::FileOption> files) {
    launch::checkSeparate(files);
  };
  const std::filesystem::path chip = folder / "chip.bin";
  EXPECT_NO_THROW(check({{"-i", chip}, {"-o", folder / "out.bin"}, {"--trace", ""}, {"--x", ""}}));
  EXPECT_NO_THROW(check({{"-o", "/dev/null"}, {"--trace", "/dev/null"}}));
  EXPECT_THROW(check({{"-i", folder / "in.bin"}, {"-o", folder / "link"}, {"--chip", chip}}),
               launch::UsageError);
}

// From the first operation to the end of the last; a command within a command changes nothing.
TEST(MachinePorts, takeRealTimePriorityForOperationsAlone) {
  if (!ports::RealTimePriority().isGranted()) GTEST_SKIP() << "no right to it here";
  launch::LaunchOptions options;
  for (const char* const port : {"378=/dev/no1", "278=/dev/no2", "3BC=/dev/no3"}) {
    options.ports.push_back(launch::parsePort(port));
  }
  const StopSwitch stop;
  launch::MachinePorts ports(options, {}, stop);
  const auto isRealTime = [] {
    return (::sched_getscheduler(0) & ~SCHED_RESET_ON_FORK) == SCHED_FIFO;
  };
  EXPECT_FALSE(isRealTime());
  ports.beginOperation();
  EXPECT_TRUE(isRealTime());
  ports.beginOperation();
  ports.endOperation();
  EXPECT_TRUE(isRealTime());
  ports.endOperation();
  EXPECT_FALSE(isRealTime());
}

launch::LaunchOptions with2764(const std::vector<std::string>& faults = {}) {
  launch::LaunchOptions options;
  options.simulate = true;
  options.chip = launch::ChipChoice{.type = "2764", .file = {}};
  for (const std::string& fault : faults) options.faults.push_back(launch::parseFault(fault));
  return options;
}

TEST(SimulatedBoard, faultsAreFitted) {
  EXPECT_EQ(launch::chipTypeForDevice("Eprom M27C256"), "27C256");
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

TEST(SimulatedBoard, aChipThatReturnsToItsFirstContentsIsWrittenToo) {
  const test::TemporaryFolder folder;
  launch::LaunchOptions options = with2764();
  options.chip->file = folder / "chip.bin";
  launch::SimulatedBoard simulated(options, "");
  for (const auto value : std::initializer_list<std::uint8_t>{0xFF, 0x00, 0xFF}) {
    simulated.board().loadChip(std::vector<std::uint8_t>(8192, value));
    simulated.saveChip();
    EXPECT_EQ(std::ifstream(options.chip->file).get(), value);
  }
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
