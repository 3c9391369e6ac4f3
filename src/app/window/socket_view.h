#pragma once

#include <QString>
#include <QWidget>
#include <cstdint>
#include <optional>

#include "devices/chip_pins.h"

namespace kestrel::window {

/// The levels on the socket; bit p-1 is socket pin p, 1 = high.
struct SocketLevels {
  std::uint32_t high = 0;
  std::uint32_t vpp = 0;  ///< pins with the programming voltage
};

/// A drawing of the 32-pin socket as it lies on the bench, lever and pin 1 up, with the chip of the
/// chosen device in its place.
class SocketView final : public QWidget {
 public:
  explicit SocketView(QWidget* parent);

  /// The chip to draw; one without pins leaves the socket empty.
  void setChip(const devices::ChipPins& pinout, const QString& name);

  /// The levels to show on the pins; none: only what the pins are.
  void setLevels(const std::optional<SocketLevels>& levels);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  struct Layout;

  [[nodiscard]] Layout layOut() const;
  void paintSocket(QPainter& painter, const Layout& place) const;
  void paintChip(QPainter& painter, const Layout& place) const;
  void paintPin(QPainter& painter, const Layout& place, int pin) const;
  [[nodiscard]] QColor pinColour(int pin) const;

  devices::ChipPins pinout_;
  QString name_;
  std::optional<SocketLevels> levels_;
};

}  // namespace kestrel::window
