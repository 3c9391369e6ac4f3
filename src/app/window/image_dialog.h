#pragma once

#include <QDialog>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "images/image_file.h"

class QComboBox;
class QLineEdit;
class QPushButton;

namespace kestrel::window {

class VerdictLabel;

/// Asks for the format of an image file, which of its addresses are taken and where they go, and
/// shows at every change what would come of it.
class ImageDialog final : public QDialog {
 public:
  struct Texts {
    QString title;
    QString verb;   ///< of the button
    QString file;   ///< its name
    QString range;  ///< stands in the empty fields
    QString at;
  };
  /// What would be done, in words. Throws ImageError or FileError for what cannot be.
  using Judge = std::function<std::string(const images::Format&, const images::Placement&)>;

  ImageDialog(const Texts& texts, const std::vector<images::FormatId>& formats,
              images::FormatId suggested, Judge judge, QWidget* parent);

  [[nodiscard]] const images::Format& format() const;

  /// Throws ImageError for what is no address.
  [[nodiscard]] images::Placement placement() const;

 private:
  void build(const Texts& texts, const std::vector<images::FormatId>& formats,
             images::FormatId suggested);
  void judge();

  Judge judge_;
  QComboBox* format_ = nullptr;
  QLineEdit* range_ = nullptr;
  QLineEdit* at_ = nullptr;
  VerdictLabel* verdict_ = nullptr;
  QPushButton* accept_ = nullptr;
};

}  // namespace kestrel::window
