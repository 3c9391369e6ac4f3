#include "app/window/off_tips.h"

#include <QEvent>
#include <QHelpEvent>
#include <QToolTip>
#include <array>
#include <utility>

namespace kestrel::window {
namespace {

struct OffTip {
  const char* control;
  bool isLockedByAlert;
  bool needsDevice;
  const char* otherwise;
};

// clang-format off
constexpr const char* kNothingInBuffer = "Open a file or read a chip first: the buffer is empty.";
constexpr std::array<OffTip, 16> kOffTips{{
    {"Read_button",         true,  true,  "The selected device cannot be read."},
    {"Display_button",      true,  true,  "The selected device cannot be displayed."},
    {"Blank_button",        false, true,  "A serial chip needs no blank check: every byte can be written again."},
    {"Verify_button",       true,  false, kNothingInBuffer},
    {"Program_button",      true,  false, kNothingInBuffer},
    {"EraseFlash_button",   false, true,  "This chip is erased under the ultraviolet lamp, not on the board."},
    {"Erase_button",        false, false, "The buffer is empty already."},
    {"Show_button",         false, true,  "The selected device has one memory only."},
    {"Voltage_button(0)",   false, true,  "The selected device takes a programming voltage."},
    {"Voltage_button(1)",   false, true,  "The selected device takes no programming voltage."},
    {"Voltage_button(2)",   false, true,  "Too high for the selected device."},
    {"Voltage_button(3)",   false, true,  "Too high for the selected device."},
    {"CheckCode",           false, true,  "The selected device has one memory only."},
    {"CheckData",           false, true,  "The selected device has one memory only."},
    {"SaveCode",            false, false, "No file was opened or saved yet: File > Save Code As... keeps the buffer."},
    {"Stop",                false, false, "No command is running."},
}};
// clang-format on

QString reasonOf(const OffTip& tip, const Situation& now) {
  if (now.isRunning) return "A command is running.";
  if (now.isTypingDevice) {
    return "What is typed for the device is not chosen yet: Enter chooses it, Esc gives it up.";
  }
  if (tip.isLockedByAlert && now.isAlertUp) return "Turn the ERROR alert off first.";
  if (tip.needsDevice && !now.isDeviceChosen) return "Select a device first.";
  return tip.otherwise;
}

class OffTipFilter final : public QObject {
 public:
  OffTipFilter(QWidget& widget, const OffTip& tip, const std::function<Situation()>& situation)
      : QObject(&widget), widget_(widget), tip_(tip), situation_(situation) {
    widget.installEventFilter(this);
  }

  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() != QEvent::ToolTip || widget_.isEnabled()) return false;
    const QPoint place = static_cast<QHelpEvent*>(event)->globalPos();
    QToolTip::showText(place, reasonOf(tip_, situation_()), &widget_);
    return true;
  }

 private:
  QWidget& widget_;
  const OffTip& tip_;
  std::function<Situation()> situation_;
};

}  // namespace

void explainWhatIsOff(QWidget& window, const std::function<Situation()>& situation) {
  for (const OffTip& tip : kOffTips) {
    if (auto* const widget = window.findChild<QWidget*>(tip.control)) {
      new OffTipFilter(*widget, tip, situation);
    }
  }
}

}  // namespace kestrel::window
