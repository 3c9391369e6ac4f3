#include "platform/atomic_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "platform/runtime_error.h"
#include "support/temporary_folder.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;

TEST(AtomicFile, replacesTheWholeFileAlsoBehindALinkAndKeepsItsPermissions) {
  const test::TemporaryFolder folder;
  writeFileAtomically(folder / "real", "a longer first content");
  fs::permissions(folder / "real", fs::perms::owner_read | fs::perms::owner_write);
  fs::create_symlink("real", folder / "link");
  writeFileAtomically(folder / "link", "second");
  EXPECT_TRUE(fs::is_symlink(folder / "link"));
  EXPECT_EQ(readWholeTextFile(folder / "real"), "second");
  EXPECT_EQ(fs::status(folder / "real").permissions(),
            fs::perms::owner_read | fs::perms::owner_write);
}

TEST(AtomicFile, refusesWhatCannotBeReadOrWrittenAndWhatIsTooLong) {
  const test::TemporaryFolder folder;
  EXPECT_THROW((void)readWholeFile(folder.path(), 10), FileError);
  EXPECT_THROW(writeFileAtomically(folder.path(), "x"), FileError);
  EXPECT_THROW(writeFileAtomically("", "x"), FileError);
  writeFileAtomically(folder / "ten", "0123456789");
  EXPECT_EQ(readWholeFile(folder / "ten", 10).size(), 10U);
  EXPECT_THROW((void)readWholeFile(folder / "ten", 9), FileError);
  try {
    writeFileAtomically("/dev/full", "content");
    FAIL() << "a write to a full device went through";
  } catch (const FileError& error) {
    EXPECT_EQ(error.number(), kDiskFullError);
    EXPECT_EQ(std::string(error.what()), "Cannot write /dev/full: No space left on device");
  }
}

// A writer that is killed at any moment leaves one of the two contents, never a part of one.
TEST(AtomicFile, aKilledWriterLeavesAWholeFile) {
  const test::TemporaryFolder folder;
  const fs::path file = folder / "image.bin";
  const std::string first(200'000, 'a');
  const std::string second(200'000, 'b');
  writeFileAtomically(file, first);
  for (unsigned delayUs = 0; delayUs < 20'000; delayUs += 1'000) {
    const pid_t writer = ::fork();
    for (; writer == 0; writeFileAtomically(file, first)) writeFileAtomically(file, second);
    ::usleep(delayUs);
    ::kill(writer, SIGKILL);
    ::waitpid(writer, nullptr, 0);
    const std::string now = readWholeTextFile(file);
    EXPECT_TRUE(now == first || now == second);
  }
}

}  // namespace
}  // namespace kestrel
