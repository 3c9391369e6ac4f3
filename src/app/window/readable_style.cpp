#include "app/window/readable_style.h"

#include <QStyleOptionButton>

#include "app/window/theme.h"

namespace kestrel::window {
namespace {

constexpr float kHintStrength = 0.65F;  // of the text's own strength; 4.5:1 and more on a dark base

/// Styles draw an indicator's outline in a darker shade of the window's colour.
const QColor kOutlineSource(0xB8, 0xBD, 0xC4);

}  // namespace

void ReadableStyle::polish(QPalette& palette) {
  QProxyStyle::polish(palette);
  if (!isDark(palette)) return;
  for (const auto group : {QPalette::Active, QPalette::Inactive}) {
    QColor hint = palette.color(group, QPalette::Text);
    hint.setAlphaF(kHintStrength);
    palette.setColor(group, QPalette::PlaceholderText, hint);
  }
}

void ReadableStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                  QPainter* painter, const QWidget* widget) const {
  const bool isIndicator = element == PE_IndicatorCheckBox || element == PE_IndicatorRadioButton;
  const auto* const button = qstyleoption_cast<const QStyleOptionButton*>(option);
  if (!isIndicator || button == nullptr || !isDark(option->palette)) {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    return;
  }
  QStyleOptionButton readable = *button;
  readable.palette.setColor(QPalette::Window, kOutlineSource);
  QProxyStyle::drawPrimitive(element, &readable, painter, widget);
}

}  // namespace kestrel::window
