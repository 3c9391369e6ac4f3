#pragma once

#include <QLabel>
#include <functional>
#include <string>

namespace kestrel::window {

/// What would come of the fields of a dialog, or what is wrong with them.
class VerdictLabel final : public QLabel {
 public:
  /// Room for so many lines of this width.
  VerdictLabel(const char* name, int width, int lines, QWidget* parent);

  /// Says what `look` returns, or in the colour of what is wrong the ImageError or FileError that
  /// it throws; true when all is well.
  bool judge(const std::function<std::string()>& look);

  void showVerdict(const std::string& text, bool isWrong);
};

}  // namespace kestrel::window
