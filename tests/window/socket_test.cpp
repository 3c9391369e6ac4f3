#include <gmock/gmock.h>

#include <algorithm>

#include "app/window/board_panel.h"
#include "app/window/device_card.h"
#include "devices/chip_pins.h"
#include "simulator/chip_factory.h"
#include "simulator/package.h"
#include "window/window_rig.h"

namespace kestrel::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

std::string textOf(WindowRig& rig, const char* label) {
  return rig.find<QLabel>(label).text().toStdString();
}

// The simulated packages know nothing of the program's drawing.
TEST(Socket, eachChipIsDrawnWhereItsPinsMeetTheBoard) {
  StartedRig rig;
  int drawn = 0;
  for (const auto& row : rig.form.state().DeviceTable) {
    const std::string type = launch::chipTypeForDevice(row[0]);
    if (type.empty()) continue;
    const devices::ChipPins pinout = devices::chipPinsOf(row[1] + row[2]);
    const sim::Package package = sim::makeChip(type)->package();
    ASSERT_GT(pinout.count(), 0) << row[0];
    for (int pin = 1; pin <= pinout.count(); ++pin) {
      EXPECT_EQ(sim::socketPins(package, sim::pin(pin)), sim::pin(pinout.socketPin(pin))) << row[0];
    }
    ++drawn;
  }
  EXPECT_GT(drawn, 30);
}

