#include "app/window/command_bar.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <algorithm>

#include "app/window/lamp.h"
#include "app/window/step_label.h"
#include "operations/programming_facts.h"

namespace kestrel::window {
namespace {

constexpr double kUsualVolts = 12.5;
constexpr int kModelSetByHand = 4;

QWidget* newGroup(QWidget* parent) {
  auto* const group = new QWidget(parent);
  auto* const row = new QHBoxLayout(group);
  row->setContentsMargins(0, 0, 0, 0);
  return group;
}

}  // namespace

CommandBar::CommandBar(Controls& controls, const PortState& port, const SelectionState& device,
                       const Binder& binder, IconSet& icons, QWidget* parent)
    : QWidget(parent),
      controls_(controls),
      port_(port),
      device_(device),
      binder_(binder),
      icons_(icons) {
  setObjectName("commandBar");
  rows_ = new QBoxLayout(QBoxLayout::LeftToRight, this);
  rows_->setContentsMargins(0, 6, 8, 2);
  chip_ = newGroup(this);
  others_ = newGroup(this);
  rows_->addWidget(chip_, 0, Qt::AlignLeft);
  rows_->addStretch(1);
  rows_->addWidget(others_, 0, Qt::AlignLeft);
  buildChipCommands();
  buildOtherCommands();
}

void CommandBar::buildChipCommands() {
  auto* const step = new StepLabel("&4", chip_);
  chip_->layout()->addWidget(step);
  addCommand(*chip_, controls_.Read_button, "read", "Read the device into the buffer");
  step->setBuddy(findChild<QPushButton*>("Read_button"));
  addCommand(*chip_, controls_.Blank_button, "blank-check", "Look for a byte that is not FFh");
  addCommand(*chip_, controls_.Verify_button, "verify", "Compare the device with the buffer");
  addCommand(*chip_, controls_.Program_button, "program", "Write the buffer into the device");
  addVoltage();
}

void CommandBar::buildOtherCommands() {
  addCommand(*others_, controls_.EraseFlash_button, "erase-chip", "Erase the device in the socket");
  addCommand(*others_, controls_.Display_button, "display", "Display Device's contents on Screen");
  addCommand(*others_, controls_.Erase_button, "erase-buffer", "Fill the buffer with FFh");
}

void CommandBar::addCommand(QWidget& group, Button& control, const QString& icon,
                            const QString& toolTip) {
  auto* const button = new QPushButton(&group);
  binder_.button(control, *button);
  button->setToolTip(toolTip);
  icons_.add(*button, icon);
  group.layout()->addWidget(button);
}

void CommandBar::addVoltage() {
  voltage_ = new Lamp(chip_);
  voltage_->setObjectName("voltageInUse");
  voltage_->setWidestCaption("12.5 V");
  QSizePolicy policy = voltage_->sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  voltage_->setSizePolicy(policy);
  chip_->layout()->addWidget(voltage_);
  for (const OptionButton& button : controls_.Voltage_button) {
    binder_.mirror().bind(button, *voltage_, [this] { showVoltage(); });
  }
}

// Amber for the common 12.5 V, red for the two that destroy most chips.
void CommandBar::showVoltage() {
  const std::optional<double> volts = operations::voltageToApply(device_);
  voltage_->setVisible(volts.has_value());
  if (!volts) return;
  voltage_->setCaption(QString("%1 V").arg(*volts));
  voltage_->setToolTip(port_.KestrelModel == kModelSetByHand
                           ? "Program expects this voltage, set by hand on the board"
                           : "Program applies this voltage to the chip");
  voltage_->setGround(*volts > kUsualVolts ? groundColour(Colour::Red, palette())
                                           : amber(palette()));
}

QSize CommandBar::minimumSizeHint() const {
  const QMargins margins = rows_->contentsMargins();
  const int widest = std::max(chip_->minimumSizeHint().width(), others_->minimumSizeHint().width());
  return {widest + margins.left() + margins.right(), rows_->minimumSize().height()};
}

void CommandBar::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  fitRows();
}

void CommandBar::fitRows() {
  const QMargins margins = rows_->contentsMargins();
  const int inOneRow = chip_->minimumSizeHint().width() + others_->minimumSizeHint().width() +
                       rows_->spacing() + margins.left() + margins.right();
  const auto wanted = width() < inOneRow ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight;
  if (rows_->direction() == wanted) return;
  rows_->setDirection(wanted);
  updateGeometry();
}

}  // namespace kestrel::window
