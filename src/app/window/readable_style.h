#pragma once

#include <QProxyStyle>

namespace kestrel::window {

/// The desktop's own style, with what it draws too faintly on a dark ground made visible: the
/// outlines of unticked boxes and buttons, and the hints in empty text fields.
class ReadableStyle final : public QProxyStyle {
 public:
  /// Takes the style over; nullptr is the desktop's.
  explicit ReadableStyle(QStyle* style = nullptr) : QProxyStyle(style) {}

  void polish(QPalette& palette) override;
  using QProxyStyle::polish;

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
};

}  // namespace kestrel::window
