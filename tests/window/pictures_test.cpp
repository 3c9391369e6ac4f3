#include <gmock/gmock.h>

#include <QImage>

#include "window/window_rig.h"

namespace kestrel::test {
namespace {

const QColor kRed(0xD0, 0x10, 0x10);
const QColor kGreen(0x00, 0x80, 0x00);
const QColor kAmber(0xA8, 0x5A, 0x06);

/// How many pixels of the widget's picture have that very colour.
int pixelsOf(QWidget& widget, const QColor& colour) {
  const QImage picture = widget.grab().toImage();
  int count = 0;
  for (int x = 0; x < picture.width(); ++x) {
    for (int y = 0; y < picture.height(); ++y) {
      count += picture.pixelColor(x, y).rgb() == colour.rgb() ? 1 : 0;
    }
  }
  return count;
}

TEST(Pictures, ofTheSocketShowEachPinByItsPurpose) {
  StartedRig rig;
  QWidget& socket = rig.find("socketView");
  const QPalette palette = socket.palette();
  const QColor edge = palette.color(QPalette::Mid);
  const int emptyEdges = pixelsOf(socket, edge);
  EXPECT_EQ(pixelsOf(socket, kAmber) + pixelsOf(socket, kGreen), 0) << "no chip";
  rig.select("27C256");
  const int pin = pixelsOf(socket, kAmber);
  EXPECT_GT(pin, 20) << "VPP";
  EXPECT_NEAR(pixelsOf(socket, kGreen), pin, 6) << "VCC";
  EXPECT_GT(pixelsOf(socket, palette.color(QPalette::WindowText)), pin) << "GND and names";
  EXPECT_GT(pixelsOf(socket, QColor(0xE2, 0xE4, 0xE8)), 100 * 30) << "the body";
  EXPECT_GT(pixelsOf(socket, edge), 32) << "the lever and the free holes";
  EXPECT_GT(emptyEdges, pixelsOf(socket, edge));
  rig.select("28C256");
  EXPECT_EQ(pixelsOf(socket, kAmber), 0) << "no VPP";
}

TEST(Pictures, ofTheMapShowDataZerosBlankDifferencesAndThePage) {
  StartedRig rig("27C256");
  std::vector<std::uint8_t> image(0x8000, 0xFF);
  std::fill_n(image.begin(), 0x2000, std::uint8_t{0x12});
  std::fill_n(image.begin() + 0x4000, 0x2000, std::uint8_t{0x00});
  rig.openFile("image.bin", image);
  rig.board().loadChip(image);
  QWidget& map = rig.find("memoryMap");
  const QColor data = map.palette().color(QPalette::Highlight);
  const int quarter = pixelsOf(map, data);
  EXPECT_GT(quarter, map.width() * map.height() / 6);
  EXPECT_NEAR(pixelsOf(map, QColor(0x90, 0x94, 0x9A)), quarter, quarter / 5.0) << "zeros";
  EXPECT_NEAR(pixelsOf(map, map.palette().color(QPalette::Base)), 2 * quarter, quarter / 5.0);
  EXPECT_GT(pixelsOf(map, map.palette().color(QPalette::WindowText)), map.width()) << "the page";
  image[0x6000] = 0x00;
  rig.board().loadChip(image);
  rig.trigger("compareChip");
  const int red = pixelsOf(map, kRed);
  EXPECT_TRUE(red > 0 && red < 200) << red;
  rig.click("closeDifferences");
  EXPECT_EQ(pixelsOf(map, kRed), 0);
  EXPECT_FALSE(rig.find("differenceBar").isVisible());
}

TEST(Pictures, ofTheAlertAreRed) {
  StartedRig rig("27C256");
  QWidget& lamp = rig.find("Error_label");
  EXPECT_EQ(pixelsOf(lamp, kRed), 0);
  rig.openFile("zeros.bin", {0});
  rig.click("Verify_button");
  EXPECT_GT(pixelsOf(lamp, kRed), lamp.width() * lamp.height() / 4);
}

/// What is marked on the page, each with the colours' roles.
std::string marksOf(QPlainTextEdit& page) {
  const auto roleOf = [&](const QBrush& brush) {
    if (brush.style() == Qt::NoBrush) return "-";
    const QPalette& palette = page.palette();
    if (brush.color() == palette.color(QPalette::Disabled, QPalette::Text)) return "faint";
    if (brush.color() == palette.color(QPalette::Text)) return "text";
    if (brush.color() == palette.color(QPalette::Base)) return "base";
    return brush.color() == palette.color(QPalette::Mid) ? "mid" : "other";
  };
  std::string marks;
  for (const QTextEdit::ExtraSelection& mark : page.extraSelections()) {
    marks += mark.cursor.selectedText().trimmed().left(12).toStdString() + ":" +
             roleOf(mark.format.foreground()) + "/" + roleOf(mark.format.background()) + " ";
  }
  return marks;
}

TEST(Pictures, ofThePageMarkTheByteThatIsTyped) {
  StartedRig rig("27C256");
  rig.openFile("image.bin", std::vector<std::uint8_t>(0x100, 0x4B));
  auto& page = rig.find<QPlainTextEdit>("BufferDisplay");
  page.setFocus();
  QTest::keyClick(&page, Qt::Key_Right);
  QTest::keyClick(&page, Qt::Key_Left);
  rig.turn();
  EXPECT_EQ(marksOf(page), "00010203 040:faint/- 4B:text/mid K:text/mid 4:base/text ");
}

}  // namespace
}  // namespace kestrel::test
