#include "platform/atomic_file.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <thread>

#include "platform/file_target.h"
#include "platform/runtime_error.h"
#include "support/child.h"
#include "support/temporary_folder.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;
using test::holdsForUser, test::holdsInChild;

constexpr uid_t kSomeUser = 4711;
constexpr uid_t kOtherUser = 4712;

struct stat statusOf(const fs::path& path) {
  struct stat status {};
  ::stat(path.c_str(), &status);
  return status;
}

/// What the steps throw, or an empty text.
std::string failureOf(const std::function<void()>& steps) {
  try {
    steps();
  } catch (const std::exception& error) {
    return error.what();
  }
  return {};
}

std::string failureOfWriting(const fs::path& path) {
  return failureOf([&] { writeFileAtomically(path, "new"); });
}

std::size_t entriesOf(const fs::path& folder) {
  return static_cast<std::size_t>(
      std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

TEST(AtomicFile, replacesTheWholeFileAndKeepsWhatBelongsToIt) {
  const test::TemporaryFolder folder;
  const fs::path file = folder / "real";
  writeFileAtomically(file, "a longer first content");
  ASSERT_EQ(::chmod(file.c_str(), 06750), 0);
  const bool hasAttributes = ::setxattr(file.c_str(), "user.origin", "lab", 3, 0) == 0;
  const ino_t earlier = statusOf(file).st_ino;
  writeFileAtomically(file, "second");
  EXPECT_EQ(readWholeTextFile(file), "second");
  EXPECT_NE(statusOf(file).st_ino, earlier);
  EXPECT_EQ(statusOf(file).st_mode & 07777U, 0750U) << "permissions yes, set-user-id no";
  if (hasAttributes) {
    std::string value(3, ' ');
    EXPECT_EQ(::getxattr(file.c_str(), "user.origin", value.data(), 3), 3);
    EXPECT_EQ(value, "lab");
  }
  const mode_t mask = ::umask(027);
  writeFileAtomically(folder / "new", "x");
  ::umask(mask);
  EXPECT_EQ(statusOf(folder / "new").st_mode & 07777U, 0640U);
}

TEST(AtomicFile, followsLinksAsTheSystemDoes) {
  const test::TemporaryFolder folder;
  fs::create_directories(folder / "a/b");
  fs::create_directory_symlink("a/b", folder / "link");
  fs::create_symlink("../there", folder / "a/dangling");
  writeFileAtomically(folder / "link/../file", "in a");
  writeFileAtomically(folder / "a/dangling", "beside a");
  EXPECT_EQ(readWholeTextFile(folder / "a/file"), "in a");
  EXPECT_TRUE(fs::is_symlink(folder / "a/dangling"));
  EXPECT_EQ(readWholeTextFile(folder / "there"), "beside a");
}

TEST(AtomicFile, writesInPlaceWhatANewFileWouldPart) {
  const test::TemporaryFolder folder;
  writeFileAtomically(folder / "one", "a longer first content");
  fs::create_hard_link(folder / "one", folder / "two");
  ASSERT_EQ(::chmod((folder / "one").c_str(), 04755), 0);
  writeFileAtomically(folder / "one", "new");
  EXPECT_EQ(readWholeTextFile(folder / "two"), "new");
  EXPECT_EQ(statusOf(folder / "two").st_mode & 07777U, 0755U);
  // A link of /proc leads to a file without a name, and reads as the name of another.
  const int opened = ::open((folder / "one").c_str(), O_RDONLY | O_CLOEXEC);
  fs::remove(folder / "one");
  writeFileAtomically(folder / "one (deleted)", "another");
  writeFileAtomically("/proc/self/fd/" + std::to_string(opened), "unnamed");
  EXPECT_EQ(readWholeTextFile(folder / "two"), "unnamed");
  EXPECT_EQ(readWholeTextFile(folder / "one (deleted)"), "another");
  ::close(opened);
}

TEST(AtomicFile, leavesEveryFileToItsOwner) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs two users";
  const test::TemporaryFolder folder;
  const auto ownerOf = [&](const char* name) { return statusOf(folder / name).st_uid; };
  writeFileAtomically(folder / "shared", "old");
  fs::create_directory(folder / "home");
  for (const char* const name : {"shared", "home"}) {
    ASSERT_EQ(::chown((folder / name).c_str(), kSomeUser, kSomeUser), 0);
  }
  fs::permissions(folder / "shared", fs::perms(0666));
  writeFileAtomically(folder / "shared", "by the superuser");
  writeFileAtomically(folder / "home/new", "by the superuser");
  EXPECT_EQ(ownerOf("shared"), kSomeUser);
  EXPECT_EQ(ownerOf("home/new"), kSomeUser) << "the user could not change it else";
  for (const fs::perms access : {fs::perms(0777), fs::perms(0755)}) {  // open and closed to others
    fs::permissions(folder.path(), access);
    EXPECT_TRUE(holdsForUser(kOtherUser, [&] {
      writeFileAtomically(folder / "shared", "by another");
      return readWholeTextFile(folder / "shared") == "by another";
    }));
    EXPECT_EQ(ownerOf("shared"), kSomeUser);
    EXPECT_EQ(statusOf(folder / "shared").st_mode & 07777U, 0666U);
  }
  fs::permissions(folder / "shared", fs::perms(0644));
  EXPECT_TRUE(holdsForUser(kOtherUser, [&] {
    return failureOfWriting(folder / "shared").ends_with("Permission denied") &&
           failureOfWriting(folder / "new").ends_with("Permission denied");
  }));
  EXPECT_TRUE(holdsForUser(kSomeUser, [&] {
    fs::permissions(folder / "home/new", fs::perms(0444));
    return failureOfWriting(folder / "home/new").ends_with("Permission denied");
  })) << "write-protected by its owner";
}

TEST(AtomicFile, refusesWhatCannotBeReadOrWrittenAndWhatIsTooLong) {
  const test::TemporaryFolder folder;
  EXPECT_THROW((void)readWholeFile(folder.path(), 10), FileError);
  EXPECT_THROW(writeFileAtomically("", "x"), FileError);
  writeFileAtomically(folder / "ten", "0123456789");
  EXPECT_EQ(readWholeFile(folder / "ten", 10).size(), 10U);
  EXPECT_THROW((void)readWholeFile(folder / "ten", 9), FileError);
  fs::create_symlink("loop", folder / "loop");
  EXPECT_TRUE(failureOfWriting(folder / "loop").ends_with("Too many levels of symbolic links"));
  EXPECT_TRUE(failureOfWriting(folder / std::string(256, 'n')).ends_with("File name too long"));
  EXPECT_TRUE(failureOfWriting(folder.path()).ends_with("Is a directory"));
  EXPECT_TRUE(failureOfWriting(folder / "ten/").ends_with("Not a directory"));
  using testing::Property, testing::StrEq;
  EXPECT_THAT(
      [] { writeFileAtomically("/dev/full", "content"); },
      testing::Throws<FileError>(testing::AllOf(
          Property(&FileError::number, kDiskFullError),
          Property(&FileError::what, StrEq("Cannot write /dev/full: No space left on device")))));
}

// The second file has another name, so that it is written in place.
TEST(AtomicFile, aFullDiskLeavesTheEarlierContentsAndNothingElse) {
  const test::TemporaryFolder folder;
  const auto keepsOldFiles = [&] {
    writeFileAtomically(folder / "one", "old");
    writeFileAtomically(folder / "two", "old");
    fs::create_hard_link(folder / "two", folder / "three");
    const std::string big(200'000, 'x');
    for (const char* const name : {"one", "two"}) {
      EXPECT_NE(failureOf([&] { writeFileAtomically(folder / name, big); }), "");
      if (readWholeTextFile(folder / name) != "old") return false;
    }
    return entriesOf(folder.path()) == 3;
  };
  EXPECT_TRUE(holdsInChild([&] {
    std::signal(SIGXFSZ, SIG_IGN);  // as the programs do
    const rlimit limit{.rlim_cur = 100'000, .rlim_max = 100'000};
    return ::setrlimit(RLIMIT_FSIZE, &limit) == 0 && keepsOldFiles();
  })) << "a limit of the file size";
  for (const char* const name : {"one", "two", "three"}) fs::remove(folder / name);
  EXPECT_TRUE(holdsInChild([&] {
    const bool mayMount = ::unshare(CLONE_NEWNS) == 0 &&
                          ::mount("", "/", "", MS_REC | MS_PRIVATE, nullptr) == 0 &&
                          ::mount("", folder.path().c_str(), "tmpfs", 0, "size=128k") == 0;
    return !mayMount || keepsOldFiles();
  })) << "a small disk";
}

// A pipe without its other end, or with one that does nothing, would hold the program for ever.
TEST(AtomicFile, aPipeIsWaitedForUntilTheStop) {
  const test::TemporaryFolder folder;
  const fs::path pipe = folder / "pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  const std::string sent(300'000, 'x');  // more than a pipe holds at a time
  const std::span bytes(reinterpret_cast<const std::uint8_t*>(sent.data()), sent.size());
  const auto isStopped = [](const std::function<void(const StopSwitch&)>& wait) {
    StopSwitch stop;
    const std::jthread operatorHand([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      stop.stopCommand();
    });
    return failureOf([&] { wait(stop); }) == OperationStopped().what();
  };
  const auto read = [&](const StopSwitch& stop) { (void)readWholeFile(pipe, 1'000'000, &stop); };
  const auto write = [&](const StopSwitch& stop) { writeFileAtomically(pipe, bytes, &stop); };
  EXPECT_TRUE(isStopped(read));
  EXPECT_TRUE(isStopped(write));
  const int idleEnd = ::open(pipe.c_str(), O_RDWR | O_CLOEXEC);
  EXPECT_TRUE(isStopped(read));
  EXPECT_TRUE(holdsInChild([&] {  // without a switch, as Ctrl-C comes
    struct sigaction action {};
    action.sa_handler = [](int) {};
    ::sigaction(SIGALRM, &action, nullptr);
    constexpr itimerval kEvery20Ms{.it_interval = {0, 20'000}, .it_value = {0, 20'000}};
    ::setitimer(ITIMER_REAL, &kEvery20Ms, nullptr);
    return failureOf([&] { (void)readWholeFile(pipe, 10); }).ends_with("Interrupted system call");
  }));
  EXPECT_TRUE(isStopped(write));
  ::close(idleEnd);
  const std::jthread writer([&] { writeFileAtomically(pipe, bytes); });
  EXPECT_EQ(readWholeTextFile(pipe), sent);
}

TEST(FileTarget, isTriedFirstAndWrittenAtTheEnd) {
  const test::TemporaryFolder folder;
  EXPECT_THROW(FileTarget(folder / "no/such"), FileError);
  writeFileAtomically(folder / "file", "old");
  { const FileTarget given_up(folder / "file"); }
  EXPECT_EQ(readWholeTextFile(folder / "file"), "old");
  EXPECT_EQ(entriesOf(folder.path()), 1U);
  const auto bytes = readWholeFile(folder / "file", 3);
  FileTarget asNew(folder / "new");
  FileTarget asOld(folder / "file");
  writeFileAtomically(folder / "new", "made meanwhile");
  ASSERT_EQ(::chmod((folder / "new").c_str(), 0600), 0);
  fs::remove(folder / "file");
  asNew.commit(bytes);
  asOld.commit(bytes);
  EXPECT_EQ(readWholeTextFile(folder / "new"), "old");
  EXPECT_EQ(statusOf(folder / "new").st_mode & 0777U, 0600U);
  EXPECT_NE(statusOf(folder / "file").st_mode & 0777U, 0600U) << "a new file's own permissions";
}

TEST(FileTarget, clearsWhatAKilledOneLeftAndNothingElse) {
  const test::TemporaryFolder folder;
  for (const char* const name : {".kestrel-kept", ".kestrel-abc12.", "kestrel-abc123"}) {
    writeFileAtomically(folder / name, "another's");
  }
  FileTarget living(folder / "living");
  EXPECT_TRUE(holdsInChild([&] {
    new FileTarget(folder / "killed");
    return entriesOf(folder.path()) == 5;
  }));
  writeFileAtomically(folder / "file", "x");
  EXPECT_EQ(entriesOf(folder.path()), 5U) << "three others, the living one's and the file";
  living.commit({});
  EXPECT_TRUE(fs::exists(folder / "living"));
}

}  // namespace
}  // namespace kestrel
