#include <gmock/gmock.h>

#include <QApplication>
#include <QStyleFactory>

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleMock(&argc, argv);
  const QApplication application(argc, argv);
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  QApplication::setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}
