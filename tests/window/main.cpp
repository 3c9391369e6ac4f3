#include <gmock/gmock.h>

#include <QApplication>
#include <QFile>
#include <QStyleFactory>
#include <QTemporaryDir>

#include "app/window/readable_style.h"

int main(int argc, char** argv) {
  // One screen of a common size; the platform's own is 800 x 800.
  const QTemporaryDir folder;
  QFile screens(folder.filePath("screens.json"));
  if (!screens.open(QIODevice::WriteOnly)) return 1;
  screens.write(R"({"screens": [{"name": "one", "x": 0, "y": 0, "width": 1920, "height": 1080,
                                 "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})");
  screens.close();
  qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screens.fileName().toUtf8());
  testing::InitGoogleMock(&argc, argv);
  const QApplication application(argc, argv);
  QApplication::setStyle(new kestrel::window::ReadableStyle(QStyleFactory::create("Fusion")));
  QApplication::setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}
