#pragma once

#include <QWidget>

#include "app/window/help_book.h"
#include "platform/help_viewer.h"

class QLineEdit;
class QListWidget;
class QTextBrowser;

namespace kestrel::window {

/// The manual: the pages and a search on the left, the page on the right.
class HelpWindow final : public QWidget {
 public:
  HelpWindow(const std::filesystem::path& helpFile, QWidget* mainWindow);

  void open(HelpPage page);

 private:
  void build();
  void listPages(const QString& searched);
  void showPage(const QString& path);
  void selectListed(const QString& path);
  void markSearched();

  HelpBook book_;
  QLineEdit* search_ = nullptr;
  QListWidget* list_ = nullptr;
  QTextBrowser* page_ = nullptr;
};

}  // namespace kestrel::window
