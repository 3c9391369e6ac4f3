// Opening, saving and erasing the two buffers; files that cannot be used change nothing.

#include <gtest/gtest.h>

#include "support/control_names.h"
#include "support/script_form.h"

namespace kestrel::test {
namespace {

struct Files : ScriptForm {
  Files() { load(); }
  std::string fileOf(std::size_t bytes) { return file("sized.bin", std::string(bytes, '\x5A')); }
};

TEST(OpenCode, readsFilesOfEverySizeAndKeepsWhatLiesBehindThem) {
  Files f;
  f.s.CodeBuffer[19] = 0x77;
  f.open("mnuFileOpenCode", f.file("Rom.bin", "ABCDEFGHIJKLMNOPabc"));
  EXPECT_TRUE(f.rig.logged("Read File CRC = $05AE"));
  EXPECT_TRUE(f.c.BufferDisplay.text().starts_with(
      "\r\n000000| 41424344 45464748 494A4B4C 4D4E4F50 | ABCDEFGHIJKLMNOP"
      "\r\n000010| 61626377 00000000 00000000 00000000 | abcw............\r\n000020| "));
  EXPECT_EQ(f.c.VScroll1.maximum(), -1);
  f.open("mnuFileOpenCode", f.fileOf(1024));
  EXPECT_EQ(f.c.VScroll1.maximum(), 3);
  f.open("mnuFileOpenCode", f.fileOf(0));
  EXPECT_EQ(f.s.FileChecksumText, "0000");
  f.open("mnuFileOpenCode", f.fileOf(2'100'001));
  EXPECT_EQ(f.s.CodeLength, 2'100'001);
  EXPECT_EQ(f.s.CodeBuffer[2'100'000], 0x5A);
}

// Every refusal: one message box, one log line, and the earlier file as it was.
TEST(OpenCode, refusesWhatCannotBeRead) {
  for (const auto& [name, reason] : std::initializer_list<std::pair<const char*, std::string>>{
           {"missing.bin", "No such file or directory"},
           {"", "Is a directory"},
           {"sized.bin", "it is longer than the 2100001 bytes allowed"}}) {
    Files f;
    f.open("mnuFileOpenCode", f.file("good.bin", "good"));
    f.rig.clearLog();
    (void)f.fileOf(2'100'002);
    const std::string path = (f.rig.folder / name).string();
    f.open("mnuFileOpenCode", path);
    const std::string message = "Cannot read " + path + ": " + reason;
    EXPECT_EQ(f.rig.log(), std::vector<std::string>{message});
    ASSERT_EQ(f.rig.dialogs.boxes.size(), 1U);
    EXPECT_EQ(f.rig.dialogs.boxes[0].text, message);
    EXPECT_EQ(f.s.CodeFileName, (f.rig.folder / "good.bin").string());
    EXPECT_EQ(f.s.CodeLength, 4);
    EXPECT_EQ(f.s.CodeBuffer[3], 'd');
  }
}

TEST(OpenData, takes8192BytesAndNoMore) {
  Files f;
  f.rig.select("Eprom 27C256");
  f.c.mnuFileOpenData.setEnabled(true);
  f.open("mnuFileOpenData", f.fileOf(8193));
  EXPECT_EQ(f.rig.log().back(),
            "Data File Size is 8193 bytes, bigger than the 8192 allowed - Will Not Open");
  EXPECT_EQ(f.rig.dialogs.boxes.at(0).text, "Can't Open Data File Bigger than 8192 Bytes");
  EXPECT_EQ(f.s.DataBufferValid, 0);
  const std::string path = f.fileOf(8192);
  f.open("mnuFileOpenData", path);
  EXPECT_TRUE(f.rig.logged("File " + path + " - was read into DataBuffer. 8192 bytes long."));
  EXPECT_EQ(f.s.DataBuffer[8191], 0x5A);
  EXPECT_EQ(disabledOf(f.c,
                       "tbToolBar(5) Verify_button menuVerifyData Program_button menuProgramData "
                       "mnuFileSaveData mnuFileSaveDataAs Erase_button menuEraseData"),
            "");
}

TEST(Save, writesAsManyBytesAsAreInUseAndKeepsTheFileWhenItFails) {
  Files f;
  f.rig.select("Eprom 2732");
  f.s.CodeBuffer[4095] = 0xA5;
  f.c.mnuFileSaveCode.setEnabled(true);
  const std::string path = (f.rig.folder / "out.bin").string();
  f.open("mnuFileSaveCode", path);
  EXPECT_EQ(readWholeTextFile(path), std::string(4095, '\0') + '\xA5');
  f.s.CodeLength = 3;
  f.rig.press("mnuFileSaveCode");
  EXPECT_EQ(f.rig.dialogs.asked.size(), 1U);
  f.c.mnuFileSaveCodeAs.setEnabled(true);
  f.open("mnuFileSaveCodeAs", (f.rig.folder / "no/such/folder.bin").string());
  EXPECT_EQ(f.s.CodeFileName, path);
  EXPECT_EQ(f.rig.dialogs.boxes.size(), 1U);
  EXPECT_EQ(readWholeTextFile(path), std::string(3, '\0'));
  // The data bytes go into the code file.
  f.c.mnuFileOpenData.setEnabled(true);
  const std::string data = f.file("data.bin", "da");
  f.open("mnuFileOpenData", data);
  f.rig.press("mnuFileSaveData");
  EXPECT_EQ(readWholeTextFile(path), "da");
  f.open("mnuFileSaveDataAs", path + "2");
  EXPECT_EQ(readWholeTextFile(path + "2"), "da");
}

TEST(EraseBuffer, fillsOneByteMoreThanAMegabyte) {
  Files f;
  f.open("mnuFileOpenCode", f.fileOf(2'000'000));
  f.rig.select("Eprom 27C256");
  f.c.CheckData.setValue(1);
  ASSERT_TRUE(f.rig.press("Erase_button"));
  EXPECT_EQ(f.s.DataBuffer[8192], 0xFF);
  EXPECT_EQ(f.s.DataBuffer[8193], 0x00);
  EXPECT_EQ(f.s.CodeBuffer[1'048'576], 0xFF);
  EXPECT_EQ(f.s.CodeBuffer[1'048'577], 0x5A);
  EXPECT_EQ(f.s.CodeLength, 32768);
  EXPECT_FALSE(f.c.Program_button.enabled());
}

TEST(ShowBuffer, theCaptionDecidesFromTheFirstPressOn) {
  Files f;
  f.s.DataBuffer[0] = 0xDA;
  f.s.CodeBuffer[0] = 0xC0;
  f.rig.select("Eprom 27C256");
  f.rig.press("Show_button");
  EXPECT_EQ(f.c.Show_button.caption(), "Show Data");
  EXPECT_TRUE(f.c.BufferDisplay.text().starts_with("\r\n000000| C0"));
  f.rig.press("Show_button");
  EXPECT_EQ(f.c.Show_button.caption(), "Show Code");
  EXPECT_TRUE(f.c.BufferDisplay.text().starts_with(std::string(13, ' ') +
                                                   "*** BUFFER DATA ***\r\n000000| DA"));
  f.c.VScroll1.setValue(32);
  EXPECT_TRUE(f.c.BufferDisplay.text().ends_with("\r\n002060| 00000000 " + std::string(27, ' ') +
                                                 "| ...."));
}

const std::string kRule = "------------------------------------------------------------\r\n";

TEST(Exports, areTheLogAndTheDisplayWithTheirHeaders) {
  ScriptForm f;
  f.load();
  f.c.SystemLog.setText("A");
  ASSERT_TRUE(f.rig.press("SystemLog_DblClick"));
  EXPECT_EQ(readWholeTextFile(f.rig.folder / "KESTREL.LOG"),
            "KESTREL SYSTEM LOG FILE - HALVARD LABS INC. https://www.halvardlabs.example\r\n"
            "The following contents are the log from the Kestrel Program\r\n"
            "2026-11-21 14:03:07 StatCode: 65 Model: 0\r\n" +
                kRule + "A\r\n");
  f.s.KestrelModel = 6;
  f.c.BufferDisplay.setText("\r\nAB");
  ASSERT_TRUE(f.rig.press("BufferDisplay_DblClick"));
  EXPECT_EQ(readWholeTextFile(f.rig.folder / "KESTREL.BUF"),
            "KESTREL BUFFER DISPLAY FILE - HALVARD LABS INC. https://www.halvardlabs.example\r\n"
            "The following contents are the contents from Buffer DIsplay\r\n"
            "2026-11-21 14:03:07 StatCode: 154 Model: 6\r\n" +
                kRule + "\r\nAB\r\n");
}

}  // namespace
}  // namespace kestrel::test
