#pragma once

#include <QScrollArea>

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "app/window/binder.h"
#include "app/window/theme.h"

class QBoxLayout;
class QLabel;

namespace kestrel::window {

class DeviceBox;
class DeviceCard;
class ImageIdentity;

/// The left side, from top to bottom in the order of the work: device, file, options; at the foot
/// the board.
class OptionsPanel final : public QScrollArea {
 public:
  OptionsPanel(Controls& controls, const PortState& port, const LatchState& latches,
               const SelectionState& device, const AlgorithmState& chosen, const Binder& binder,
               IconSet& icons, QWidget* parent);

  [[nodiscard]] DeviceBox& device() const { return *device_; }
  [[nodiscard]] DeviceCard& card() const { return *card_; }
  [[nodiscard]] ImageIdentity& identity() const { return *identity_; }
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void buildDevice(QBoxLayout& column);
  void buildFile(QBoxLayout& column);
  void buildDataFile(QBoxLayout& column);
  void buildVoltage(QBoxLayout& column);
  void buildLane(QBoxLayout& column);
  void buildChecks(QBoxLayout& column);
  void buildAlgorithms(QBoxLayout& column);
  [[nodiscard]] QWidget* readTimes(QWidget& frame);
  void buildSheetOptions(QWidget& frame, QBoxLayout& lines);
  void buildSpeed(QBoxLayout& column);
  void buildHardware(QBoxLayout& column);
  void buildPorts(QBoxLayout& column);
  void showHardwareColour();

  Controls& controls_;
  const PortState& port_;
  const LatchState& latches_;
  const SelectionState& selection_;
  const AlgorithmState& chosen_;
  const Binder& binder_;
  IconSet& icons_;
  DeviceBox* device_ = nullptr;
  DeviceCard* card_ = nullptr;
  ImageIdentity* identity_ = nullptr;
  QLabel* hardware_ = nullptr;
};

}  // namespace kestrel::window
