#include "app/window/board_faults.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <array>
#include <optional>
#include <utility>

#include "app/window/wheel_guard.h"

namespace kestrel::window {
namespace {

constexpr int kHex = 16;
constexpr int kDecimal = 10;
constexpr int kDataLines = 8;
constexpr int kLinesShown = 3;

/// A kind of fault that can be fitted. `fit` is false for a number that does not fit.
struct Kind {
  const char* caption;
  const char* wanted;  ///< stands in the empty field
  const char* tip;
  int base;
  bool (*fit)(launch::SimulatedBoard& simulated, std::uint32_t number);
};

bool fitWeakCell(launch::SimulatedBoard& simulated, std::uint32_t address) {
  const sim::Chip* const chip = simulated.board().chip();
  if (chip == nullptr || address >= chip->contents().size()) return false;
  simulated.board().fitWeakCell(address);
  return true;
}

template <bool high>
bool stickLine(launch::SimulatedBoard& simulated, std::uint32_t line) {
  if (line >= kDataLines) return false;
  simulated.board().stickDataLine(static_cast<int>(line), high);
  return true;
}

bool unplugLater(launch::SimulatedBoard& simulated, std::uint32_t accesses) {
  simulated.bench().unplugAfter(accesses);
  return true;
}

bool limitAcknowledges(launch::SimulatedBoard& simulated, std::uint32_t bytes) {
  const sim::Chip* const chip = simulated.board().chip();
  if (chip == nullptr) return false;
  simulated.board().setChip({.acknowledgeLimit = bytes});
  return chip->settings().acknowledgeLimit.has_value();
}

// clang-format off
constexpr std::array<Kind, 5> kKinds{{
    {"Weak cell", "Address, hex", "The byte at this address never programs", kHex, fitWeakCell},
    {"Line low", "0 to 7", "This data line is shorted to ground", kDecimal, stickLine<false>},
    {"Line high", "0 to 7", "This data line is shorted to 5 V", kDecimal, stickLine<true>},
    {"Unplug after", "Accesses", "The cable is pulled after so many port accesses", kDecimal, unplugLater},
    {"No ACK after", "Bytes", "A serial chip acknowledges so many more bytes, then none", kDecimal, limitAcknowledges},
}};
// clang-format on

}  // namespace

BoardFaults::BoardFaults(launch::SimulatedBoard& simulated, Act act, QWidget* parent)
    : QGroupBox("Faults", parent), simulated_(simulated), act_(std::move(act)) {
  auto* const grid = new QGridLayout(this);
  kind_ = new QComboBox(this);
  kind_->setObjectName("faultKind");
  kind_->setAccessibleName("Kind of fault");
  for (const Kind& kind : kKinds) kind_->addItem(kind.caption);
  new WheelGuard(*kind_);
  value_ = new QLineEdit(this);
  value_->setObjectName("faultValue");
  fit_ = new QPushButton("Fit", this);
  fit_->setObjectName("fitFault");
  list_ = new QListWidget(this);
  list_->setObjectName("faults");
  list_->setAccessibleName("Faults that are fitted");
  list_->setMaximumHeight(kLinesShown * fontMetrics().lineSpacing() + 2 * list_->frameWidth());
  mend_ = new QPushButton("Mend", this);
  mend_->setObjectName("mendFault");
  mend_->setToolTip("Take the chosen fault away");
  grid->addWidget(kind_, 0, 0, 1, 2);
  grid->addWidget(value_, 1, 0);
  grid->addWidget(fit_, 1, 1);
  grid->addWidget(list_, 2, 0);
  grid->addWidget(mend_, 2, 1, Qt::AlignTop);
  connect(kind_, &QComboBox::currentIndexChanged, this, [this] { showKind(); });
  connect(value_, &QLineEdit::returnPressed, this, [this] { act_([this] { fit(); }); });
  connect(fit_, &QPushButton::clicked, this, [this] { act_([this] { fit(); }); });
  connect(mend_, &QPushButton::clicked, this, [this] { act_([this] { mend(); }); });
  connect(list_, &QListWidget::currentRowChanged, this,
          [this](int row) { mend_->setEnabled(row >= 0); });
  showKind();
}

void BoardFaults::showKind() {
  const Kind& kind = kKinds.at(static_cast<std::size_t>(kind_->currentIndex()));
  value_->setPlaceholderText(kind.wanted);
  value_->setAccessibleName(QString("%1: %2").arg(kind.caption, kind.wanted));
  kind_->setToolTip(kind.tip);
}

void BoardFaults::fit() {
  const Kind& kind = kKinds.at(static_cast<std::size_t>(kind_->currentIndex()));
  bool isNumber = false;
  const uint number = value_->text().toUInt(&isNumber, kind.base);
  if (isNumber && kind.fit(simulated_, number)) {
    value_->clear();
    return;
  }
  QMessageBox::warning(this, "Kestrel", "That fault does not fit this board and its chip.");
}

void BoardFaults::mend() {
  const std::vector<Fault> all = faults();
  const auto row = static_cast<std::size_t>(list_->currentRow());
  if (row < all.size()) all[row].mend();
}

std::vector<BoardFaults::Fault> BoardFaults::faults() const {
  std::vector<Fault> list;
  addChipFaults(list);
  addStuckLines(list);
  if (const auto left = simulated_.bench().accessesLeft()) {
    list.push_back({.text = QString("Unplug after %1 accesses").arg(*left),
                    .mend = [this] { simulated_.bench().unplugAfter({}); }});
  }
  return list;
}

void BoardFaults::addChipFaults(std::vector<Fault>& list) const {
  const sim::Chip* const chip = simulated_.board().chip();
  if (chip == nullptr) return;
  for (const std::uint32_t address : chip->weakCells()) {
    list.push_back(
        {.text = QString("Weak cell at %1h").arg(QString::number(address, kHex).toUpper()),
         .mend = [this, address] { simulated_.board().mendCell(address); }});
  }
  if (const auto left = chip->settings().acknowledgeLimit) {
    list.push_back({.text = QString("No ACK after %1 bytes").arg(*left),
                    .mend = [this] { simulated_.board().setChip({}); }});
  }
}

void BoardFaults::addStuckLines(std::vector<Fault>& list) const {
  const auto [low, high] = simulated_.board().stuckLines();
  for (int line = 0; line < kDataLines; ++line) {
    const unsigned bit = 1U << static_cast<unsigned>(line);
    if (((low | high) & bit) == 0) continue;
    list.push_back(
        {.text = QString("D%1 is stuck %2").arg(line).arg((low & bit) != 0 ? "low" : "high"),
         .mend = [this, line] { simulated_.board().freeDataLine(line); }});
  }
}

void BoardFaults::showFaults() {
  QStringList texts;
  for (const Fault& fault : faults()) texts.append(fault.text);
  QStringList shown;
  for (int row = 0; row < list_->count(); ++row) shown.append(list_->item(row)->text());
  if (texts != shown) {
    list_->clear();
    list_->addItems(texts);
  }
  mend_->setEnabled(list_->isEnabled() && list_->currentRow() >= 0);
}

}  // namespace kestrel::window
