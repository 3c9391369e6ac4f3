#include "app/window/log_panel.h"

#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>
#include <QVBoxLayout>
#include <utility>

#include "app/window/log_view.h"
#include "app/window/step_label.h"
#include "platform/atomic_file.h"
#include "platform/runtime_error.h"

namespace kestrel::window {
namespace {

constexpr int kFewestLines = 3;

}  // namespace

LogPanel::LogPanel(Controls& controls, const Binder& binder, QtDialogs& dialogs, QWidget* parent)
    : QWidget(parent), controls_(controls), dialogs_(dialogs) {
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 8, 0);
  view_ = new LogView(controls, binder, this);
  view_->setMinimumHeight(kFewestLines * view_->fontMetrics().lineSpacing() +
                          2 * view_->frameWidth() + 8);
  buildHeader(*column);
  column->addWidget(view_, 1);
  buildFind(*column);
}

void LogPanel::buildHeader(QBoxLayout& column) {
  auto* const row = new QHBoxLayout;
  column.addLayout(row);
  auto* const title = new StepLabel("System &log", this);
  title->setBuddy(view_);
  row->addWidget(title, 1);
  addButton(*row, "Copy", "logCopy", "Copy the log, or what is selected in it", [this] { copy(); });
  addButton(*row, "Find...", "logFind", "Find a text in the log (Ctrl+F in the log)",
            [this] { openFind(); });
  addButton(*row, "Save As...", "logSave", "Save the log under a name", [this] { save(); });
  clear_ = addButton(*row, "Clear", "logClear", "Empty the log",
                     [this] { controls_.SystemLog.setText(""); });
}

QWidget* LogPanel::addButton(QBoxLayout& row, const QString& caption, const QString& name,
                             const QString& toolTip, std::function<void()> handler) {
  auto* const button = new QToolButton(this);
  button->setText(caption);
  button->setObjectName(name);
  button->setToolTip(toolTip);
  button->setAutoRaise(true);
  button->setFocusPolicy(Qt::TabFocus);
  connect(button, &QToolButton::clicked, this, std::move(handler));
  row.addWidget(button);
  return button;
}

void LogPanel::buildFind(QBoxLayout& column) {
  findBar_ = new QWidget(this);
  auto* const row = new QHBoxLayout(findBar_);
  row->setContentsMargins(0, 0, 0, 0);
  wanted_ = new QLineEdit(findBar_);
  wanted_->setObjectName("logWanted");
  wanted_->setPlaceholderText("Find in the log; Enter goes on, Shift+Enter back");
  wanted_->setAccessibleName("Find in the log");
  found_ = new QLabel(findBar_);
  row->addWidget(wanted_, 1);
  row->addWidget(found_);
  column.addWidget(findBar_);
  findBar_->hide();
  connect(wanted_, &QLineEdit::textEdited, this, [this] { found_->clear(); });
}

void LogPanel::setCommandsOff(bool off) { clear_->setEnabled(!off); }

void LogPanel::copy() {
  const QTextCursor cursor = view_->textCursor();
  if (cursor.hasSelection()) {
    view_->copy();
  } else {
    QApplication::clipboard()->setText(view_->toPlainText());
  }
}

void LogPanel::save() {
  const std::string file = dialogs_.saveFile("Save Log As", "All Files (*.*)|*.*");
  if (file.empty()) return;
  try {
    writeFileAtomically(file, controls_.SystemLog.text());
  } catch (const FileError& error) {
    dialogs_.messageBox(
        {.text = error.what(), .title = "Can't Save Log", .icon = MessageIcon::Exclamation});
  }
}

bool LogPanel::hasKeyboard() const { return view_->hasFocus() || wanted_->hasFocus(); }

void LogPanel::openFind() {
  findBar_->show();
  wanted_->setFocus();
  wanted_->selectAll();
}

void LogPanel::closeFind() {
  findBar_->hide();
  view_->setFocus();
}

// At the end it goes on from the other one.
void LogPanel::find(bool backward) {
  const QTextDocument::FindFlags flags =
      backward ? QTextDocument::FindBackward : QTextDocument::FindFlags();
  if (view_->find(wanted_->text(), flags)) {
    found_->clear();
    return;
  }
  const QTextCursor before = view_->textCursor();
  view_->moveCursor(backward ? QTextCursor::End : QTextCursor::Start);
  const bool isFound = view_->find(wanted_->text(), flags);
  if (!isFound) view_->setTextCursor(before);
  found_->setText(isFound ? QString() : "Not found");
}

void LogPanel::keyPressEvent(QKeyEvent* event) {
  const bool isInFind = wanted_->hasFocus();
  if (isInFind && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
    find(event->modifiers().testFlag(Qt::ShiftModifier));
  } else if (isInFind && event->key() == Qt::Key_Escape) {
    closeFind();
  } else {
    QWidget::keyPressEvent(event);
  }
}

}  // namespace kestrel::window