TEST(Socket, theSignStandsAsLongAsTheVoltageIsOn) {
  StartedRig rig("27128");
  QTest::mouseClick(&rig.find("Voltage_button(2)"), Qt::LeftButton);
  rig.openFile("image.bin", countingBytes(16'384));
  auto& sign = rig.find<QLabel>("vppSign");
  const auto redPixels = [&] {
    const QImage drawing = rig.find("socketView").grab().toImage();
    int count = 0;
    for (int x = 0; x < drawing.width(); ++x) {
      for (int y = 0; y < drawing.height(); ++y) {
        count += drawing.pixelColor(x, y) == QColor(0xD0, 0x10, 0x10) ? 1 : 0;
      }
    }
    return count;
  };
  std::string during;
  bool isPinRed = false;
  QTimer look;
  QObject::connect(&look, &QTimer::timeout, &look, [&] {
    if (sign.isVisible() && rig.board().vppMillivolts() > 0) during = sign.text().toStdString();
    isPinRed = isPinRed || redPixels() > 0;
  });
  look.start(20);
  const WithDialog question = answering(QMessageBox::Ok);
  rig.click("Program_button");
  EXPECT_THAT(during, HasSubstr("VPP ON 21 V"));
  EXPECT_FALSE(sign.isVisible());
  EXPECT_TRUE(isPinRed && redPixels() == 0);
}

TEST(Socket, anotherChipThanTheDeviceIsSeen) {
  StartedRig rig("27C256");
  window::watchSocket(*rig.WindowRig::program.simulated(), rig.window.deviceCard());
  EXPECT_EQ(textOf(rig, "socketWarning"), "");
  rig.select("2764");
  EXPECT_THAT(textOf(rig, "socketWarning"), HasSubstr("another chip: 27C256"));
  EXPECT_THAT(textOf(rig, "deviceFacts"), HasSubstr("VPP on pin 1 (socket 3)"));
}

TEST(Outcome, aClickOnTheFailingAddressShowsIt) {
  StartedRig rig("27C256");
  rig.openFile("image.bin", countingBytes(32'768));
  rig.click("Verify_button");
  auto& line = rig.find<QLabel>("outcome");
  EXPECT_THAT(line.text().toStdString(), HasSubstr("differs from the buffer at address 0"));
  rig.click("Error_label");
  std::vector<std::uint8_t> chip = countingBytes(32'768);
  chip[0x1234] ^= 1;
  rig.board().loadChip(chip);
  rig.click("Verify_button");
  ASSERT_THAT(line.text().toStdString(), HasSubstr("show 01234h"));
  emit line.linkActivated("4660");
  rig.turn();
  EXPECT_TRUE(rig.displayed("001230|"));
  rig.click("Error_label");
  rig.click("Read_button");
  EXPECT_THAT(line.text().toStdString(), HasSubstr("Read: done, sum "));
  rig.board().blankChip();
  rig.click("Blank_button");
  EXPECT_THAT(line.text().toStdString(), Not(HasSubstr("sum")));
}

TEST(Display, goesToWhatIsLookedForAndToAPlaceOnTheMap) {
  StartedRig rig("27C256");
  auto bytes = std::vector<std::uint8_t>(32'768, 0xFF);
  std::ranges::copy(std::string_view("FALCON"), bytes.begin() + 0x2345);
  rig.openFile("image.bin", bytes);
  rig.trigger("bufferFind");
  QTest::keyClicks(&rig.find("bufferWanted"), "FALCON");
  QTest::keyClick(&rig.find("bufferWanted"), Qt::Key_Return);
  EXPECT_TRUE(rig.displayed("002340|"));
  const auto marks = rig.find<QPlainTextEdit>("BufferDisplay").extraSelections();
  EXPECT_EQ(marks.back().cursor.selectedText(), "N");
  QWidget& map = rig.find("memoryMap");
  EXPECT_THAT(map.accessibleDescription().toStdString(), HasSubstr("data 02300h-023FFh"));
  QTest::mouseClick(&map, Qt::LeftButton, Qt::NoModifier, QPoint(3, map.height() / 2));
  rig.turn();
  EXPECT_NEAR(rig.controls().VScroll1.value(), 64, 2);
}

TEST(Compare, showsEveryDifferenceOfTheChipAndKeepsTheBuffer) {
  StartedRig rig("27C256");
  const auto image = countingBytes(32'768);
  rig.openFile("image.bin", image);
  std::vector<std::uint8_t> chip = image;
  chip[0x10] = 0x00;
  chip[0x4321] ^= 0x01;
  rig.board().loadChip(chip);
  rig.click("Verify_button");
  emit rig.find<QLabel>("outcome").linkActivated("compare");
  rig.turn();
  EXPECT_THAT(textOf(rig, "differenceSummary"),
              HasSubstr("2 of 32768 bytes differ; difference 1 of 2"));
  EXPECT_THAT(textOf(rig, "differenceMeaning"), HasSubstr("1"));
  QTest::keyClick(&rig.window, Qt::Key_F3);
  EXPECT_TRUE(rig.displayed("004320|"));
  EXPECT_THAT(textOf(rig, "differenceSides"), HasSubstr("4321"));
  const auto& buffer = rig.form.state().CodeBuffer;
  EXPECT_TRUE(std::equal(image.begin(), image.end(), buffer.begin()));
  EXPECT_TRUE(rig.controls().Program_button.enabled());
}

TEST(SafetyQuestion, tellsWhatWillBeDoneAndWhatDoesNotFit) {
  StartedRig rig("27C256");
  rig.openFile("image.bin", countingBytes(32'000));
  rig.select("27C256");  // behind the file, and it makes CodeLength its own size
  QString facts;
  const WithDialog question([&](QDialog& dialog) {
    facts = dynamic_cast<QMessageBox&>(dialog).informativeText();
    dialog.reject();
  });
  rig.click("Program_button");
  for (const char* const fact :
       {"Eprom 27C256, 32768 bytes", "image.bin, 32000 bytes", "the last 768 bytes", "12.5 V"}) {
    EXPECT_THAT(facts.toStdString(), HasSubstr(fact));
  }
  EXPECT_THAT(facts.toStdString(), Not(HasSubstr("chip was read"))) << "not the classic way";
  EXPECT_THAT(facts.toStdString(), Not(HasSubstr("Only the")));
  rig.click("HiLow_button(1)");
  rig.click("AlgorithmSelection(1)");
  rig.openFile("image.bin", countingBytes(32'768));
  rig.board().loadChip(std::vector<std::uint8_t>(32'768, 0x00));
  const WithDialog again([&](QDialog& dialog) {
    facts = dynamic_cast<QMessageBox&>(dialog).informativeText();
    dialog.reject();
  });
  rig.click("Program_button");
  EXPECT_THAT(facts.toStdString(), HasSubstr("Only the odd bytes"));
  EXPECT_THAT(facts.toStdString(), HasSubstr("in 16320 bytes (0000-00A3"));
  EXPECT_THAT(facts.toStdString(), Not(HasSubstr("The file is"))) << "just as long as the chip";
  EXPECT_THAT(textOf(rig, "outcome"), HasSubstr("show 00000h"));
}

}  // namespace
}  // namespace kestrel::test
