#include <gmock/gmock.h>

#include <QFileDialog>
#include <QPushButton>

#include "window/window_rig.h"

namespace kestrel::test {
namespace {

using testing::HasSubstr;

// Two blocks with a hole at 0004 between them.
constexpr std::string_view kHexFile = ":0400000041424344F2\n:0400080045464748DA\n:00000001FF\n";

/// Chooses a file, fills in the fields of the dialog that follows, and says what it answered.
struct ImageAnswer {
  explicit ImageAnswer(std::string name, const char* range = "", const char* at = "")
      : choose(choosing(name)),
        answer(
            [this, range, at](QDialog& dialog) {
              dialog.findChild<QLineEdit*>("imageRange")->setText(range);
              dialog.findChild<QLineEdit*>("imageAt")->setText(at);
              verdict = dialog.findChild<QLabel*>("imageVerdict")->text().toStdString();
              auto& accept = *dialog.findChild<QPushButton*>("imageAccept");
              mayAccept = accept.isEnabled();
              mayAccept ? accept.click() : dialog.reject();
            },
            "imageDialog") {}
  WithDialog choose;
  WithDialog answer;
  std::string verdict;
  bool mayAccept = false;
};

TEST(Images, areImportedWithTheirHolesAndExportedAgain) {
  StartedRig rig("27C256");
  writeFileAtomically(rig.folder / "a.hex", kHexFile);
  {
    const ImageAnswer answer((rig.folder / "a.hex").string(), "", "7FF4");
    rig.trigger("importImage");
    EXPECT_THAT(answer.verdict, HasSubstr("Intel HEX, 8 bytes at 0000-0003, 0008-000B, 1 hole"));
  }
  const auto& buffer = rig.form.state().CodeBuffer;
  EXPECT_EQ(buffer[0x7FF4], 'A');
  EXPECT_EQ(buffer[0x7FF8], 0xFF) << "a hole";
  EXPECT_EQ(buffer[0x7FFF], 'H');
  EXPECT_THAT(rig.window.windowTitle().toStdString(), HasSubstr("a.hex (imported)"));
  {
    const ImageAnswer answer((rig.folder / "b.s19").string(), "7FFC-7FFF", "100");
    rig.trigger("exportImage");
    EXPECT_TRUE(answer.mayAccept) << answer.verdict;
  }
  EXPECT_THAT(readWholeTextFile(rig.folder / "b.s19"), HasSubstr("S107010045464748DD"));
  const ImageAnswer tooFar((rig.folder / "a.hex").string(), "", "7FF8");
  rig.trigger("importImage");
  EXPECT_FALSE(tooFar.mayAccept);
  EXPECT_THAT(tooFar.verdict, HasSubstr("the chip ends at 7FFF"));
}

TEST(Images, aBadRecordIsToldWithItsLineAndNothingChanges) {
  StartedRig rig("27C256");
  rig.openFile("before.bin", countingBytes(0x8000));
  const QString title = rig.window.windowTitle();
  std::string text(kHexFile);
  text.replace(text.find("DA"), 2, "DB");
  writeFileAtomically(rig.folder / "bad.hex", text);
  const ImageAnswer answer((rig.folder / "bad.hex").string());
  rig.trigger("importImage");
  EXPECT_FALSE(answer.mayAccept);
  EXPECT_THAT(answer.verdict, HasSubstr("line 2"));
  EXPECT_EQ(rig.form.state().CodeBuffer[1], countingBytes(2)[1]);
  EXPECT_EQ(rig.window.windowTitle(), title);
}

TEST(Images, aFileOfRecordsThatIsOpenedIsSaidToBeOneWithTheWayToImportIt) {
  StartedRig rig("27C256");
  rig.openFile("a.hex", {kHexFile.begin(), kHexFile.end()});
  EXPECT_EQ(rig.form.state().CodeBuffer[0], ':') << "byte by byte all the same";
  auto& outcome = rig.find<QLabel>("outcome");
  EXPECT_THAT(outcome.text().toStdString(), HasSubstr("a.hex has the look of Intel HEX"));
  const WithDialog accept([](QDialog& dialog) { dialog.accept(); });
  emit outcome.linkActivated("offered");
  EXPECT_EQ(rig.form.state().CodeBuffer[0], 'A');
}

}  // namespace
}  // namespace kestrel::test
