#pragma once

#include <QDialog>
#include <functional>
#include <string>
#include <vector>

class QFormLayout;
class QPushButton;
class QWidget;

namespace kestrel::window {

class VerdictLabel;

/// One thing that a change of the buffer wants to know: a text, one of several words, or a file.
struct ChangeField {
  const char* label = "";
  const char* name = "";   ///< of the widget
  QString value = {};      ///< that it begins with
  QStringList words = {};  ///< to choose from; empty: any text
  bool isFile = false;
};

/// Asks for the fields of a change and says at once what is wrong with them.
class ChangeDialog final : public QDialog {
 public:
  using Values = std::vector<std::string>;
  /// What would come of these values, in words; nothing to say is empty. Throws ImageError or
  /// FileError when they cannot be had.
  using Check = std::function<std::string(const Values&)>;

  ChangeDialog(const QString& title, const std::vector<ChangeField>& fields, Check check,
               QWidget* parent);

  /// In the order of the fields; of words the place in their list.
  [[nodiscard]] Values values() const;

 private:
  QWidget* fieldOf(const ChangeField& field);
  QWidget* fileFieldOf(const ChangeField& field);
  void judge();

  Check check_;
  std::vector<std::function<std::string()>> values_;
  VerdictLabel* verdict_ = nullptr;
  QPushButton* accept_ = nullptr;
};

}  // namespace kestrel::window
