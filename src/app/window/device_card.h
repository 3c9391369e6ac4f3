#pragma once

#include <QTimer>
#include <QWidget>
#include <functional>
#include <optional>
#include <string>

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "app/window/binder.h"
#include "app/window/socket_view.h"

class QLabel;

namespace kestrel::window {

/// What stands in the socket, where that can be looked at: on a simulated board.
struct SocketLook {
  SocketLevels levels;
  std::string chip;  ///< its name; empty: the socket is
};

/// The chosen device as a person at the bench needs it: where its chip goes, what it is, and what
/// cannot be done with it.
class DeviceCard final : public QWidget {
 public:
  DeviceCard(Controls& controls, const PortState& port, const LatchState& latches,
             const SelectionState& device, const AlgorithmState& chosen, const Binder& binder,
             QWidget* parent);

  /// The socket can be looked at; `chipOfDevice` names the chip that belongs to a device.
  void lookAt(std::function<SocketLook()> socket,
              std::function<std::string(const std::string& device)> chipOfDevice);

  /// While a command runs the pins show their levels, where they can be known.
  void setRunning(bool running);

 private:
  void showDevice();
  void showFacts();
  void showLevels();
  [[nodiscard]] QString factsText() const;
  [[nodiscard]] std::optional<SocketLevels> levels() const;

  const PortState& port_;
  const LatchState& latches_;
  const SelectionState& device_;
  const AlgorithmState& chosen_;
  SocketView* socket_ = nullptr;
  QLabel* facts_ = nullptr;
  QLabel* warning_ = nullptr;
  std::function<SocketLook()> look_;
  std::function<std::string(const std::string&)> chipOfDevice_;
  QTimer levelsTimer_;
  QTimer chipTimer_;
};

}  // namespace kestrel::window
