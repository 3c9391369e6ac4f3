// The main window's place on the screen, and what of its look is kept from start to start.

#include <QApplication>
#include <QDockWidget>
#include <QScreen>
#include <QSplitter>

#include "app/window/main_window.h"
#include "app/window/screen_place.h"
#include "app/window/twips.h"
#include "app/window/window_settings.h"

namespace kestrel::window {
namespace {

constexpr QMargins kUsualFrame(4, 32, 4, 4);  // until the desktop has drawn the real one

std::string toText(const QByteArray& bytes) { return bytes.toBase64().toStdString(); }

QByteArray fromText(const std::optional<std::string>& text) {
  return QByteArray::fromBase64(QByteArray::fromStdString(text.value_or("")));
}

}  // namespace

// The place of the form and that of the window are one; the side that moved last leads. The window
// follows only a place that differs from its own by more than rounding.
void MainWindow::showPlace() {
  const Pane& place = controls_.frmMain;
  if (place.width() <= 0 || place.height() <= 0) return;
  const QPoint corner(pixelsFromTwips(place.left(), logicalDpiX()),
                      pixelsFromTwips(place.top(), logicalDpiY()));
  const QSize size(pixelsFromTwips(place.width(), logicalDpiX()),
                   pixelsFromTwips(place.height(), logicalDpiY()));
  if (isMinimized() || isMaximized() || isFullScreen()) return;
  if (pos() != corner) move(corner);
  if (this->size() != size) resize(size);
}

void MainWindow::reportPlace() {
  if (!placed_) return;
  Pane& place = controls_.frmMain;
  place.setMinimised(isMinimized());
  if (isMinimized() || isMaximized() || isFullScreen()) return;
  const auto keep = [](std::int32_t twips, int pixels, int dpi) {
    return pixelsFromTwips(twips, dpi) == pixels ? twips : twipsFromPixels(pixels, dpi);
  };
  place.setLeft(keep(place.left(), x(), logicalDpiX()));
  place.setTop(keep(place.top(), y(), logicalDpiY()));
  place.setWidth(keep(place.width(), width(), logicalDpiX()));
  place.setHeight(keep(place.height(), height(), logicalDpiY()));
}

// A stored place may be off every screen of today, or have no size: then what the window would
// like.
void MainWindow::fitToScreen() {
  if (isMinimized() || isMaximized() || isFullScreen()) return;
  const QRect inside = geometry();
  const QRect outside = frameGeometry();
  QMargins frame(inside.left() - outside.left(), inside.top() - outside.top(),
                 outside.right() - inside.right(), outside.bottom() - inside.bottom());
  if (!isVisible()) frame = kUsualFrame;
  QSize wanted = size();
  const QSize least = minimumSizeHint();
  if (wanted.width() < least.width() || wanted.height() < least.height()) {
    wanted = wanted.expandedTo(sizeHint());
  }
  QList<QRect> usable;
  for (const QScreen* const screen : QApplication::screens()) {
    usable.append(screen->availableGeometry());
  }
  const QRect asked(pos(), wanted.grownBy(frame));
  const QRect place = placeOnScreen(asked, usable);
  if (place.size() != size().grownBy(frame)) resize(place.size().shrunkBy(frame));
  if (place.topLeft() != pos()) move(place.topLeft());
}

void MainWindow::restoreLook() {
  const auto stored = [this](const char* key) {
    return fromText(parts_.settings.value(kWindowSection, key));
  };
  split_->restoreState(stored("Splitter"));
  const bool isKnown = side_ != nullptr && restoreState(stored("Panels"));
  if (side_ == nullptr || isKnown) return;
  const int room = screen()->availableGeometry().width();
  side_->setVisible(sizeHint().width() <= room);
}

void MainWindow::saveLook() {
  parts_.settings.setValue(kWindowSection, "Maximised", isMaximized() ? "1" : "0");
  const bool isByDataSheet = controls_.AlgorithmSelection[1].value();
  parts_.settings.setValue(kWindowSection, "Algorithms", isByDataSheet ? "DataSheet" : "Classic");
  parts_.settings.setValue(kWindowSection, "Splitter", toText(split_->saveState()));
  if (side_ != nullptr) parts_.settings.setValue(kWindowSection, "Panels", toText(saveState()));
}

void MainWindow::moveEvent(QMoveEvent* event) {
  QMainWindow::moveEvent(event);
  placeRests_.start();
}

void MainWindow::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  placeRests_.start();
}

}  // namespace kestrel::window
