#include "app/window/about_box.h"

#include <QDialogButtonBox>
#include <QIcon>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QStandardPaths>
#include <QVBoxLayout>

#include "app/launch/version.h"

namespace kestrel::window {

QStringList systemInformationTool() {
  const QList<QStringList> known{{"kinfocenter"},
                                 {"gnome-control-center", "system"},
                                 {"mate-system-monitor", "-s"},
                                 {"cinnamon-settings", "info"},
                                 {"xfce4-about"},
                                 {"hardinfo2"},
                                 {"hardinfo"}};
  for (const QStringList& command : known) {
    const QString program = QStandardPaths::findExecutable(command.first());
    if (!program.isEmpty()) return QStringList{program} + command.mid(1);
  }
  return {};
}

AboutBox::AboutBox(QWidget* parent) : QDialog(parent) {
  constexpr int kIconSize = 64;
  setObjectName("frmAbout");
  setWindowTitle("About Kestrel");
  auto* const column = new QVBoxLayout(this);
  column->setSpacing(12);
  auto* const picture = new QLabel(this);
  picture->setPixmap(QIcon(":/icons/kestrel.svg").pixmap(kIconSize));
  picture->setAlignment(Qt::AlignCenter);
  auto* const about = new QLabel(this);
  about->setAlignment(Qt::AlignCenter);
  about->setText(QString("<h2>Kestrel</h2><p>Version %1</p>"
                         "<p>Control program for the chip programmers<br>"
                         "KESTREL-4, KESTREL-5 and KESTREL-6</p>")
                     .arg(launch::kVersion));
  about->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  const QStringList tool = systemInformationTool();
  if (!tool.isEmpty()) {
    QPushButton* const start =
        buttons->addButton("&System Information...", QDialogButtonBox::ActionRole);
    start->setObjectName("systemInformation");
    connect(start, &QPushButton::clicked, this,
            [tool] { QProcess::startDetached(tool.first(), tool.mid(1)); });
  }
  column->addWidget(picture);
  column->addWidget(about);
  column->addWidget(buttons);
  layout()->setSizeConstraint(QLayout::SetFixedSize);
}

}  // namespace kestrel::window
