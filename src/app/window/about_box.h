#pragma once

#include <QDialog>
#include <QString>

namespace kestrel::window {

/// The About box: name, version, and the platform's system-information tool if there is one.
class AboutBox final : public QDialog {
 public:
  explicit AboutBox(QWidget* parent);
};

/// The command of the first system-information tool that is installed; empty if there is none.
[[nodiscard]] QStringList systemInformationTool();

}  // namespace kestrel::window
