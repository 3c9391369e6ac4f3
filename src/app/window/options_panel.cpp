#include "app/window/options_panel.h"

#include <QApplication>
#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QSlider>
#include <QSpinBox>
#include <QVBoxLayout>
#include <algorithm>

#include "app/window/device_box.h"
#include "app/window/device_card.h"
#include "app/window/elided_label.h"
#include "app/window/image_identity.h"
#include "app/window/lamp.h"
#include "app/window/range_reporter.h"
#include "app/window/step_label.h"
#include "app/window/texts.h"
#include "app/window/wheel_guard.h"

namespace kestrel::window {
namespace {

constexpr int kLowest = 240;  // of the panel; what does not fit is scrolled to

/// What comes and goes leaves its place free, so that nothing jumps.
void keepPlace(QWidget& widget) {
  QSizePolicy policy = widget.sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  widget.setSizePolicy(policy);
}

QHBoxLayout* row(QBoxLayout& column) {
  auto* const line = new QHBoxLayout;
  column.addLayout(line);
  return line;
}

}  // namespace

OptionsPanel::OptionsPanel(Controls& controls, const PortState& port, const LatchState& latches,
                           const SelectionState& device, const AlgorithmState& chosen,
                           const Binder& binder, IconSet& icons, QWidget* parent)
    : QScrollArea(parent),
      controls_(controls),
      port_(port),
      latches_(latches),
      selection_(device),
      chosen_(chosen),
      binder_(binder),
      icons_(icons) {
  setObjectName("optionsPanel");
  setFrameShape(QFrame::NoFrame);
  setWidgetResizable(true);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setFocusPolicy(Qt::NoFocus);
  auto* const content = new QWidget(this);
  auto* const column = new QVBoxLayout(content);
  column->setContentsMargins(8, 6, 8, 6);
  setWidget(content);
  buildDevice(*column);
  buildFile(*column);
  buildDataFile(*column);
  column->addSpacing(6);
  auto* const options = new StepLabel("&3  Options", content);
  column->addWidget(options);
  buildVoltage(*column);
  buildLane(*column);
  options->setBuddy(content->findChild<QRadioButton*>("HiLow_button(0)"));
  buildAlgorithms(*column);
  buildChecks(*column);
  buildSpeed(*column);
  column->addStretch(1);
  buildHardware(*column);
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
    if (now != nullptr && isAncestorOf(now)) ensureWidgetVisible(now);
  });
}

QSize OptionsPanel::sizeHint() const {
  const QSize content = widget()->minimumSizeHint();
  return {content.width() + verticalScrollBar()->sizeHint().width(), content.height()};
}

QSize OptionsPanel::minimumSizeHint() const {
  return {sizeHint().width(), std::min(sizeHint().height(), kLowest)};
}

bool OptionsPanel::eventFilter(QObject* receiver, QEvent* event) {
  if (receiver == widget() && event->type() == QEvent::LayoutRequest) updateGeometry();
  return QScrollArea::eventFilter(receiver, event);
}

void OptionsPanel::buildDevice(QBoxLayout& column) {
  auto* const label = new StepLabel("&1  Device", widget());
  device_ = new DeviceBox(controls_.Device, selection_, binder_, widget());
  device_->setToolTip("The chip in the socket. Type a part of its name, or what is printed on it.");
  device_->setAccessibleName("Device");
  label->setBuddy(device_);
  column.addWidget(label);
  column.addWidget(device_);
  card_ = new DeviceCard(controls_, port_, latches_, selection_, chosen_, binder_, widget());
  column.addWidget(card_);
}

void OptionsPanel::buildFile(QBoxLayout& column) {
  column.addSpacing(6);
  QHBoxLayout* const top = row(column);
  auto* const label = new StepLabel("&2  Code file", widget());
  top->addWidget(label, 1);
  auto* const open = new QPushButton("Open...", widget());
  label->setBuddy(open);
  open->setObjectName("openCodeFile");
  open->setToolTip("Open a code file");
  open->setAccessibleName("Open code file");
  icons_.add(*open, "open-code");
  QObject::connect(open, &QPushButton::clicked, open,
                   [this] { binder_.press(controls_.mnuFileOpenCode); });
  top->addWidget(open);
  QHBoxLayout* const file = row(column);
  auto* const name = new ElidedLabel(Qt::ElideMiddle, widget());
  auto* const size = new QLabel(widget());
  binder_.caption(controls_.FileNameCodeText, *name);
  binder_.caption(controls_.FileNameCodeSize, *size);
  name->setAccessibleName("Code file name");
  file->addWidget(name, 1);
  file->addWidget(size);
  identity_ = new ImageIdentity(widget());
  column.addWidget(identity_);
}

