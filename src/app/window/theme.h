#pragma once

#include <QAbstractButton>
#include <QAction>
#include <QColor>
#include <QIcon>
#include <QPalette>
#include <QPointer>
#include <QString>
#include <QWidget>
#include <vector>

#include "app/state/control.h"

namespace kestrel::window {

[[nodiscard]] bool isDark(const QPalette& palette);

/// A control's colour as ink that can be read on the palette's window.
[[nodiscard]] QColor inkColour(Colour colour, const QPalette& palette);

/// A control's colour as the ground of a lamp; white text can be read on red and green.
[[nodiscard]] QColor groundColour(Colour colour, const QPalette& palette);

/// The amber that warns of a programming voltage.
[[nodiscard]] QColor amber(const QPalette& palette);

/// Of a notice in the window: text on a quiet amber.
[[nodiscard]] QPalette noticePalette(QPalette palette);

void setButtonColour(QAbstractButton& button, Colour colour);

[[nodiscard]] QFont fixedFont();

/// The drawn icons, light or dark as the palette is, given anew when it changes.
class IconSet {
 public:
  void add(QAction& action, const QString& name);
  void add(QAbstractButton& button, const QString& name);
  void apply(const QPalette& palette);

 private:
  struct Use {
    QString name;
    QPointer<QAction> action;
    QPointer<QAbstractButton> button;
  };
  std::vector<Use> uses_;
};

}  // namespace kestrel::window
