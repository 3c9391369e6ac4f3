#include "app/window/log_view.h"

#include <QScrollBar>
#include <QTextCursor>
#include <string_view>

#include "app/window/theme.h"

namespace kestrel::window {

LogView::LogView(Controls& controls, const Binder& binder, QWidget* parent)
    : QPlainTextEdit(parent), controls_(controls), binder_(binder) {
  setReadOnly(true);
  setUndoRedoEnabled(false);
  setFont(fixedFont());
  setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  setAccessibleName("System log");
  setToolTip("Double click saves the log to KESTREL.LOG");
  binder.common(controls.SystemLog, *this);
  binder.mirror().bind(controls.SystemLog, *this, [this] { show(); });
}

// The log only ever grows or is emptied; a text that is shorter than what is shown is a new one.
void LogView::show() {
  const std::string_view whole = controls_.SystemLog.text();
  if (whole.size() < shownBytes_) {
    clear();
    shownBytes_ = 0;
  }
  if (whole.size() == shownBytes_) return;
  const bool following = verticalScrollBar()->value() == verticalScrollBar()->maximum();
  const std::string_view piece = whole.substr(shownBytes_);
  QString shown = QString::fromUtf8(piece.data(), static_cast<qsizetype>(piece.size()));
  shown.remove('\r');
  QTextCursor end(document());  // not the user's own, which may hold a selection
  end.movePosition(QTextCursor::End);
  end.insertText(shown);
  shownBytes_ = whole.size();
  if (following) verticalScrollBar()->setValue(verticalScrollBar()->maximum());
}

void LogView::mouseDoubleClickEvent(QMouseEvent*) { binder_.press(controls_.SystemLog_DblClick); }

}  // namespace kestrel::window