void OptionsPanel::buildDataFile(QBoxLayout& column) {
  QHBoxLayout* const line = row(column);
  auto* const label = new QLabel(widget());
  auto* const name = new ElidedLabel(Qt::ElideMiddle, widget());
  auto* const size = new QLabel(widget());
  binder_.caption(controls_.FileNameDataLabel, *label);
  binder_.caption(controls_.FileNameDataText, *name);
  binder_.caption(controls_.FileNameDataSize, *size);
  line->addWidget(label);
  line->addWidget(name, 1);
  line->addWidget(size);
}

// The prompt and the voltages share a place: the one gives way to the other.
void OptionsPanel::buildVoltage(QBoxLayout& column) {
  auto* const place = new QGridLayout;
  column.addLayout(place);
  auto* const frame = new QGroupBox(widget());
  frame->setToolTip("The data sheet decides. A wrong programming voltage destroys a chip.");
  auto* const buttons = new QHBoxLayout(frame);
  binder_.common(controls_.FrameVoltageSelection, *frame);
  binder_.mirror().bind(controls_.FrameVoltageSelection, *frame, [this, frame] {
    frame->setTitle(toQString(controls_.FrameVoltageSelection.caption()));
  });
  for (OptionButton& control : controls_.Voltage_button) {
    auto* const button = new QRadioButton(frame);
    binder_.option(control, *button);
    button->setAccessibleName("Programming voltage " + button->text());
    buttons->addWidget(button);
  }
  keepPlace(*frame);
  place->addWidget(frame, 0, 0);
  auto* const prompt = new QLabel(widget());
  binder_.text(controls_.PleaseSelect, *prompt);
  prompt->setAlignment(Qt::AlignCenter);
  place->addWidget(prompt, 0, 0);
}

void OptionsPanel::buildLane(QBoxLayout& column) {
  auto* const frame = new QGroupBox("Bytes of the buffer", widget());
  frame->setToolTip(
      "Every byte, or those at odd or even addresses: the two halves of a 16-bit pair");
  auto* const buttons = new QHBoxLayout(frame);
  for (OptionButton& control : controls_.HiLow_button) {
    auto* const button = new QRadioButton(frame);
    binder_.option(control, *button);
    button->setAccessibleName(button->text() + " bytes");
    buttons->addWidget(button);
  }
  column.addWidget(frame);
}

void OptionsPanel::buildAlgorithms(QBoxLayout& column) {
  auto* const frame = new QGroupBox("Algorithms", widget());
  frame->setToolTip(
      "How chips are read, programmed and erased; data sheet: as the chip's wants it");
  auto* const lines = new QVBoxLayout(frame);
  QHBoxLayout* const buttons = row(*lines);
  for (OptionButton& control : controls_.AlgorithmSelection) {
    auto* const button = new QRadioButton(frame);
    binder_.option(control, *button);
    button->setAccessibleName(button->text() + " algorithms");
    buttons->addWidget(button);
  }
  buttons->addWidget(readTimes(*frame));
  buildSheetOptions(*frame, *lines);
  column.addWidget(frame);
}

QWidget* OptionsPanel::readTimes(QWidget& frame) {
  RangeControl& control = controls_.ReadTimes;
  auto* const times = new QSpinBox(&frame);
  times->setPrefix(toQString(control.caption()) + " ");
  times->setRange(control.minimum(), control.maximum());
  times->setToolTip("How often Read reads the chip: each byte is what was read most often");
  times->setAccessibleName("Number of reads");
  new WheelGuard(*times);
  binder_.common(control, *times);
  binder_.mirror().bind(control, *times, [&control, times] {
    const QSignalBlocker quiet(*times);
    times->setValue(control.value());
  });
  QObject::connect(times, &QSpinBox::valueChanged, times, [this, &control](int value) {
    binder_.use(control, [&control, value] { control.setValue(value); });
    binder_.mirror().touch(control);
  });
  return times;
}

// What the data sheet of a kind of chip lets choose comes with the device.
void OptionsPanel::buildSheetOptions(QWidget& frame, QBoxLayout& lines) {
  auto* const protection = new QWidget(&frame);
  protection->setToolTip(
      "What protects a page EEPROM from writes, once it is programmed or erased");
  binder_.common(controls_.FrameProtection, *protection);
  auto* const buttons = new QHBoxLayout(protection);
  buttons->setContentsMargins(0, 0, 0, 0);
  buttons->addWidget(new QLabel(toQString(controls_.FrameProtection.caption()), protection));
  for (OptionButton& control : controls_.ProtectionSelection) {
    auto* const button = new QRadioButton(protection);
    binder_.option(control, *button);
    button->setAccessibleName("Protection " + button->text());
    buttons->addWidget(button);
  }
  lines.addWidget(protection);
  auto* const anyCode = new QCheckBox(&frame);
  binder_.check(controls_.AnyCode, *anyCode);
  anyCode->setToolTip("Programs and erases a flash that says that it is another one, too");
  lines.addWidget(anyCode);
}

