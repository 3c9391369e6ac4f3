#pragma once

#include <QImage>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "display/memory_map.h"

namespace kestrel::window {

/// A strip that shows a whole memory in one view, row by row from address 0: blank, zero, data, and
/// differences in red; a frame marks the page on display. A click goes there.
class MemoryMapStrip final : public QWidget {
 public:
  explicit MemoryMapStrip(QWidget* parent);

  void onAddress(std::function<void(std::int32_t address)> go) { go_ = std::move(go); }

  /// The memory; it is looked at again at each call.
  void setMemory(std::span<const std::uint8_t> memory);
  /// Where it differs from what it was compared with.
  void setDifferences(std::vector<display::AddressRange> differences);
  /// The bytes on display.
  void setShown(const display::AddressRange& shown);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool event(QEvent* event) override;

 private:
  void draw();
  void describe();
  [[nodiscard]] int rows() const;
  [[nodiscard]] std::size_t pieces() const;
  [[nodiscard]] std::size_t pieceAt(const QPoint& place) const;
  [[nodiscard]] QRect frameOfShown() const;
  [[nodiscard]] QColor colourOf(display::CellKind kind) const;

  std::function<void(std::int32_t)> go_;
  std::vector<std::uint8_t> memory_;
  std::vector<display::CellKind> map_;
  std::vector<display::AddressRange> differences_;
  display::AddressRange shown_;
  QImage image_;
};

}  // namespace kestrel::window
