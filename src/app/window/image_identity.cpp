#include "app/window/image_identity.h"

#include <QVBoxLayout>
#include <array>
#include <utility>

#include "app/state/text_format.h"
#include "app/window/elided_label.h"
#include "app/window/texts.h"

namespace kestrel::window {
namespace {

constexpr int kRestMs = 300;
constexpr int kLines = 3;
constexpr qsizetype kShortSha = 8;  // digits

}  // namespace

ImageIdentity::ImageIdentity(QWidget* parent) : QWidget(parent) {
  setObjectName("imageIdentity");
  setAccessibleName("The image in the buffer");
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(1);
  for (int i = 0; i < kLines; ++i) {
    auto* const line = new ElidedLabel(Qt::ElideRight, this);
    line->setAttribute(Qt::WA_TransparentForMouseEvents);  // the tip is that of all lines
    column->addWidget(line);
    lines_.push_back(line);
  }
  worker_.setMaxThreadCount(1);
  rests_.setSingleShot(true);
  rests_.setInterval(kRestMs);
  connect(&rests_, &QTimer::timeout, this, [this] { look(); });
  hide();
}

ImageIdentity::~ImageIdentity() { worker_.waitForDone(); }

void ImageIdentity::lookAt(std::function<images::Bytes()> image, std::function<bool()> isBusy) {
  image_ = std::move(image);
  isBusy_ = std::move(isBusy);
}

// The end of the command that goes on asks again.
void ImageIdentity::look() {
  if (!image_ || isBusy_()) return;
  images::Bytes image = image_();
  if (image == last_) return;
  last_ = image;
  setVisible(!image.empty());
  if (image.empty()) return;
  worker_.clear();
  worker_.start([this, image = std::move(image)] {
    images::Identity identity = images::identify(image);
    QMetaObject::invokeMethod(
        this, [this, identity = std::move(identity)] { show(identity); }, Qt::QueuedConnection);
  });
}

void ImageIdentity::show(const images::Identity& identity) {
  const QString sha = QString::fromStdString(identity.sha256);
  const QString blank = QString::number(images::blankPercent(identity), 'f', 1) + " % blank";
  const QString sums = toQString("Sum " + images::addressText(identity.sum) + ", CRC-32 " +
                                 hexText(static_cast<std::int32_t>(identity.crc32), 8));
  QStringList looks;
  for (const std::string& text : identity.looksLike)
    looks << onOneLine(QString::fromStdString(text));
  lines_[0]->setText(sums);
  lines_[1]->setText("SHA-256 " + sha.left(kShortSha) + QChar(0x2026) + ", " + blank);
  lines_[2]->setText(looks.value(0));
  lines_[2]->setVisible(!looks.isEmpty());
  QStringList all{QString::number(identity.bytes) + " bytes, " + blank, sums, "SHA-256 " + sha};
  for (const QString& text : looks) all << "Looks like: " + text;
  setAccessibleDescription(all.join(". "));
  for (QString& text : all) text = text.toHtmlEscaped();
  setToolTip("<qt>" + all.join("<br>") + "</qt>");
}

}  // namespace kestrel::window
