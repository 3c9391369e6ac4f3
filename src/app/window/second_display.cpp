#include "app/window/second_display.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>

#include "app/window/display_panel.h"
#include "app/window/range_reporter.h"
#include "app/window/texts.h"
#include "app/window/theme.h"

namespace kestrel::window {

SecondDisplay::SecondDisplay(SecondaryDisplay& controls, const Binder& binder, QtScreen& screen,
                             QWidget* mainWindow)
    : QWidget(mainWindow, Qt::Window), controls_(controls) {
  setObjectName("frmDisplay1");
  setWindowTitle("Kestrel - code buffer, first page");
  build(binder);
  binder.mirror().bind(controls.window, *this, [this, &screen] {
    if (controls_.window.visible() && !isVisible()) {
      show();
      screen.opened(*this);
    }
    if (!controls_.window.visible() && isVisible()) hide();
  });
}

void SecondDisplay::build(const Binder& binder) {
  auto* const column = new QVBoxLayout(this);
  auto* const frame = new QWidget(this);
  binder.common(controls_.Frame1, *frame);
  auto* const row = new QHBoxLayout(frame);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(0);
  auto* const page = new QPlainTextEdit(frame);
  page->setReadOnly(true);
  page->setLineWrapMode(QPlainTextEdit::NoWrap);
  page->setFont(fixedFont());
  page->setMinimumSize(hexPageSize(*page, fixedFont(), kPageLines));
  page->setAccessibleName("Code buffer, first page");
  binder.common(controls_.BufferDisplay, *page);
  binder.mirror().bind(controls_.BufferDisplay, *page, [this, page] {
    QString shown = toQString(controls_.BufferDisplay.text());
    page->setPlainText(shown.remove('\r'));
    comeForward();
  });
  auto* const bar = new QScrollBar(Qt::Vertical, frame);
  new RangeReporter(controls_.VScroll1, *bar, binder);
  row->addWidget(page, 1);
  row->addWidget(bar);
  column->addWidget(frame, 1);
  auto* const buttons = new QHBoxLayout;
  column->addLayout(buttons);
  for (Button& control : controls_.Command) {
    auto* const button = new QPushButton(this);
    binder.button(control, *button);
    binder.mirror().bind(control, *button, [&control, button] {
      button->setVisible(control.visible() && !control.caption().empty());
    });
    buttons->addWidget(button);
  }
}

// Who asks for the page again wants to see it.
void SecondDisplay::comeForward() {
  if (isMinimized()) showNormal();
  if (isVisible()) raise();
}

void SecondDisplay::closeEvent(QCloseEvent* event) {
  controls_.window.setVisible(false);
  event->accept();
}

}  // namespace kestrel::window
