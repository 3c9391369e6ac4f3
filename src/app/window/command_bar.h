#pragma once

#include <QWidget>

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "app/window/binder.h"
#include "app/window/theme.h"

class QBoxLayout;
class QPushButton;

namespace kestrel::window {

class Lamp;

/// The commands: what works on the chip with the programming voltage beside it, then what looks or
/// erases; in one row, or in two where that is too wide.
class CommandBar final : public QWidget {
 public:
  CommandBar(Controls& controls, const PortState& port, const SelectionState& device,
             const Binder& binder, IconSet& icons, QWidget* parent);

  /// Shows the voltage that will be applied now.
  void showVoltage();

  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void buildChipCommands();
  void buildOtherCommands();
  void addCommand(QWidget& group, Button& control, const QString& icon, const QString& toolTip);
  void addVoltage();
  void fitRows();

  Controls& controls_;
  const PortState& port_;
  const SelectionState& device_;
  const Binder& binder_;
  IconSet& icons_;
  QBoxLayout* rows_ = nullptr;
  QWidget* chip_ = nullptr;
  QWidget* others_ = nullptr;
  Lamp* voltage_ = nullptr;
};

}  // namespace kestrel::window
