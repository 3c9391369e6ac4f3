// KESTREL.BUF and KESTREL.LOG, letter for letter, and the disks they do not fit on.

#include <gtest/gtest.h>
#include <sys/mount.h>

#include "support/script_form.h"

namespace kestrel::test {
namespace {

const std::string kRule = "------------------------------------------------------------\r\n";

TEST(Exports, theDisplayWithItsHeader) {
  ScriptForm f;
  f.load();
  f.s.KestrelModel = 6;
  f.c.BufferDisplay.setText("\r\nAB");
  ASSERT_TRUE(f.rig.press("BufferDisplay_DblClick"));
  EXPECT_EQ(readWholeTextFile(f.rig.folder / "KESTREL.BUF"),
            "KESTREL BUFFER DISPLAY FILE - HALVARD LABS INC. https://www.halvardlabs.example\r\n"
            "The following contents are the contents from Buffer DIsplay\r\n"
            "2026-11-21 14:03:07 StatCode: 154 Model: 6\r\n" +
                kRule + "\r\nAB\r\n");
  EXPECT_EQ(f.rig.log(), std::vector<std::string>{"Buffer DIsplay was Saved to KESTREL.BUF file"});
  EXPECT_EQ(f.rig.sounds.played, std::vector<std::string>{"ok.wav"});
}

TEST(Exports, theLogWithItsHeaderAndWithoutASound) {
  ScriptForm f;
  f.load();
  f.c.SystemLog.setText("A");
  ASSERT_TRUE(f.rig.press("SystemLog_DblClick"));
  const std::string text = readWholeTextFile(f.rig.folder / "KESTREL.LOG");
  EXPECT_TRUE(text.starts_with(
      "KESTREL SYSTEM LOG FILE - HALVARD LABS INC. https://www.halvardlabs.example\r\n"
      "The following contents are the log from the Kestrel Program\r\n"));
  EXPECT_TRUE(text.ends_with(" StatCode: 65 Model: 0\r\n" + kRule + "A\r\n"));
  EXPECT_EQ(f.rig.log().back(), "System Log was Saved to KESTREL.LOG file");
  EXPECT_TRUE(f.rig.sounds.played.empty());
}

TEST(Exports, aFullDiskKeepsTheEarlierFileWhole) {
  ScriptForm f;
  const std::string folder = f.rig.folder.path().string();
  if (::mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=8k") != 0) {
    GTEST_SKIP() << "mounting a small disk is not permitted here";
  }
  f.load();
  f.rig.press("SystemLog_DblClick");
  const std::string earlier = readWholeTextFile(f.rig.folder / "KESTREL.LOG");
  f.c.SystemLog.setText(std::string(20'000, 'x'));
  f.rig.press("SystemLog_DblClick");
  ASSERT_EQ(f.rig.dialogs.boxes.size(), 1U);
  EXPECT_NE(f.rig.dialogs.boxes[0].text.find("Run-time error 61: Cannot write "),
            std::string::npos);
  EXPECT_EQ(readWholeTextFile(f.rig.folder / "KESTREL.LOG"), earlier);
  for (const auto& entry : std::filesystem::directory_iterator(f.rig.folder.path())) {
    EXPECT_EQ(entry.path().filename(), "KESTREL.LOG");
  }
  ::umount2(folder.c_str(), MNT_DETACH);
}

}  // namespace
}  // namespace kestrel::test
