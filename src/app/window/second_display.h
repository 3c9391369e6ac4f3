#pragma once

#include <QWidget>

#include "app/state/controls.h"
#include "app/window/binder.h"
#include "app/window/qt_screen.h"

namespace kestrel::window {

/// The secondary display window: one drawn page beside the main window. It has no behaviour of its
/// own; its buttons are shown when somebody gives them a caption.
class SecondDisplay final : public QWidget {
 public:
  SecondDisplay(SecondaryDisplay& controls, const Binder& binder, QtScreen& screen,
                QWidget* mainWindow);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void build(const Binder& binder);
  void comeForward();

  SecondaryDisplay& controls_;
};

}  // namespace kestrel::window
