// KESTREL.BUF and KESTREL.LOG, letter for letter.

#include <gtest/gtest.h>

#include "support/script_form.h"

namespace kestrel::test {
namespace {

const std::string kRule = "------------------------------------------------------------\r\n";

TEST(Exports, areTheLogAndWithASoundTheDisplayWithTheirHeaders) {
  ScriptForm f;
  f.load();
  f.c.SystemLog.setText("A");
  ASSERT_TRUE(f.rig.press("SystemLog_DblClick"));
  EXPECT_EQ(readWholeTextFile(f.rig.folder / "KESTREL.LOG"),
            "KESTREL SYSTEM LOG FILE - HALVARD LABS INC. https://www.halvardlabs.example\r\n"
            "The following contents are the log from the Kestrel Program\r\n"
            "2026-11-21 14:03:07 StatCode: 65 Model: 0\r\n" +
                kRule + "A\r\n");
  EXPECT_EQ(f.rig.log().back(), "System Log was Saved to KESTREL.LOG file");
  EXPECT_TRUE(f.rig.sounds.played.empty());
  f.s.KestrelModel = 6;
  f.c.BufferDisplay.setText("\r\nAB");
  ASSERT_TRUE(f.rig.press("BufferDisplay_DblClick"));
  EXPECT_EQ(readWholeTextFile(f.rig.folder / "KESTREL.BUF"),
            "KESTREL BUFFER DISPLAY FILE - HALVARD LABS INC. https://www.halvardlabs.example\r\n"
            "The following contents are the contents from Buffer DIsplay\r\n"
            "2026-11-21 14:03:07 StatCode: 154 Model: 6\r\n" +
                kRule + "\r\nAB\r\n");
  EXPECT_EQ(f.rig.log().back(), "Buffer DIsplay was Saved to KESTREL.BUF file");
  EXPECT_EQ(f.rig.sounds.played, std::vector<std::string>{"ok.wav"});
}

}  // namespace
}  // namespace kestrel::test
