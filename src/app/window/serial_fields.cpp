#include "app/window/serial_fields.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <map>

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

// Also what is no plan is shown: it was typed here and can be mended.
void SerialFields::setText(const std::string& text) {
  setChecked(!text.empty());
  const std::map<QString, QLineEdit*> lines{{"at", at_},       {"bytes", bytes_},
                                            {"start", start_}, {"step", step_},
                                            {"list", list_},   {"counter", counter_}};
  const std::map<QString, QComboBox*> boxes{{"order", order_}, {"form", form_}};
  for (const QString& item : QString::fromStdString(text).split(',')) {
    const QString key = item.section('=', 0, 0);
    const QString value = item.section('=', 1);
    if (const auto line = lines.find(key); line != lines.end()) line->second->setText(value);
    if (const auto box = boxes.find(key); box != boxes.end()) {
      box->second->setCurrentIndex(box->second->findData(value));
    }
  }
}

}  // namespace kestrel::window
