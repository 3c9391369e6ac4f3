#include "app/window/change_dialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "app/window/verdict_label.h"

namespace kestrel::window {
namespace {

constexpr int kWidth = 380;
constexpr int kVerdictLines = 3;

}  // namespace

ChangeDialog::ChangeDialog(const QString& title, const std::vector<ChangeField>& fields,
                           Check check, QWidget* parent)
    : QDialog(parent), check_(std::move(check)) {
  setObjectName("changeDialog");
  setWindowTitle(title);
  auto* const form = new QFormLayout;
  for (const ChangeField& field : fields) form->addRow(field.label, fieldOf(field));
  verdict_ = new VerdictLabel("changeVerdict", kWidth, kVerdictLines, this);
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  accept_ = buttons->button(QDialogButtonBox::Ok);
  accept_->setObjectName("changeAccept");
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* const column = new QVBoxLayout(this);
  column->addLayout(form);
  column->addWidget(verdict_, 1);
  column->addWidget(buttons);
  judge();
}

QWidget* ChangeDialog::fieldOf(const ChangeField& field) {
  if (field.isFile) return fileFieldOf(field);
  if (!field.words.isEmpty()) {
    auto* const box = new QComboBox(this);
    box->setObjectName(field.name);
    box->addItems(field.words);
    connect(box, &QComboBox::currentIndexChanged, this, [this] { judge(); });
    values_.emplace_back([box] { return std::to_string(box->currentIndex()); });
    return box;
  }
  auto* const line = new QLineEdit(field.value, this);
  line->setObjectName(field.name);
  connect(line, &QLineEdit::textChanged, this, [this] { judge(); });
  values_.emplace_back([line] { return line->text().trimmed().toStdString(); });
  return line;
}

QWidget* ChangeDialog::fileFieldOf(const ChangeField& field) {
  auto* const both = new QWidget(this);
  auto* const row = new QHBoxLayout(both);
  row->setContentsMargins(0, 0, 0, 0);
  auto* const line = new QLineEdit(both);
  line->setObjectName(field.name);
  auto* const choose = new QPushButton("&Choose...", both);
  row->addWidget(line, 1);
  row->addWidget(choose);
  both->setFocusProxy(line);
  connect(line, &QLineEdit::textChanged, this, [this] { judge(); });
  connect(choose, &QPushButton::clicked, this, [this, line] {
    const QString file = QFileDialog::getOpenFileName(this, "Choose a File", line->text());
    if (!file.isEmpty()) line->setText(file);
  });
  values_.emplace_back([line] { return line->text().toStdString(); });
  return both;
}

ChangeDialog::Values ChangeDialog::values() const {
  Values values;
  values.reserve(values_.size());
  for (const auto& value : values_) values.push_back(value());
  return values;
}

void ChangeDialog::judge() {
  if (accept_ == nullptr) return;  // while the fields are made
  const Values now = values();
  const bool isFilled = std::ranges::find(now, std::string()) == now.end();
  const bool isRight = verdict_->judge([&] { return isFilled ? check_(now) : std::string(); });
  accept_->setEnabled(isFilled && isRight);
}

}  // namespace kestrel::window
