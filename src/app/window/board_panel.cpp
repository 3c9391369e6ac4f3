#include "app/window/board_panel.h"

#include <QComboBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <utility>

#include "app/state/programmer_state.h"
#include "app/window/board_faults.h"
#include "app/window/device_card.h"
#include "app/window/file_of.h"
#include "app/window/texts.h"
#include "app/window/wheel_guard.h"
#include "images/identity.h"
#include "platform/atomic_file.h"
#include "platform/runtime_error.h"
#include "simulator/chip_factory.h"

namespace kestrel::window {
namespace {

constexpr std::size_t kLargestFile = 16 << 20;
constexpr int kLookMs = 500;
constexpr int kSoonMs = 100;  // a shorter command is not shown
constexpr int kAsTheChipWants = 0;

QString sizeText(std::size_t bytes) {
  return bytes % 1024 == 0 ? QString("%1 KB").arg(bytes / 1024) : QString("%1 bytes").arg(bytes);
}

SocketLook lookAt(launch::SimulatedBoard& simulated) {
  sim::Board& board = simulated.board();
  const sim::Chip* const chip = board.chip();
  return {.levels = {.high = board.socketLevels(), .vpp = board.vppPins()},
          .chip = chip == nullptr ? std::string() : std::string(chip->typeName())};
}

}  // namespace

void watchSocket(launch::SimulatedBoard& simulated, DeviceCard& card) {
  card.lookAt([&simulated] { return lookAt(simulated); }, launch::chipTypeForDevice);
}

SimulatedBoardPanel::SimulatedBoardPanel(launch::SimulatedBoard& simulated,
                                         form::CommandRunner& runner, HeldInput& input,
                                         QWidget* parent)
    : QScrollArea(parent), simulated_(simulated), runner_(runner) {
  setObjectName("boardPanel");
  setFrameShape(QFrame::NoFrame);
  setWidgetResizable(true);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setFocusPolicy(Qt::NoFocus);
  auto* const content = new QWidget(this);
  auto* const column = new QVBoxLayout(content);
  setWidget(content);
  buildBoard(*column);
  buildChip(*column);
  faults_ = new BoardFaults(
      simulated_, [this](const std::function<void()>& change) { act(change); }, content);
  column->addWidget(faults_);
  buildFindings(*column);
  setMinimumWidth(content->minimumSizeHint().width() + verticalScrollBar()->sizeHint().width());
  for (QComboBox* const list : {model_, port_, voltage_, type_}) new WheelGuard(*list);
  input.letThrough(*plug_);  // a cable can be pulled at any time
  running_.setSingleShot(true);
  running_.setInterval(kSoonMs);
  connect(&running_, &QTimer::timeout, this, [this] { showRunning(); });
  runner.whenStarted([this] { running_.start(); });
  runner.whenEnded([this] {
    running_.stop();
    showState();
  });
  look_.setInterval(kLookMs);
  connect(&look_, &QTimer::timeout, this, [this] { showFindings(); });
  look_.start();
  showState();
}

QPushButton* SimulatedBoardPanel::addButton(QBoxLayout& row, const QString& caption,
                                            const QString& name, std::function<void()> handler) {
  auto* const button = new QPushButton(caption, widget());
  button->setObjectName(name);
  row.addWidget(button);
  connect(button, &QPushButton::clicked, this,
          [this, handler = std::move(handler)] { act(handler); });
  return button;
}

void SimulatedBoardPanel::buildBoard(QBoxLayout& column) {
  auto* const group = new QGroupBox("Board", widget());
  auto* const form = new QFormLayout(group);
  model_ = new QComboBox(group);
  model_->setObjectName("boardModel");
  for (const int model : {4, 5, 6}) model_->addItem(QString("KESTREL-%1").arg(model), model);
  port_ = new QComboBox(group);
  port_->setObjectName("boardPort");
  for (const std::uint16_t base : sim::kPortBases) {
    port_->addItem(QString::number(base, 16).toUpper() + "h", base);
  }
  voltage_ = new QComboBox(group);
  voltage_->setObjectName("boardVoltage");
  voltage_->addItem("as the chip wants", kAsTheChipWants);
  for (const int millivolts : {12'500, 21'000, 25'000}) {
    voltage_->addItem(QString("%1 V").arg(millivolts / 1000.0), millivolts);
  }
  form->addRow("&Model", model_);
  form->addRow("P&ort", port_);
  form->addRow("VPP by hand", voltage_);
  auto* const row = new QHBoxLayout;
  form->addRow(row);
  plug_ = new QPushButton("Unplug", widget());
  plug_->setObjectName("plugBoard");
  row->addWidget(plug_);
  // At once, in the middle of a command too.
  connect(plug_, &QPushButton::clicked, this, [this] { plugOrUnplug(); });
  column.addWidget(group);
  for (QComboBox* const box : {model_, port_}) {
    connect(box, &QComboBox::activated, this, [this] { act([this] { changeBoard(); }); });
  }
  connect(voltage_, &QComboBox::activated, this, [this] { act([this] { setVoltage(); }); });
}

void SimulatedBoardPanel::buildChip(QBoxLayout& column) {
  auto* const group = new QGroupBox("Socket", widget());
  auto* const rows = new QVBoxLayout(group);
  chip_ = new QLabel(group);
  chip_->setObjectName("chipInSocket");
  chip_->setWordWrap(true);
  rows->addWidget(chip_);
  type_ = new QComboBox(group);
  type_->setObjectName("chipType");
  type_->setAccessibleName("Type of the chip to put in");
  for (const std::string_view name : sim::chipTypeNames()) type_->addItem(toQString(name));
  if (const sim::Chip* const chip = board().chip())
    type_->setCurrentText(toQString(chip->typeName()));
  rows->addWidget(type_);
  auto* const insert = new QHBoxLayout;
  rows->addLayout(insert);
  addButton(*insert, "Put In Blank", "insertBlank", [this] { insertBlank(); });
  addButton(*insert, "From File...", "insertFromFile", [this] { insertFromFile(); });
  auto* const act = new QHBoxLayout;
  rows->addLayout(act);
  takeOut_ = addButton(*act, "Take Out", "takeOut", [this] { takeOut(); });
  erase_ = addButton(*act, "UV Lamp", "eraseUnderLamp", [this] { eraseUnderLamp(); });
  erase_->setToolTip("Erase the chip under the ultraviolet lamp");
  save_ = addButton(*rows, "Save Contents...", "saveContents", [this] { saveContents(); });
  column.addWidget(group);
}

void SimulatedBoardPanel::buildFindings(QBoxLayout& column) {
  auto* const group = new QGroupBox("Findings", widget());
  group->setToolTip("What no real socket forgives");
  auto* const rows = new QVBoxLayout(group);
  findings_ = new QListWidget(group);
  findings_->setObjectName("findings");
  findings_->setWordWrap(true);
  findings_->setAccessibleName("Findings");
  rows->addWidget(findings_, 1);
  addButton(*rows, "Clear", "clearFindings", [this] { simulated_.bench().findings().clear(); });
  column.addWidget(group, 1);
}

// Hands off the board while a command runs; a file that cannot be used is reported here.
void SimulatedBoardPanel::act(const std::function<void()>& handler) {
  if (runner_.isRunning()) return;
  try {
    handler();
  } catch (const OperationStopped&) {
    // At a pipe, by the signal that ends the program.
  } catch (const std::exception& error) {
    QMessageBox::critical(this, "Kestrel", QString::fromUtf8(error.what()));
  }
  showState();
}

void SimulatedBoardPanel::plugOrUnplug() {
  if (simulated_.bench().isPlugged(simulated_.base())) {
    simulated_.bench().unplug(simulated_.base());
  } else {
    simulated_.plug(board().model(), simulated_.base());
    setVoltage();
  }
  showPlugged();
}

void SimulatedBoardPanel::showPlugged() {
  plug_->setText(simulated_.bench().isPlugged(simulated_.base()) ? "Unplug" : "Plug In");
}

void SimulatedBoardPanel::showRunning() {
  for (QWidget* const part : widget()->findChildren<QWidget*>()) {
    const bool isUsed = dynamic_cast<QAbstractButton*>(part) != nullptr ||
                        dynamic_cast<QComboBox*>(part) != nullptr;
    if (isUsed && part != plug_) part->setEnabled(false);
  }
}

void SimulatedBoardPanel::changeBoard() {
  simulated_.plug(static_cast<sim::Model>(model_->currentData().toInt()),
                  static_cast<std::uint16_t>(port_->currentData().toUInt()));
  setVoltage();
}

void SimulatedBoardPanel::setVoltage() {
  const int millivolts = voltage_->currentData().toInt();
  board().setVppByHand(millivolts == kAsTheChipWants ? std::nullopt : std::optional(millivolts));
}

void SimulatedBoardPanel::insertBlank() {
  simulated_.releaseChip();
  board().insert(sim::makeChip(type_->currentText().toStdString()));
}

void SimulatedBoardPanel::insertFromFile() {
  const QString name = QFileDialog::getOpenFileName(this, "Contents of the chip");
  if (name.isEmpty()) return;
  auto chip = sim::makeChip(type_->currentText().toStdString());
  const auto contents = readWholeFile(fileOf(name), kLargestFile, simulated_.stop());
  if (contents.size() != chip->contents().size()) {
    QMessageBox::warning(this, "Kestrel",
                         QString("The file holds %1 bytes, a %2 has %3.")
                             .arg(contents.size())
                             .arg(type_->currentText())
                             .arg(chip->contents().size()));
    return;
  }
  chip->load(contents);
  simulated_.releaseChip();
  board().insert(std::move(chip));
}

void SimulatedBoardPanel::takeOut() {
  simulated_.releaseChip();
  board().takeOut();
}

void SimulatedBoardPanel::eraseUnderLamp() {
  if (board().eraseUnderLamp()) return;
  QMessageBox::information(this, "Kestrel", "This chip has no window: the lamp does not erase it.");
}

void SimulatedBoardPanel::saveContents() { (void)saveContentsAs(); }

bool SimulatedBoardPanel::saveContentsAs() {
  const QString name = QFileDialog::getSaveFileName(this, "Save the contents of the chip");
  if (name.isEmpty()) return false;
  writeFileAtomically(fileOf(name), board().chip()->contents(), simulated_.stop());
  return true;
}

bool SimulatedBoardPanel::keepChip() {
  const auto tryTo = [](const std::function<bool()>& keep, QString& reason) {
    try {
      return keep();
    } catch (const FileError& error) {
      reason = QString::fromStdString(error.what());
      return false;
    }
  };
  QString reason;
  const auto writeBack = [this] {
    simulated_.saveChip();
    return true;
  };
  if (tryTo(writeBack, reason)) return true;
  for (;;) {
    QMessageBox box(QMessageBox::Warning, "Kestrel", "The chip's contents could not be kept.",
                    QMessageBox::Cancel, window());
    box.setObjectName("chipQuestion");
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(onOneLine(reason));
    QAbstractButton* const elsewhere = box.addButton("&Save Elsewhere...", QMessageBox::AcceptRole);
    QAbstractButton* const lose =
        box.addButton("Close &Without Them", QMessageBox::DestructiveRole);
    box.exec();
    const bool isKept =
        box.clickedButton() == elsewhere && tryTo([this] { return saveContentsAs(); }, reason);
    if (isKept || box.clickedButton() == lose) {
      simulated_.forgetChipFile();
      return true;
    }
    if (box.clickedButton() != elsewhere) return false;
  }
}

void SimulatedBoardPanel::showState() {
  const sim::Chip* const chip = board().chip();
  for (QWidget* const part : widget()->findChildren<QWidget*>()) part->setEnabled(true);
  model_->setCurrentIndex(model_->findData(static_cast<int>(board().model())));
  port_->setCurrentIndex(port_->findData(simulated_.base()));
  showPlugged();
  voltage_->setEnabled(board().model() == sim::Model::kestrel4);
  voltage_->setToolTip("Model 4 has its programming voltage set by hand on the board");
  for (QPushButton* const button : {takeOut_, erase_, save_}) {
    button->setEnabled(chip != nullptr);
  }
  if (chip == nullptr) {
    chip_->setText("Empty");
  } else {
    const bool blank = images::isAll(chip->contents(), kErased);
    const QString state = chip->isDamaged() ? "<b>damaged</b>: it does not answer any more"
                          : blank           ? "blank"
                                            : "holds data";
    chip_->setText(QString("<b>%1</b>, %2, %3")
                       .arg(toQString(chip->typeName()), sizeText(chip->contents().size()), state));
  }
  showFindings();
}

// The classic read-back lets the data latch meet the chip on the lines, which is known: it stands
// apart from what the socket would not forgive.
QString SimulatedBoardPanel::textOf(const sim::Finding& finding) {
  const bool isKnown =
      finding.kind == sim::FindingKind::busConflict && !simulated_.bench().judgesPulses();
  return (isKnown ? "Known of the classic procedures: " : "") + toQString(finding.text) +
         (finding.count > 1 ? QString(" (%1 times)").arg(finding.count) : QString());
}

void SimulatedBoardPanel::showFindings() {
  faults_->showFaults();
  QStringList real;
  QStringList known;
  for (const sim::Finding& finding : simulated_.bench().findings().all()) {
    const QString text = textOf(finding);
    (text.startsWith("Known") ? known : real).append(text);
  }
  QStringList shown;
  for (int row = 0; row < findings_->count(); ++row) shown.append(findings_->item(row)->text());
  if (shown == real + known) return;
  findings_->clear();
  findings_->addItems(real + known);
  for (qsizetype row = real.size(); row < findings_->count(); ++row) {
    findings_->item(static_cast<int>(row))->setForeground(palette().placeholderText());
  }
}

}  // namespace kestrel::window
