#include "app/window/command_bar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include "app/window/lamp.h"

namespace kestrel::window {

CommandBar::CommandBar(Controls& controls, const Binder& binder, IconSet& icons, QWidget* parent)
    : QWidget(parent), controls_(controls), binder_(binder), icons_(icons) {
  setObjectName("commandBar");
  auto* const row = new QHBoxLayout(this);
  row->setContentsMargins(0, 6, 8, 2);
  auto* const step = new QLabel("&4", this);
  QFont bold = step->font();
  bold.setBold(true);
  step->setFont(bold);
  row->addWidget(step);
  addCommand(*row, controls.Read_button, "read", "Read the device into the buffer");
  step->setBuddy(findChild<QPushButton*>("Read_button"));
  addCommand(*row, controls.Blank_button, "blank-check", "Look for a byte that is not FFh");
  addCommand(*row, controls.Verify_button, "verify", "Compare the device with the buffer");
  addCommand(*row, controls.Program_button, "program", "Write the buffer into the device");
  addVoltage(*row);
  row->addStretch(1);
  addCommand(*row, controls.EraseFlash_button, "erase-chip", "Erase the device in the socket");
  addCommand(*row, controls.Display_button, "display", "Display Device's contents on Screen");
  addCommand(*row, controls.Erase_button, "erase-buffer", "Fill the buffer with FFh");
}

void CommandBar::addCommand(QBoxLayout& row, Button& control, const QString& icon,
                            const QString& toolTip) {
  auto* const button = new QPushButton(this);
  binder_.button(control, *button);
  button->setToolTip(toolTip);
  icons_.add(*button, icon);
  row.addWidget(button);
}

void CommandBar::addVoltage(QBoxLayout& row) {
  voltage_ = new Lamp(this);
  voltage_->setObjectName("voltageInUse");
  voltage_->setWidestCaption("12.5 V");
  voltage_->setToolTip("The programming voltage that is chosen");
  QSizePolicy policy = voltage_->sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  voltage_->setSizePolicy(policy);
  row.addWidget(voltage_);
  for (const OptionButton& button : controls_.Voltage_button) {
    binder_.mirror().bind(button, [this] { showVoltage(); });
  }
}

// Amber for the common 12.5 V, red for the two that destroy most chips.
void CommandBar::showVoltage() {
  voltage_->setVisible(false);
  for (std::size_t index = 0; index < controls_.Voltage_button.size(); ++index) {
    const OptionButton& button = controls_.Voltage_button[index];
    if (!button.value()) continue;
    voltage_->setCaption(toQString(button.caption()));
    voltage_->setGround(index == 0   ? QColor()
                        : index == 1 ? amber(palette())
                                     : groundColour(Colour::Red, palette()));
    voltage_->setVisible(true);
  }
}

}  // namespace kestrel::window
