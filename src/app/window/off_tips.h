#pragma once

#include <QString>
#include <QWidget>
#include <functional>

namespace kestrel::window {

/// What decides why a command cannot be used at the moment.
struct Situation {
  bool isRunning = false;
  bool isTypingDevice = false;
  bool isAlertUp = false;
  bool isDeviceChosen = false;
};

/// The tips of disabled buttons say what is missing.
void explainWhatIsOff(QWidget& window, const std::function<Situation()>& situation);

}  // namespace kestrel::window
