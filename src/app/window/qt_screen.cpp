#include "app/window/qt_screen.h"

#include <QCoreApplication>
#include <QTimer>
#include <algorithm>

namespace kestrel::window {
namespace {

constexpr qint64 kTurnMs = 16;  // at most 60 turns a second

}  // namespace

QtScreen::QtScreen(Mirror& mirror, HeldInput& input) : mirror_(mirror), input_(input) {
  sinceTurn_.start();
}

void QtScreen::repaint() {
  mirror_.refresh();
  giveTurn();
}

void QtScreen::turn() {
  if (sinceTurn_.elapsed() < kTurnMs) return;
  mirror_.refresh();
  giveTurn();
}

// Only inside a command: at other times the event loop is running anyway.
void QtScreen::giveTurn() {
  sinceTurn_.restart();
  if (inTurn_ || runner_ == nullptr || !runner_->isRunning()) return;
  inTurn_ = true;
  input_.hold(true);
  QCoreApplication::processEvents();
  input_.hold(false);
  inTurn_ = false;
}

void QtScreen::opened(QWidget& window) {
  std::erase_if(others_, [&](const auto& other) { return !other || other == &window; });
  others_.emplace_back(&window);
}

std::size_t QtScreen::openWindows() const {
  const auto isOpen = [](const auto& window) { return window && window->isVisible(); };
  return 1 + static_cast<std::size_t>(std::ranges::count_if(others_, isOpen));
}

void QtScreen::closeLastWindow() {
  while (!others_.empty()) {
    const QPointer<QWidget> last = others_.back();
    others_.pop_back();
    if (!last || !last->isVisible()) continue;
    last->close();
    return;
  }
}

void QtScreen::closeMainWindow() {
  if (main_) QTimer::singleShot(0, main_, [this] { main_->close(); });
}

}  // namespace kestrel::window
