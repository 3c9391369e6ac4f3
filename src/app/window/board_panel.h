#pragma once

#include <QScrollArea>
#include <QTimer>
#include <functional>

#include "app/form/command_runner.h"
#include "app/launch/simulated_board.h"
#include "app/window/held_input.h"

class QBoxLayout;
class QComboBox;
class QLabel;
class QListWidget;
class QPushButton;

namespace kestrel::window {

class BoardFaults;
class DeviceCard;

/// The bench with the simulated board: what a person would do there with the hands.
class SimulatedBoardPanel final : public QScrollArea {
 public:
  SimulatedBoardPanel(launch::SimulatedBoard& simulated, form::CommandRunner& runner,
                      HeldInput& input, QWidget* parent);

  /// Writes the chip's contents back to the file that they came from, at the end. Where that file
  /// cannot be written another place is offered; false when the user would rather stay.
  bool keepChip();

 private:
  void buildBoard(QBoxLayout& column);
  void buildChip(QBoxLayout& column);
  void buildFindings(QBoxLayout& column);
  QPushButton* addButton(QBoxLayout& row, const QString& caption, const QString& name,
                         std::function<void()> handler);

  void act(const std::function<void()>& handler);
  void plugOrUnplug();
  void changeBoard();
  void setVoltage();
  void insertBlank();
  void insertFromFile();
  void takeOut();
  void eraseUnderLamp();
  void saveContents();
  void showPlugged();
  void showRunning();
  void showState();
  [[nodiscard]] bool saveContentsAs();
  void showFindings();
  [[nodiscard]] QString textOf(const sim::Finding& finding);

  [[nodiscard]] sim::Board& board() { return simulated_.board(); }

  launch::SimulatedBoard& simulated_;
  form::CommandRunner& runner_;
  QComboBox* model_ = nullptr;
  QComboBox* port_ = nullptr;
  QPushButton* plug_ = nullptr;
  QComboBox* voltage_ = nullptr;
  QLabel* chip_ = nullptr;
  QComboBox* type_ = nullptr;
  QPushButton* takeOut_ = nullptr;
  QPushButton* erase_ = nullptr;
  QPushButton* save_ = nullptr;
  BoardFaults* faults_ = nullptr;
  QListWidget* findings_ = nullptr;
  QTimer running_;  // until the panel looks as if a command ran
  QTimer look_;     // the board gives no signal when something happens on it
};

/// The card shows what stands in the simulated socket.
void watchSocket(launch::SimulatedBoard& simulated, DeviceCard& card);

}  // namespace kestrel::window
