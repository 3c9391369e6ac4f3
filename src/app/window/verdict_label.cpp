#include "app/window/verdict_label.h"

#include "app/window/texts.h"
#include "app/window/theme.h"
#include "images/ranges.h"
#include "platform/runtime_error.h"

namespace kestrel::window {

VerdictLabel::VerdictLabel(const char* name, int width, int lines, QWidget* parent)
    : QLabel(parent) {
  setObjectName(name);
  setWordWrap(true);
  setTextFormat(Qt::PlainText);
  setAlignment(Qt::AlignLeft | Qt::AlignTop);
  setMinimumSize(width, lines * fontMetrics().lineSpacing());
}

bool VerdictLabel::judge(const std::function<std::string()>& look) {
  try {
    showVerdict(look(), false);
    return true;
  } catch (const images::ImageError& error) {
    showVerdict(error.what(), true);
  } catch (const FileError& error) {
    showVerdict(error.what(), true);
  }
  return false;
}

void VerdictLabel::showVerdict(const std::string& text, bool isWrong) {
  QPalette own = parentWidget()->palette();
  if (isWrong) own.setColor(QPalette::WindowText, inkColour(Colour::Red, own));
  setPalette(own);
  setText(onOneLine(QString::fromStdString(text)));
}

}  // namespace kestrel::window
