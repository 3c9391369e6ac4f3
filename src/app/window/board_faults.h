#pragma once

#include <QGroupBox>
#include <functional>
#include <vector>

#include "app/launch/simulated_board.h"

class QComboBox;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace kestrel::window {

/// What is wrong with the simulated board and its chip: fitted, listed, and mended again.
class BoardFaults final : public QGroupBox {
 public:
  /// `act` runs a change when the board may be touched; the box is shown anew after it.
  using Act = std::function<void(const std::function<void()>& change)>;

  BoardFaults(launch::SimulatedBoard& simulated, Act act, QWidget* parent);

  /// Lists the faults as they are.
  void showFaults();

 private:
  struct Fault {
    QString text;
    std::function<void()> mend;
  };

  void fit();
  void mend();
  void showKind();
  [[nodiscard]] std::vector<Fault> faults() const;
  void addChipFaults(std::vector<Fault>& list) const;
  void addStuckLines(std::vector<Fault>& list) const;

  launch::SimulatedBoard& simulated_;
  Act act_;
  QComboBox* kind_ = nullptr;
  QLineEdit* value_ = nullptr;
  QPushButton* fit_ = nullptr;
  QListWidget* list_ = nullptr;
  QPushButton* mend_ = nullptr;
};

}  // namespace kestrel::window
