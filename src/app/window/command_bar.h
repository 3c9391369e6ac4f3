#pragma once

#include <QWidget>

#include "app/state/controls.h"
#include "app/window/binder.h"
#include "app/window/theme.h"

class QBoxLayout;
class QPushButton;

namespace kestrel::window {

class Lamp;

/// The commands in one row: what works on the chip with the programming voltage beside it, then
/// what looks or erases.
class CommandBar final : public QWidget {
 public:
  CommandBar(Controls& controls, const Binder& binder, IconSet& icons, QWidget* parent);

 private:
  void addCommand(QBoxLayout& row, Button& control, const QString& icon, const QString& toolTip);
  void addVoltage(QBoxLayout& row);
  void showVoltage();

  Controls& controls_;
  const Binder& binder_;
  IconSet& icons_;
  Lamp* voltage_ = nullptr;
};

}  // namespace kestrel::window
