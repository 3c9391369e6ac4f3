#include "app/window/signal_end.h"

#include <QApplication>

namespace kestrel::window {
namespace {

constexpr int kStepMs = 20;

}  // namespace

SignalEnd::SignalEnd(const ports::SignalStop& signalStop, QWidget& window)
    : window_(window), notifier_(signalStop.descriptor(), QSocketNotifier::Read) {
  QObject::connect(&again_, &QTimer::timeout, &again_, [this] { step(); });
  QObject::connect(&notifier_, &QSocketNotifier::activated, &again_, [this] {
    notifier_.setEnabled(false);  // the descriptor stays readable
    again_.start(kStepMs);
    step();
  });
}

void SignalEnd::step() {
  if (QWidget* const dialog = QApplication::activeModalWidget()) {
    dialog->close();
    return;
  }
  window_.close();
  if (!window_.isVisible()) again_.stop();
}

}  // namespace kestrel::window
