#include "app/window/link_dialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace kestrel::window {
namespace {

constexpr const char* kLinkSection = "Link";
constexpr const char* kPortKey = "Port";
constexpr const char* kLinkMark = "=link:";

QString lineText(const link::SerialDevice& device) {
  const QString path = QString::fromStdString(device.device);
  if (device.product.empty()) return path;
  return path + " (" + QString::fromStdString(device.product) + ")";
}

}  // namespace

LinkDialog::LinkDialog(const std::string& inForce, const std::vector<link::SerialDevice>& devices,
                       QWidget* parent)
    : QDialog(parent) {
  setObjectName("linkDialog");
  setWindowTitle("Link");
  build(devices);
  show(inForce);
}

void LinkDialog::build(const std::vector<link::SerialDevice>& devices) {
  line_ = new QComboBox(this);
  line_->setObjectName("linkLine");
  line_->setEditable(true);
  for (const link::SerialDevice& device : devices) {
    line_->addItem(lineText(device), QString::fromStdString(device.name));
  }
  base_ = new QComboBox(this);
  base_->setObjectName("linkBase");
  for (const char* const base : {"378", "278", "3BC"}) base_->addItem(QString(base) + "h", base);

  auto* const hint = new QLabel(
      devices.empty() ? "No serial line is there. Plug the adapter in and open this again, or type "
                        "its device."
                      : "The adapter stands in for a parallel port at the end of a serial line.",
      this);
  hint->setWordWrap(true);
  auto* const form = new QFormLayout;
  form->addRow("Serial &line:", line_);
  form->addRow("Stands for &port:", base_);

  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
  QPushButton* const useIt = buttons->addButton("&Use", QDialogButtonBox::AcceptRole);
  QPushButton* const none = buttons->addButton("&No Adapter", QDialogButtonBox::DestructiveRole);
  useIt->setObjectName("linkUse");
  none->setObjectName("linkNone");
  connect(useIt, &QPushButton::clicked, this, [this] { use(); });
  connect(none, &QPushButton::clicked, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* const column = new QVBoxLayout(this);
  column->addWidget(hint);
  column->addLayout(form);
  column->addWidget(buttons);
}

// What is in force need not be plugged in now.
void LinkDialog::show(const std::string& inForce) {
  const QString text = QString::fromStdString(inForce);
  const qsizetype mark = text.indexOf(kLinkMark);
  if (mark < 0) return;
  base_->setCurrentIndex(base_->findData(text.left(mark)));
  const QString device = text.mid(mark + QString(kLinkMark).size());
  const int known = line_->findData(device);
  if (known >= 0) {
    line_->setCurrentIndex(known);
  } else {
    line_->setEditText(device);
  }
}

void LinkDialog::use() {
  const bool isListed = line_->findText(line_->currentText()) == line_->currentIndex();
  const QString device = isListed && line_->currentIndex() >= 0 ? line_->currentData().toString()
                                                                : line_->currentText();
  if (device.trimmed().isEmpty()) return;
  choice_ = (base_->currentData().toString() + kLinkMark + device.trimmed()).toStdString();
  accept();
}

launch::LaunchOptions withKeptLink(launch::LaunchOptions options, const SettingsStore& settings) {
  const std::string kept = settings.value(kLinkSection, kPortKey).value_or("");
  if (options.simulate || !options.ports.empty() || kept.empty()) return options;
  try {
    options.ports.push_back(launch::parsePort(kept));
  } catch (const launch::UsageError&) {
    // The settings file was changed by hand: as if there were no adapter.
  }
  return options;
}

bool askForLink(launch::LaunchedProgram& program, SettingsStore& settings, QWidget& owner) {
  LinkDialog dialog(settings.value(kLinkSection, kPortKey).value_or(""), link::listSerialDevices(),
                    &owner);
  if (dialog.exec() != QDialog::Accepted) return false;
  settings.setValue(kLinkSection, kPortKey, dialog.choice());
  std::optional<ports::PortChoice> choice;
  if (!dialog.choice().empty()) choice = launch::parsePort(dialog.choice());
  program.chooseLink(choice);
  return true;
}

}  // namespace kestrel::window
