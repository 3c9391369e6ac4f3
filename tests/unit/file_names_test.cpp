#include "platform/file_names.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

#include "platform/runtime_error.h"
#include "support/temporary_folder.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;

TEST(ShownName, escapesWhatATerminalObeysAndWhatIsNoText) {
  const std::pair<std::string, const char*> cases[] = {
      {"C:\\27C256 (1).bin", "C:\\27C256 (1).bin"},
      {"Pr\xC3\xBC\x66ling \xE2\x82\xAC \xF0\x9F\x98\x80",
       "Pr\xC3\xBC\x66ling \xE2\x82\xAC \xF0\x9F\x98\x80"},
      {"a\nsFILE = b\r\t", "a\\nsFILE = b\\r\\t"},
      {"\x1B]0;title\x07\x7F", "\\x1B]0;title\\x07\\x7F"},
      {std::string("a\0b", 3), "a\\x00b"},
      {"\xC2\x9B\x32J \xC2\xA0", "\\xC2\\x9B2J \xC2\xA0"},  // C1 CSI; U+00A0 is text
      {"a\xE2\x80\xAEnib.exe", "a\\xE2\\x80\\xAEnib.exe"},  // right-to-left override
      {"\xE2\x81\xA6\xE2\x81\xA9\xE2\x80\xA8", "\\xE2\\x81\\xA6\\xE2\\x81\\xA9\\xE2\\x80\\xA8"},
      {"caf\xE9.bin", "caf\\xE9.bin"},                        // Latin-1
      {"\xE2\x82", "\\xE2\\x82"},                             // cut off
      {"\xC0\xAF\xE0\x81\x81", "\\xC0\\xAF\\xE0\\x81\\x81"},  // overlong
      {"\xED\xA0\x80\xF4\x90\x80\x80\xFF", "\\xED\\xA0\\x80\\xF4\\x90\\x80\\x80\\xFF"},
  };
  for (const auto& [name, shown] : cases) EXPECT_EQ(shownName(name), shown);
  EXPECT_STREQ(FileError("read", "a\x1B[2J", "no").what(), "Cannot read a\\x1B[2J: no");
}

TEST(FullName, goesBackByRealFoldersAlone) {
  const test::TemporaryFolder folder;
  const fs::path top = folder.path();
  fs::create_directories(top / "a/b");
  fs::create_directory_symlink("a/b", top / "link");
  EXPECT_EQ(fullName(top / "./a//b/../../x"), top / "x");
  EXPECT_EQ(fullName(top / "link/../x"), top / "link/../x") << "that is a/x";
  EXPECT_EQ(fullName(top / "link/../../x"), top / "link/../../x");
  EXPECT_EQ(fullName(top / "none/../x"), top / "none/../x") << "which is not there";
  EXPECT_EQ(fullName("/../etc/"), "/etc/");
  EXPECT_EQ(fullName("x"), fs::current_path() / "x");
}

TEST(FullName, tellsOfAWorkingFolderThatIsGone) {
  const fs::path before = fs::current_path();
  {
    const test::TemporaryFolder folder;
    fs::current_path(folder.path());
  }
  EXPECT_THROW((void)fullName("x"), FileError);
  EXPECT_EQ(fullName("/x"), "/x");
  fs::current_path(before);
}

TEST(SameFile, isKnownByLinksAndBeforeItIsThere) {
  const test::TemporaryFolder folder;
  const fs::path top = folder.path();
  fs::create_directory(top / "sub");
  fs::create_directory_symlink("sub", top / "link");
  std::ofstream(top / "file") << "x";
  fs::create_hard_link(top / "file", top / "hard");
  fs::create_symlink("sub/new", top / "dangling");
  ASSERT_EQ(::mkfifo((top / "pipe").c_str(), 0600), 0);
  EXPECT_TRUE(isSameFile(top / "file", top / "sub/../hard"));
  EXPECT_TRUE(isSameFile(top / "pipe", top / "./pipe"));
  EXPECT_TRUE(isSameFile(top / "link/new", top / "dangling")) << "neither is there yet";
  EXPECT_FALSE(isSameFile(top / "sub/new", top / "sub/other"));
  EXPECT_FALSE(isSameFile(top / "new", top / "sub/new"));
  EXPECT_FALSE(isSameFile(top / "file", top / "new"));
}

}  // namespace
}  // namespace kestrel
