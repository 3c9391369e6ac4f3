#pragma once

#include <QGroupBox>
#include <optional>
#include <string>
#include <string_view>

#include "images/serial_numbers.h"

class QComboBox;
class QFormLayout;
class QLineEdit;

namespace kestrel::window {

/// The fields of a serial number: those of the command line's plan.
class SerialFields final : public QGroupBox {
 public:
  explicit SerialFields(QWidget* parent);

  /// As the command line takes it; empty while the box is not ticked.
  [[nodiscard]] std::string text() const;

  /// Throws ImageError for what is no plan; nothing while the box is not ticked.
  [[nodiscard]] std::optional<images::SerialPlan> plan() const;

  /// Shows a plan; an empty text takes the tick away.
  void setText(const std::string& text);

 private:
  QLineEdit* add(QFormLayout& form, const char* label, const char* name, const char* value);

  QLineEdit* at_ = nullptr;
  QLineEdit* bytes_ = nullptr;
  QLineEdit* start_ = nullptr;
  QLineEdit* step_ = nullptr;
  QComboBox* order_ = nullptr;
  QComboBox* form_ = nullptr;
  QLineEdit* list_ = nullptr;
  QLineEdit* counter_ = nullptr;
};

}  // namespace kestrel::window
