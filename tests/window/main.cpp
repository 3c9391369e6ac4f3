#include <gmock/gmock.h>

#include <QApplication>
#include <QStyleFactory>
#include <iostream>

namespace {

/// The offscreen platform says at every window what it cannot do.
void dropPlatformMessages(QtMsgType, const QMessageLogContext&, const QString& message) {
  if (!message.startsWith("This plugin does not support")) {
    std::cerr << message.toStdString() << '\n';
  }
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qInstallMessageHandler(dropPlatformMessages);
  testing::InitGoogleMock(&argc, argv);
  const QApplication application(argc, argv);
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  QApplication::setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}