void OptionsPanel::buildChecks(QBoxLayout& column) {
  auto* const frame = new QWidget(widget());
  binder_.common(controls_.Frame5, *frame);
  auto* const boxes = new QVBoxLayout(frame);
  boxes->setContentsMargins(0, 0, 0, 0);
  for (CheckBox* const control : {&controls_.CheckChipFirst, &controls_.CheckBlankPriorProgramming,
                                  &controls_.VerifyAfterProgramming}) {
    auto* const box = new QCheckBox(frame);
    binder_.check(*control, *box);
    keepPlace(*box);
    boxes->addWidget(box);
  }
  keepPlace(*frame);
  column.addWidget(frame);
  QHBoxLayout* const memories = row(column);
  for (CheckBox* const control : {&controls_.CheckCode, &controls_.CheckData}) {
    auto* const box = new QCheckBox(widget());
    binder_.check(*control, *box);
    box->setToolTip("Which memory the commands work on");
    memories->addWidget(box);
  }
  memories->addStretch(1);
}

void OptionsPanel::buildSpeed(QBoxLayout& column) {
  constexpr int kSmallStep = 1;
  constexpr int kLargeStep = 5;
  QHBoxLayout* const line = row(column);
  auto* const label = new QLabel(toQString(controls_.Slider1.caption()), widget());
  auto* const slider = new QSlider(Qt::Horizontal, widget());
  auto* const value = new QLabel(widget());
  slider->setSingleStep(kSmallStep);
  slider->setPageStep(kLargeStep);
  slider->setToolTip("Slow Down or Speed Up Programming Speed");
  slider->setAccessibleName("Program Speed");
  slider->setMinimumWidth(80);
  new RangeReporter(controls_.Slider1, *slider, binder_);
  value->setMinimumWidth(value->fontMetrics().horizontalAdvance("20"));
  value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  binder_.mirror().bind(controls_.Slider1, *value,
                        [this, value] { value->setNum(controls_.Slider1.value()); });
  QObject::connect(slider, &QSlider::sliderMoved, value, [value](int now) { value->setNum(now); });
  line->addWidget(label);
  line->addWidget(slider, 1);
  line->addWidget(value);
}

void OptionsPanel::buildHardware(QBoxLayout& column) {
  QHBoxLayout* const top = row(column);
  top->addWidget(new StepLabel("Hardware", widget()), 1);
  auto* const ready = new Lamp(widget());
  ready->setWidestCaption("NotReady");
  // Red too is a colour of this lamp: lit it says "NotReady".
  bindLamp(controls_.Ready_label, *ready, binder_, {});
  binder_.mirror().bind(controls_.Ready_label, *ready, [this, ready] {
    ready->setToolTip(port_.BoardReady
                          ? "A board was found and is at rest"
                          : "No board was found: check its supply and cable, then Test Hardware");
  });
  top->addWidget(ready);
  QHBoxLayout* const line = row(column);
  hardware_ = new ElidedLabel(Qt::ElideRight, widget());
  binder_.caption(controls_.KestrelHardwareFound, *hardware_);
  binder_.mirror().bind(controls_.KestrelHardwareFound, *hardware_,
                        [this] { showHardwareColour(); });
  auto* const port = new QLabel(widget());
  binder_.text(controls_.PortSelected, *port);
  port->setToolTip("The port in use");
  // A setup file may hold any text for it.
  port->setTextFormat(Qt::PlainText);
  port->setMaximumWidth(port->fontMetrics().horizontalAdvance("MMMMM"));
  line->addWidget(hardware_, 1);
  line->addWidget(port);
  buildPorts(column);
}

void OptionsPanel::buildPorts(QBoxLayout& column) {
  auto* const group = new QWidget(widget());
  auto* const ports = new QHBoxLayout(group);
  ports->setContentsMargins(0, 0, 0, 0);
  for (OptionButton& control : controls_.LPTSelection) {
    auto* const button = new QRadioButton(group);
    binder_.option(control, *button);
    button->setToolTip("Use this port without asking for a board");
    button->setAccessibleName("Port " + button->text());
    ports->addWidget(button);
  }
  column.addWidget(group);
  auto* const test = new QPushButton(widget());
  binder_.button(controls_.TestHardware_button, *test);
  icons_.add(*test, "test-hardware");
  test->setToolTip("Search the three ports for a board");
  column.addWidget(test);
}

void OptionsPanel::showHardwareColour() {
  QPalette own = hardware_->palette();
  own.setColor(QPalette::WindowText, inkColour(controls_.KestrelHardwareFound.colour(), palette()));
  hardware_->setPalette(own);
}

void OptionsPanel::changeEvent(QEvent* event) {
  QScrollArea::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && hardware_ != nullptr) showHardwareColour();
}

}  // namespace kestrel::window
