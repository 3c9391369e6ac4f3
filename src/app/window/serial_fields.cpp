#include "app/window/serial_fields.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>

namespace kestrel::window {

SerialFields::SerialFields(QWidget* parent) : QGroupBox("Serial num&bers", parent) {
  setObjectName("serialFields");
  setCheckable(true);
  setChecked(false);
  auto* const row = new QHBoxLayout(this);
  auto* const left = new QFormLayout;
  auto* const right = new QFormLayout;
  row->addLayout(left);
  row->addLayout(right);
  at_ = add(*left, "At address, hex:", "serialAt", "0");
  bytes_ = add(*left, "Bytes:", "serialBytes", "4");
  start_ = add(*left, "Begin with:", "serialStart", "1");
  step_ = add(*left, "Step:", "serialStep", "1");
  order_ = new QComboBox(this);
  order_->setObjectName("serialOrder");
  order_->addItem("low byte first", "le");
  order_->addItem("high byte first", "be");
  right->addRow("Byte order:", order_);
  form_ = new QComboBox(this);
  form_->setObjectName("serialForm");
  form_->addItem("binary", "binary");
  form_->addItem("digits (ASCII)", "ascii");
  right->addRow("Written as:", form_);
  list_ = add(*right, "List, a file:", "serialList", "");
  list_->setPlaceholderText("none: they are counted");
  counter_ = add(*right, "Kept in:", "serialCounter", "kestrel-serial.txt");
}

QLineEdit* SerialFields::add(QFormLayout& form, const char* label, const char* name,
                             const char* value) {
  auto* const line = new QLineEdit(value, this);
  line->setObjectName(name);
  form.addRow(label, line);
  return line;
}

std::string SerialFields::text() const {
  if (!isChecked()) return {};
  QString text = "at=" + at_->text().trimmed() + ",bytes=" + bytes_->text().trimmed() +
                 ",order=" + order_->currentData().toString() +
                 ",form=" + form_->currentData().toString();
  if (list_->text().isEmpty()) {
    text += ",start=" + start_->text().trimmed() + ",step=" + step_->text().trimmed();
  } else {
    text += ",list=" + list_->text();
  }
  return (text + ",counter=" + counter_->text()).toStdString();
}

std::optional<images::SerialPlan> SerialFields::plan() const {
  if (!isChecked()) return std::nullopt;
  return images::parseSerialPlan(text());
}

void SerialFields::setText(const std::string& text) {
  setChecked(!text.empty());
  if (text.empty()) return;
  const images::SerialPlan plan = images::parseSerialPlan(text);
  at_->setText(QString::fromStdString(images::addressText(plan.at)));
  bytes_->setText(QString::number(plan.bytes));
  start_->setText(QString::number(plan.start));
  step_->setText(QString::number(plan.step));
  order_->setCurrentIndex(plan.order == images::ByteOrder::BigEndian ? 1 : 0);
  form_->setCurrentIndex(plan.form == images::SerialPlan::Form::Ascii ? 1 : 0);
  list_->setText(QString::fromStdString(plan.list.string()));
  counter_->setText(QString::fromStdString(plan.counter.string()));
}

}  // namespace kestrel::window
