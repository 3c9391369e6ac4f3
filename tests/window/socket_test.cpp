#include <gmock/gmock.h>

#include <algorithm>

#include "devices/chip_pins.h"
#include "simulator/chip_factory.h"
#include "simulator/package.h"
#include "window/window_rig.h"

namespace kestrel::test {
namespace {

using ::testing::HasSubstr;

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

}  // namespace
}  // namespace kestrel::test
