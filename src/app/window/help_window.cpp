#include "app/window/help_window.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

namespace kestrel::window {

namespace {

/// Shows pages and pictures of the manual and nothing else, whatever a page asks for.
class ManualPage final : public QTextBrowser {
 public:
  ManualPage(const QString& folder, QWidget* parent)
      : QTextBrowser(parent), folder_(QFileInfo(folder).canonicalFilePath()) {}

  QVariant loadResource(int type, const QUrl& name) override {
    return isOfManual(name) ? QTextBrowser::loadResource(type, name) : QVariant();
  }

 protected:
  void doSetSource(const QUrl& name, QTextDocument::ResourceType type) override {
    if (isOfManual(name)) QTextBrowser::doSetSource(name, type);
  }

 private:
  [[nodiscard]] bool isOfManual(const QUrl& name) const {
    const QUrl whole = source().isEmpty() ? name : source().resolved(name);
    if (!whole.isLocalFile()) return false;
    const QString file = QFileInfo(whole.toLocalFile()).canonicalFilePath();
    return !folder_.isEmpty() && file.startsWith(folder_ + '/');
  }

  QString folder_;
};

}  // namespace

HelpWindow::HelpWindow(const std::filesystem::path& helpFile, QWidget* mainWindow)
    : QWidget(mainWindow, Qt::Window), book_(helpFile) {
  setObjectName("helpWindow");
  setWindowTitle("Kestrel Help");
  resize(960, 680);
  build();
  listPages({});
}

void HelpWindow::build() {
  auto* const split = new QSplitter(this);
  auto* const left = new QWidget(split);
  auto* const column = new QVBoxLayout(left);
  column->setContentsMargins(0, 0, 0, 0);
  search_ = new QLineEdit(left);
  search_->setObjectName("helpSearch");
  search_->setPlaceholderText("Search the manual");
  search_->setAccessibleName("Search the manual");
  search_->setClearButtonEnabled(true);
  list_ = new QListWidget(left);
  list_->setObjectName("helpPages");
  list_->setAccessibleName("Pages");
  page_ = new ManualPage(book_.folder(), split);
  page_->setObjectName("helpPage");
  page_->setOpenLinks(true);
  page_->setAccessibleName("Help page");
  column->addWidget(search_);
  column->addWidget(list_, 1);
  split->addWidget(left);
  split->addWidget(page_);
  split->setStretchFactor(1, 1);
  split->setSizes({260, 700});
  auto* const row = new QHBoxLayout(this);
  row->addWidget(split);
  connect(search_, &QLineEdit::textChanged, this, [this](const QString& text) { listPages(text); });
  connect(search_, &QLineEdit::returnPressed, list_, [this] { list_->setCurrentRow(0); });
  connect(list_, &QListWidget::currentItemChanged, this, [this](const QListWidgetItem* item) {
    if (item != nullptr) showPage(item->data(Qt::UserRole).toString());
  });
  connect(page_, &QTextBrowser::sourceChanged, this, [this](const QUrl& source) {
    selectListed(source.toLocalFile());
    markSearched();
  });
  auto* const close = new QShortcut(QKeySequence(Qt::Key_Escape), this);
  connect(close, &QShortcut::activated, this, &QWidget::close);
}

void HelpWindow::listPages(const QString& searched) {
  const QSignalBlocker quiet(list_);
  list_->clear();
  for (const HelpEntry& entry : book_.search(searched)) {
    auto* const item = new QListWidgetItem(entry.title, list_);
    item->setData(Qt::UserRole, book_.path(entry));
  }
}

void HelpWindow::showPage(const QString& path) { page_->setSource(QUrl::fromLocalFile(path)); }

// The list follows the links of the pages.
void HelpWindow::selectListed(const QString& path) {
  const QSignalBlocker quiet(list_);
  for (int row = 0; row < list_->count(); ++row) {
    if (list_->item(row)->data(Qt::UserRole).toString() == path) list_->setCurrentRow(row);
  }
}

// What was searched for is marked where it stands in the page.
void HelpWindow::markSearched() {
  QList<QTextEdit::ExtraSelection> marks;
  for (const QString& word : search_->text().simplified().split(' ', Qt::SkipEmptyParts)) {
    QTextCursor found = page_->document()->find(word, 0);
    while (!found.isNull()) {
      QTextEdit::ExtraSelection mark;
      mark.cursor = found;
      mark.format.setBackground(palette().highlight());
      mark.format.setForeground(palette().highlightedText());
      marks.append(mark);
      found = page_->document()->find(word, found);
    }
  }
  page_->setExtraSelections(marks);
}

void HelpWindow::open(HelpPage page) {
  if (page == HelpPage::Search) {
    search_->clear();
    search_->setFocus();
  }
  if ((page == HelpPage::Contents || page_->source().isEmpty()) && list_->count() > 0) {
    search_->clear();
    list_->setCurrentRow(0);
    showPage(list_->item(0)->data(Qt::UserRole).toString());
  }
  show();
  raise();
  activateWindow();
}

}  // namespace kestrel::window
