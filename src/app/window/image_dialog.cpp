#include "app/window/image_dialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "app/window/elided_label.h"
#include "app/window/verdict_label.h"

namespace kestrel::window {
namespace {

constexpr int kWidth = 460;
constexpr int kVerdictLines = 5;

}  // namespace

ImageDialog::ImageDialog(const Texts& texts, const std::vector<images::FormatId>& formats,
                         images::FormatId suggested, Judge judge, QWidget* parent)
    : QDialog(parent), judge_(std::move(judge)) {
  setObjectName("imageDialog");
  setWindowTitle(texts.title);
  build(texts, formats, suggested);
  this->judge();
}

void ImageDialog::build(const Texts& texts, const std::vector<images::FormatId>& formats,
                        images::FormatId suggested) {
  auto* const file = new ElidedLabel(Qt::ElideMiddle, this);
  file->setText(texts.file);
  format_ = new QComboBox(this);
  format_->setObjectName("imageFormat");
  for (const images::FormatId id : formats) {
    format_->addItem(images::formatOf(id).title, static_cast<int>(id));
  }
  format_->setCurrentIndex(format_->findData(static_cast<int>(suggested)));
  const auto field = [this](const char* name, const QString& empty) {
    auto* const line = new QLineEdit(this);
    line->setObjectName(name);
    line->setPlaceholderText(empty);
    connect(line, &QLineEdit::textChanged, this, [this] { this->judge(); });
    return line;
  };
  range_ = field("imageRange", texts.range);
  at_ = field("imageAt", texts.at);
  verdict_ = new VerdictLabel("imageVerdict", kWidth, kVerdictLines, this);

  auto* const form = new QFormLayout;
  form->addRow("File:", file);
  form->addRow("&Format:", format_);
  form->addRow("&Range, FROM-TO:", range_);
  form->addRow("&At address:", at_);
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
  accept_ = buttons->addButton(texts.verb, QDialogButtonBox::AcceptRole);
  accept_->setObjectName("imageAccept");
  auto* const column = new QVBoxLayout(this);
  column->addLayout(form);
  column->addWidget(verdict_, 1);
  column->addWidget(buttons);
  connect(format_, &QComboBox::currentIndexChanged, this, [this] { this->judge(); });
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

const images::Format& ImageDialog::format() const {
  return images::formatOf(static_cast<images::FormatId>(format_->currentData().toInt()));
}

images::Placement ImageDialog::placement() const {
  const std::string at = at_->text().trimmed().toStdString();
  const std::string range = range_->text().trimmed().toStdString();
  images::Placement placement;
  if (!at.empty()) placement.at = images::parseAddress(at);
  if (!range.empty()) placement.range = images::parseRange(range);
  return placement;
}

void ImageDialog::judge() {
  accept_->setEnabled(verdict_->judge([this] { return judge_(format(), placement()); }));
}

}  // namespace kestrel::window
