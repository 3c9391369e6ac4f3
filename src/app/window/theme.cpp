#include "app/window/theme.h"

#include <QFontDatabase>

namespace kestrel::window {

bool isDark(const QPalette& palette) {
  return palette.color(QPalette::Window).lightness() <
         palette.color(QPalette::WindowText).lightness();
}

QColor inkColour(Colour colour, const QPalette& palette) {
  switch (colour) {
    case Colour::Red:
      return isDark(palette) ? QColor(0xFF, 0x7A, 0x70) : QColor(0xC0, 0x10, 0x10);
    case Colour::Green:
      return isDark(palette) ? QColor(0x6F, 0xD0, 0x7A) : QColor(0x00, 0x70, 0x00);
    case Colour::Highlight:
      return palette.color(QPalette::Highlight);
    case Colour::ButtonFace:
    case Colour::ButtonText:
      break;
  }
  return palette.color(QPalette::WindowText);
}

QColor groundColour(Colour colour, const QPalette& palette) {
  switch (colour) {
    case Colour::Red:
      return {0xD0, 0x10, 0x10};
    case Colour::Green:
      return {0x00, 0x80, 0x00};
    case Colour::Highlight:
      return palette.color(QPalette::Highlight);
    case Colour::ButtonFace:
    case Colour::ButtonText:
      break;
  }
  return palette.color(QPalette::Button);
}

QColor amber(const QPalette& palette) {
  return isDark(palette) ? QColor(0xB0, 0x6A, 0x00) : QColor(0xA8, 0x5A, 0x06);
}

QPalette noticePalette(QPalette palette) {
  const bool dark = isDark(palette);
  palette.setColor(QPalette::Window, dark ? QColor(0x4A, 0x3A, 0x12) : QColor(0xFD, 0xF0, 0xCC));
  palette.setColor(QPalette::WindowText,
                   dark ? QColor(0xF6, 0xEA, 0xCB) : QColor(0x30, 0x22, 0x00));
  return palette;
}

void setButtonColour(QAbstractButton& button, Colour colour) {
  if (colour == Colour::ButtonFace) {
    button.setPalette({});
    return;
  }
  QPalette own = button.palette();
  own.setColor(QPalette::Button, groundColour(colour, own));
  own.setColor(QPalette::ButtonText,
               colour == Colour::Highlight ? own.color(QPalette::HighlightedText) : Qt::white);
  button.setPalette(own);
}

QFont fixedFont() { return QFontDatabase::systemFont(QFontDatabase::FixedFont); }

void IconSet::add(QAction& action, const QString& name) {
  uses_.push_back({.name = name, .action = &action, .button = {}});
}

void IconSet::add(QAbstractButton& button, const QString& name) {
  uses_.push_back({.name = name, .action = {}, .button = &button});
}

void IconSet::apply(const QPalette& palette) {
  const QString folder = isDark(palette) ? ":/icons/dark/" : ":/icons/light/";
  for (const Use& use : uses_) {
    const QIcon icon(folder + use.name + ".svg");
    if (use.action) use.action->setIcon(icon);
    if (use.button) use.button->setIcon(icon);
  }
}

}  // namespace kestrel::window
